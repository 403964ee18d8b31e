// The env_ functions that get and put single texts, take children by number, and iterate over them.
#include "env/functions_access.h"

#include <cstring>
#include <map>

#include "env/function_call.h"

using Zr::CZrEnvDataElement;
using Zr::CZrEnvElement;

namespace zr::env {

namespace {

constexpr const char *kTag = "Env_pg";
constexpr int kError = Zr::ENV_ERROR;

// At which element the iteration of each handle stands; null where there was none to begin with. Under the lock.
using IterationMap = std::map<zr_env, CZrEnvElement *>;

IterationMap &Iterations() {
    static IterationMap iterations;
    return iterations;
}

// A buffer of the caller.
struct Buffer {
    char *text;
    zr_long capacity;

    bool Holds(const char *szText) const {
        return capacity > 0 && std::strlen(szText) < static_cast<std::size_t>(capacity);
    }
    void Copy(const char *szText) const { std::memcpy(text, szText, std::strlen(szText) + 1); }
    void Empty() const {
        if (capacity > 0)
            *text = '\0';
    }
};

// Copies szText if it fits. If not, or if there is none, the buffer is emptied. A null buffer counts as filled.
bool Fill(const Buffer &rBuffer, const char *szText) {
    if (!rBuffer.text)
        return true;
    if (szText && rBuffer.Holds(szText)) {
        rBuffer.Copy(szText);
        return true;
    }
    rBuffer.Empty();
    return false;
}

int CopyPosData(const CZrEnvDataElement &rData, const Buffer &rName, const Buffer &rText) {
    int result = Zr::ENV_OK;
    if (!rData.GetString())
        result = Zr::ENV_ERROR;
    else if (rText.text)
        result = Fill(rText, rData.GetString()) ? Zr::ENV_DATA : Zr::ENV_TOO_SMALL;
    return Fill(rName, rData.GetName()) ? result : int{Zr::ENV_TOO_SMALL};
}

int CopyPosBlock(const CZrEnvElement &rBlock, const Buffer &rName) {
    if (!rBlock.GetName())
        return Zr::ENV_ERROR;
    if (!rName.text)
        return Zr::ENV_OK;
    return Fill(rName, rBlock.GetName()) ? Zr::ENV_BLOCK : Zr::ENV_TOO_SMALL;
}

// Copies one text of an element in an iteration: 0, ENV_TOO_SMALL, or ENV_ERROR for a null buffer.
int CopyStep(const Buffer &rBuffer, const char *szText) {
    if (!rBuffer.Holds(szText))
        return Zr::ENV_TOO_SMALL;
    if (!rBuffer.text)
        return Zr::ENV_ERROR;
    rBuffer.Copy(szText);
    return Zr::ENV_OK;
}

int FillElement(CZrEnvElement &rElem, zr_long *id, const Buffer &rName, const Buffer &rText) {
    if (rElem.GetName()) {
        if (const int failure = CopyStep(rName, rElem.GetName()))
            return failure;
    }
    int result = Zr::ENV_ERROR;
    if (const CZrEnvDataElement *pData = rElem.ToEnvDataElement()) {
        if (pData->GetString()) {
            if (const int failure = CopyStep(rText, pData->GetString()))
                return failure;
        }
        result = Zr::ENV_DATA;
    } else if (rElem.ToEnvBlock()) {
        result = Zr::ENV_BLOCK;
    }
    if (id)
        *id = IdOf(rElem, 0);
    return result;
}

} // namespace

void ForgetIteration(zr_env env) noexcept {
    Iterations().erase(env);
}

int env_put_core(zr_env env, const char *section, const char *path, const char *text, const void *ext_data) noexcept {
    if (ext_data) {
        zr_message("ext_data wird nicht mehr unterst\xFCtzt.", nullptr, nullptr, kTag, __LINE__);
        return kError;
    }
    if (path && !*path) {
        zr_error("Empty path passed to env_put_core", nullptr, nullptr, kTag, __LINE__);
        return Zr::ENV_EMPTY_PATH;
    }
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&] { return Tree(env)->SetString(section, path, text); });
}

} // namespace zr::env

