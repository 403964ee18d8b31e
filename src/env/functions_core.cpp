// The env_ functions on environments as such, on the presence of elements, and on the shape of the tree.
#include <cstdarg>
#include <memory>
#include <new>

#include "env/function_call.h"
#include "env/functions_access.h"
#include "env/node_store.h"

using namespace zr::env;
using Zr::CZrEnv;
using Zr::CZrEnvBlock;
using Zr::CZrEnvElement;
using Zr::CZrEnvSection;

namespace {

constexpr const char *kTag = "Env_core";
constexpr char kDelimiter = '@';
constexpr int kError = Zr::ENV_ERROR;

// A new handle may lie where a former one was: nothing may be left of that one's iteration.
zr_env Opened(CZrEnv *pEnv) {
    if (pEnv)
        ForgetIteration(Handle(pEnv));
    return Handle(pEnv);
}

// What env_check tells of a subenvironment's root. An empty block is passed off as absent.
int CheckRoot(CZrEnvElement *pRoot) {
    if (!pRoot)
        return Zr::ENV_NOT_FOUND;
    if (const CZrEnvBlock *pBlock = pRoot->ToEnvBlock(); pBlock && pBlock->GetFirstElement())
        return Zr::ENV_BLOCK;
    return pRoot->ToEnvDataElement() ? Zr::ENV_DATA : Zr::ENV_NOT_FOUND;
}

int CheckElement(const CZrEnv &rEnv, const char *section, const char *path, bool bDirect) {
    if (!section && !rEnv.IsSubEnv())
        return rEnv.GetFirstSection() ? Zr::ENV_BLOCK : Zr::ENV_NOT_FOUND;
    if (path)
        return rEnv.Check(section, path, bDirect);
    if (rEnv.IsSubEnv())
        return CheckRoot(rEnv.GetSubEnvRootElement());
    return rEnv.GetSection(section) ? Zr::ENV_BLOCK : Zr::ENV_NOT_FOUND;
}

int InsertElementBefore(const CZrEnv &rEnv, const char *section, const char *path, const char *name) {
    CZrEnvElement *pAnchor =
        rEnv.IsSubEnv() && !path ? rEnv.GetSubEnvRootElement() : rEnv.GetElement(section, path, true, true);
    if (!pAnchor)
        return Zr::ENV_NOT_FOUND;
    CZrEnvBlock *pParent = pAnchor->GetParent();
    if (!pParent)
        return Zr::ENV_ERROR;
    Zr::CZrEnvNodeStore::Holder pNew(new Zr::CZrEnvDataElement(name, nullptr));
    if (!pNew->GetName() && CZrEnv::CheckElementName(name, '\0'))
        throw std::bad_alloc();
    if (!pParent->InsertElementBefore(pNew.get(), pAnchor))
        return Zr::ENV_ERROR;
    pNew.release();
    return Zr::ENV_OK;
}

int InsertSectionBefore(CZrEnv &rEnv, const char *section, const char *name) {
    CZrEnvSection *pAnchor = rEnv.GetSection(section);
    if (!pAnchor)
        return Zr::ENV_NOT_FOUND;
    auto pNew = std::make_unique<CZrEnvSection>(name);
    if (!pNew->GetName() && CZrEnv::CheckSectionName(name))
        throw std::bad_alloc();
    if (!rEnv.InsertSectionBefore(pNew.get(), pAnchor))
        return Zr::ENV_ERROR;
    pNew.release();
    return Zr::ENV_OK;
}

} // namespace

// --- life cycle and identity ------------------------------------------------------------------------------------------

zr_env env_open(zr_long id, zr_env deflt) noexcept {
    return Locked(zr_env{}, kTag, __LINE__, [&] { return Opened(CZrEnv::CreateEnv(id, Tree(deflt))); });
}

zr_env env_open_subenv(zr_env env, const char *section, const char *path, int direct) noexcept {
    if (!env)
        return nullptr;
    return Locked(zr_env{}, kTag, __LINE__, [&] { return Opened(Tree(env)->OpenSubenv(section, path, direct != 0)); });
}

zr_env env_create_subenv(zr_env env, const char *section, const char *path) noexcept {
    if (!env)
        return nullptr;
    return Locked(zr_env{}, kTag, __LINE__, [&] { return Opened(Tree(env)->CreateSubenv(section, path)); });
}

int env_close(zr_env env, int all) noexcept {
    return Locked(kError, kTag, __LINE__, [&] {
        const int result = CZrEnv::DestroyEnv(Tree(env), all != 0);
        if (result == Zr::ENV_OK)
            ForgetIteration(env);
        return result;
    });
}

void env_attach_as_last_default(zr_env env, zr_env deflt) noexcept {
    if (!env)
        return;
    Locked(0, kTag, __LINE__, [&] {
        Tree(env)->AttachAsLastDefault(Tree(deflt));
        return 0;
    });
}

