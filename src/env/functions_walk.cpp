// The env_ functions that walk a tree with callbacks, and those built on such walks.
#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include "env/function_call.h"
#include "env/sibling_walk.h"
#include "env/tree_copy.h"

using namespace zr::env;
using Zr::CZrEnv;

namespace {

constexpr const char *kCoreTag = "Env_core";
constexpr const char *kTag = "Env_uti2";
constexpr int kError = Zr::ENV_ERROR;

// Whether the leaf walk or sink that runs has met no fault yet. One for all: a walk that is started from a callback sets it
// anew and leaves its own fault in it. Under the lock.
int leafWalkFlag = 0;

// Whose callback it is, it must not throw: an exception would end the process here, and not pass for one of ours.
void Call(env_callback callback, CZrEnv *pSub, const char *section, const char *path, void *user) noexcept {
    callback(Handle(pSub), section, path, user);
}

// What env_traverse finds before it starts: ENV_OK also for an environment that has nothing to walk.
bool IsEmptyTop(const CZrEnv &rEnv) {
    return !rEnv.IsSubEnv() && !rEnv.GetFirstSection();
}

// --- the leaf walk ----------------------------------------------------------------------------------------------------

// Visits all leaves below an environment, with the open levels on a stack of its own: depth costs memory only.
class LeafWalk {
public:
    LeafWalk(env_callback callback, void *user) : m_callback(callback), m_user(user) {}
    ~LeafWalk();
    LeafWalk(const LeafWalk &) = delete;
    LeafWalk &operator=(const LeafWalk &) = delete;

    int Run(CZrEnv &rEnv);

private:
    struct Level {
        SiblingWalk siblings;
        std::size_t prefix; // length of the full path of the level's block
    };

    bool LeadsBack(const Subenv &rSub) const;
    void Visit(Subenv sub);
    void VisitLeaf(const Subenv &rSub);
    void VisitBlock(Subenv sub);
    void ExtendPath();

    env_callback m_callback;
    void *m_user;
    std::deque<Level> m_levels;
    StepAddress m_step;
    PathText m_fullPath; // begins with the prefix of the innermost level
};

// From the innermost level outwards, as an environment finds its newest subenvironments soonest.
LeafWalk::~LeafWalk() {
    while (!m_levels.empty())
        m_levels.pop_back();
}

int LeafWalk::Run(CZrEnv &rEnv) {
    if (IsEmptyTop(rEnv))
        return Zr::ENV_OK;
    m_levels.push_back({SiblingWalk(rEnv, nullptr, nullptr, true), 0});
    if (!m_levels.back().siblings.HasNext())
        return Zr::ENV_NOT_FOUND;
    while (!m_levels.empty() && leafWalkFlag) {
        Level &rLevel = m_levels.back();
        m_fullPath.Cut(rLevel.prefix);
        if (rLevel.siblings.HasNext())
            Visit(rLevel.siblings.Step(m_step));
        else
            m_levels.pop_back();
    }
    return Zr::ENV_OK;
}

// A name that no path can hold, such as none at all, leads back to the block itself: to descend would never end.
bool LeafWalk::LeadsBack(const Subenv &rSub) const {
    return rSub && rSub->GetSubEnvRootElement() == m_levels.back().siblings.Env().GetSubEnvRootElement();
}

void LeafWalk::Visit(Subenv sub) {
    const int kind = LeadsBack(sub) ? kError : env_check(Handle(sub.get()), nullptr, nullptr, 1);
    switch (kind) {
    case Zr::ENV_NOT_FOUND:
        break;
    case Zr::ENV_DATA:
        VisitLeaf(sub);
        break;
    case Zr::ENV_BLOCK:
        VisitBlock(std::move(sub));
        break;
    default:
        zr_switch_error(kind, kTag, __LINE__);
        leafWalkFlag = 0;
    }
}

// Puts the path of the present step behind the prefix.
void LeafWalk::ExtendPath() {
    if (m_fullPath.Length() > 0)
        m_fullPath.Add(m_levels.back().siblings.Env().GetDelimiter());
    m_fullPath.Add(m_step.Path());
}

void LeafWalk::VisitLeaf(const Subenv &rSub) {
    ExtendPath();
    Call(m_callback, rSub.get(), m_step.section, m_step.hasPath ? m_fullPath.Text() : nullptr, m_user);
}

void LeafWalk::VisitBlock(Subenv sub) {
    ExtendPath();
    m_levels.push_back({SiblingWalk(std::move(sub), m_step.section, m_levels.back().siblings), m_fullPath.Length()});
}

// --- the sink ---------------------------------------------------------------------------------------------------------

struct SinkState {
    zr_env target;
    zr_long mode;
    char delimiter; // of the source: its paths are made with it
};

enum SinkMode : zr_long {
    AddMissing = 0,
    Append = 1,
    Overwrite = 2,
    UpdateExisting = 3
};

void CopyLeaf(zr_env target, const char *section, const char *path, zr_env sub) {
    const int kind = env_check(sub, nullptr, nullptr, 1);
    if (kind != Zr::ENV_DATA) {
        leafWalkFlag = 0;
        zr_switch_error(kind, kTag, __LINE__);
        return;
    }
    const char *text = nullptr;
    if (env_get_reference(sub, nullptr, nullptr, 1, &text) < 0)
        leafWalkFlag = 0;
    if (env_put(target, section, path, text) != 0)
        leafWalkFlag = 0;
}

// Copies a leaf behind the namesakes that target has.
void AppendLeaf(zr_env target, char cDelimiter, const char *section, const char *path, zr_env sub) {
    constexpr std::size_t kMaxLength = 255;
    const char *szLast = path ? std::strrchr(path, cDelimiter) : nullptr;
    PathText newPath;
    newPath.Add(path);
    newPath.Cut(szLast ? static_cast<std::size_t>(szLast - path) : 0);
    const zr_long number = env_count_path(target, section, newPath.Text(), 1) + 1;
    newPath.Add(cDelimiter);
    newPath.Add(number);
    newPath.Cut(kMaxLength);
    CopyLeaf(target, section, newPath.Text(), sub);
}

void SinkVisit(zr_env sub, const char *section, const char *path, void *user) {
    const SinkState &rState = *static_cast<const SinkState *>(user);
    switch (rState.mode) {
    case AddMissing:
        if (!env_exist(rState.target, section, path, 1))
            CopyLeaf(rState.target, section, path, sub);
        break;
    case Append:
        AppendLeaf(rState.target, rState.delimiter, section, path, sub);
        break;
    case Overwrite:
        CopyLeaf(rState.target, section, path, sub);
        break;
    case UpdateExisting:
        if (env_exist(rState.target, section, path, 1))
            CopyLeaf(rState.target, section, path, sub);
        break;
    default:
        zr_switch_error(static_cast<int>(rState.mode), kTag, __LINE__);
        leafWalkFlag = 0;
    }
}

// Writes names one behind the other, each followed by a separator.
int JoinNames(const std::vector<std::string> &rNames, char separator, zr_long capacity, char *out) {
    std::size_t total = 0;
    char *at = out;
    for (const std::string &rName : rNames) {
        total += rName.size() + 1;
        if (capacity <= 0 || total >= static_cast<std::size_t>(capacity)) {
            if (capacity > 0)
                *out = '\0';
            return Zr::ENV_TOO_SMALL;
        }
        std::memcpy(at, rName.data(), rName.size());
        at += rName.size();
        *at++ = separator;
        *at = '\0';
    }
    return Zr::ENV_OK;
}

} // namespace