using namespace zr::env;

// --- get and put ------------------------------------------------------------------------------------------------------

int env_get(zr_env env, const char *section, const char *path, int direct, zr_long capacity, char *text) noexcept {
    if (!env || !text)
        return kError;
    return Locked(kError, kTag, __LINE__, [&] {
        return ReadData(env, section, path, direct, [&](const CZrEnvDataElement &rData) {
            return rData.GetString(capacity > 0 ? static_cast<zr_ulong>(capacity) : 0, text);
        });
    });
}

int env_get_string(zr_env env, const char *section, const char *path, int direct, zr_long capacity,
                   char *text) noexcept {
    return env_get(env, section, path, direct, capacity, text);
}

int env_put(zr_env env, const char *section, const char *path, const char *text) noexcept {
    return text ? env_put_core(env, section, path, text, nullptr) : kError;
}

int env_put_string(zr_env env, const char *section, const char *path, const char *text) noexcept {
    return env_put(env, section, path, text);
}

// --- children by number -----------------------------------------------------------------------------------------------

int env_get_pos(zr_env env, const char *section, const char *path, int direct, zr_long pos, zr_long *id,
                zr_long nameCapacity, char *name, zr_long textCapacity, char *text) noexcept {
    if (!env)
        return kError;
    if (pos < 1)
        return Zr::ENV_NOT_FOUND;
    return Locked(kError, kTag, __LINE__, [&]() -> int {
        const Zr::CZrEnv *pEnv = Tree(env);
        CZrEnvElement *pElem = pEnv->GetPosElement(section, path, pos, direct != 0, true);
        if (!pElem)
            return pEnv->GetLastError() != Zr::ENV_OK ? pEnv->GetLastError() : Zr::ENV_ERROR;
        if (id)
            *id = IdOf(*pElem, 0);
        if (const CZrEnvDataElement *pData = pElem->ToEnvDataElement())
            return CopyPosData(*pData, {name, nameCapacity}, {text, textCapacity});
        if (pElem->ToEnvBlock())
            return CopyPosBlock(*pElem, {name, nameCapacity});
        zr_message("unbekanntes env-Element", nullptr, nullptr, kTag, __LINE__);
        return kError;
    });
}

// --- iteration --------------------------------------------------------------------------------------------------------

int env_get_first_core(zr_env env, const char *section, const char *path, int direct, zr_long *id, zr_long nameCapacity,
                       char *name, zr_long textCapacity, char *text) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&]() -> int {
        CZrEnvElement *pElem = Tree(env)->GetPosElement(section, path, 1, direct != 0, true);
        Iterations()[env] = pElem;
        return pElem ? FillElement(*pElem, id, {name, nameCapacity}, {text, textCapacity}) : int{Zr::ENV_NOT_FOUND};
    });
}

int env_get_next_core(zr_env env, zr_long nameCapacity, char *name, zr_long textCapacity, char *text) noexcept {
    if (!env)
        return kError;
    return Locked(kError, kTag, __LINE__, [&]() -> int {
        const auto at = Iterations().find(env);
        if (at == Iterations().end())
            return kError;
        CZrEnvElement *pNext = at->second ? at->second->GetSuccElem() : nullptr;
        if (!pNext) {
            Iterations().erase(at);
            return Zr::ENV_NOT_FOUND;
        }
        at->second = pNext;
        return FillElement(*pNext, nullptr, {name, nameCapacity}, {text, textCapacity});
    });
}

int env_get_first(zr_env env, const char *section, const char *path, int direct, zr_long *id, zr_long nameCapacity,
                  char *name, zr_long textCapacity, char *text, int) noexcept {
    return env_get_first_core(env, section, path, direct, id, nameCapacity, name, textCapacity, text);
}

int env_get_next(zr_env env, zr_long nameCapacity, char *name, zr_long textCapacity, char *text, int) noexcept {
    return env_get_next_core(env, nameCapacity, name, textCapacity, text);
}