zr_env env_detach_default_chain(zr_env env) noexcept {
    if (!env)
        return nullptr;
    return Locked(zr_env{}, kTag, __LINE__, [&] { return Handle(Tree(env)->DetachDefaultChain()); });
}

char env_set_delimiter(zr_env env, char c) noexcept {
    if (!env)
        return kDelimiter;
    return Locked(kDelimiter, kTag, __LINE__, [&] { return Tree(env)->SetDelimiter(c); });
}

char env_get_delimiter(zr_env env) noexcept {
    return env ? Tree(env)->GetDelimiter() : kDelimiter;
}

const char *env_get_str_delimiter(zr_env env) noexcept {
    return env ? Tree(env)->GetStrDelimiter() : "@";
}

zr_long env_get_file_mtime(zr_env env) noexcept {
    if (!env)
        return kError;
    return Locked(zr_long{kError}, kTag, __LINE__, [&] { return Tree(env)->GetFileMTime(); });
}

int env_CheckSectionName(const char *name) noexcept {
    return CZrEnv::CheckSectionName(name) ? 1 : 0;
}

int env_get_error_position(zr_env env, zr_long *line, zr_long *column) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&] {
        zr_long lLine = 0;
        zr_long lColumn = 0;
        const int result = Tree(env)->GetErrorPosition(lLine, lColumn);
        if (result == Zr::ENV_OK && line)
            *line = lLine;
        if (result == Zr::ENV_OK && column)
            *column = lColumn;
        return result;
    });
}

// --- queries ----------------------------------------------------------------------------------------------------------

int env_exist(zr_env env, const char *section, const char *path, int direct) noexcept {
    if (!env)
        return 0;
    return Locked(0, kTag, __LINE__,
                  [&] { return Tree(env)->GetElement(section, path, direct != 0, true) != nullptr; });
}

int env_exist_data(zr_env env, const char *section, const char *path, int direct) noexcept {
    if (!env)
        return 0;
    return Locked(0, kTag, __LINE__,
                  [&] { return Tree(env)->GetDataElement(section, path, direct != 0, true) != nullptr; });
}

int env_exist_block(zr_env env, const char *section, const char *path, int direct) noexcept {
    if (!env)
        return 0;
    return Locked(0, kTag, __LINE__, [&] { return Tree(env)->GetBlock(section, path, direct != 0, true) != nullptr; });
}

int env_count_path(zr_env env, const char *section, const char *path, int direct) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&] { return Tree(env)->CountPath(section, path, direct != 0); });
}

int env_count_elements(zr_env env, const char *section, const char *path, int direct) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&] { return Tree(env)->CountElements(section, path, direct != 0); });
}

int env_check(zr_env env, const char *section, const char *path, int direct) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&] { return CheckElement(*Tree(env), section, path, direct != 0); });
}

int env_get_core(zr_env env, const char *section, const char *path, int direct, zr_long pos, zr_long *id,
                 const char **name, const char **text) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&]() -> int {
        const CZrEnv *pEnv = Tree(env);
        CZrEnvElement *pElem = pEnv->GetPosElement(section, path, pos, direct != 0, true);
        if (!pElem)
            return pEnv->GetLastError();
        if (name)
            *name = pElem->GetName();
        if (id)
            *id = IdOf(*pElem, pEnv->GetID());
        if (const Zr::CZrEnvDataElement *pData = pElem->ToEnvDataElement()) {
            if (text)
                *text = pData->GetString();
            return Zr::ENV_DATA;
        }
        return pElem->ToEnvBlock() ? Zr::ENV_BLOCK : Zr::ENV_ERROR;
    });
}

// --- changes of the shape ---------------------------------------------------------------------------------------------

int env_rename(zr_env env, const char *section, const char *path, const char *name) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&] { return Tree(env)->Rename(section, path, name); });
}

int env_delete(zr_env env, const char *section, const char *path) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&] { return Tree(env)->Delete(section, path); });
}

int env_insert_before(zr_env env, const char *section, const char *path, const char *name) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&] {
        CZrEnv *pEnv = Tree(env);
        if (pEnv->IsSubEnv() || path)
            return InsertElementBefore(*pEnv, section, path, name);
        return InsertSectionBefore(*pEnv, section, name);
    });
}

int env_create_path(zr_env env, zr_long size, char *buffer, const char *format, ...) noexcept {
    const zr_ulong room = size > 0 ? static_cast<zr_ulong>(size) : 0;
    if (room > 0 && format && !buffer)
        return kError;
    va_list texts;
    va_start(texts, format);
    const zr_long result = CZrEnv::BuildPathVA(env_get_delimiter(env), room, buffer, format, texts);
    va_end(texts);
    return static_cast<int>(result);
}