int env_traverse(zr_env env, const char *section, const char *path, int direct, env_callback callback,
                 void *user) noexcept {
    if (!env || !callback)
        return kError;
    return Locked(kError, kCoreTag, __LINE__, [&]() -> int {
        if (IsEmptyTop(*Tree(env)))
            return Zr::ENV_OK;
        SiblingWalk siblings(*Tree(env), section, path, direct != 0);
        if (!siblings.HasNext())
            return Zr::ENV_NOT_FOUND;
        StepAddress step;
        while (siblings.HasNext()) {
            const Subenv sub = siblings.Step(step);
            Call(callback, sub.get(), step.section, step.Path(), user);
        }
        return Zr::ENV_OK;
    });
}

int env_traverse_leafs(zr_env env, env_callback callback, void *user) noexcept {
    if (!env || !callback)
        return kError;
    return Locked(kError, kTag, __LINE__, [&]() -> int {
        leafWalkFlag = 1;
        const int result = LeafWalk(callback, user).Run(*Tree(env));
        return result == Zr::ENV_OK && leafWalkFlag ? int{Zr::ENV_OK} : kError;
    });
}

int env_sink(zr_env target, zr_env source, zr_long mode) noexcept {
    if (!target || !source)
        return kError;
    return Locked(kError, kTag, __LINE__, [&] {
        SinkState state{target, mode, env_get_delimiter(source)};
        leafWalkFlag = 1;
        if ((mode == AddMissing || mode == Overwrite) && Zr::CopyPlainTree(*Tree(target), *Tree(source)))
            return int{Zr::ENV_OK};
        const int result = env_traverse_leafs(source, SinkVisit, &state);
        return result == Zr::ENV_OK && leafWalkFlag ? int{Zr::ENV_OK} : kError;
    });
}

int env_copy_block(zr_env target, zr_env source, const char *section, const char *path, zr_long mode) noexcept {
    return env_copy_block_to(target, source, section, path, section, path, mode);
}

int env_copy_block_to(zr_env target, zr_env source, const char *targetSection, const char *targetPath,
                      const char *sourceSection, const char *sourcePath, zr_long mode) noexcept {
    const SectionGuard guard;
    const zr_env from = env_open_subenv(source, sourceSection, sourcePath, 1);
    if (!from)
        return kError;
    const zr_env to = env_create_subenv(target, targetSection, targetPath);
    if (!to) {
        env_close(from, 0);
        return kError;
    }
    const int result = env_sink(to, from, mode);
    env_close(from, 0);
    env_close(to, 0);
    return result;
}

int env_list_elem_names(zr_env env, const char *section, const char *path, int direct, char separator, zr_long capacity,
                        char *out) noexcept {
    if (!env)
        return 0;
    if (!out)
        return kError;
    if (capacity > 0)
        *out = '\0';
    return Locked(kError, kTag, __LINE__, [&]() -> int {
        std::vector<std::string> names;
        if (const zr_long failure = Tree(env)->GetElemNames(section, path, direct != 0, names))
            return static_cast<int>(failure);
        return JoinNames(names, separator, capacity, out);
    });
}
