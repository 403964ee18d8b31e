// One level of a walk: the children of a block (or the sections of an environment) in sequence, each with its address and a
// subenvironment on it.
#ifndef ZR_ENV_SIBLING_WALK_H
#define ZR_ENV_SIBLING_WALK_H

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>

#include <zrclb/env.hpp>

namespace Zr {

// Makes subenvironments without the walk up the tree that finds out which environment owns an element, and tells what no
// other function does.
class CZrEnvWalk {
public:
    // Neither a subenvironment nor a copy.
    static bool IsPlainTop(const CZrEnv &rEnv) { return !rEnv.m_pParentEnv && !rEnv.m_bView; }
    static bool HasDefault(const CZrEnv &rEnv) { return rEnv.m_pDefaultEnv != nullptr; }

    // pOwner is what pRoot->GetEnv() gives. The same object as OpenSubenv makes; std::bad_alloc on no memory.
    static CZrEnv *Open(CZrEnvElement *pRoot, CZrEnv *pOwner) { return new CZrEnv(pRoot, pOwner); }
};

} // namespace Zr

namespace zr::env {

// A path as long as the walks make it. What does not fit is cut.
class PathText {
public:
    static constexpr std::size_t kMaxLength = 10239;

    const char *Text() const { return m_text; }
    std::size_t Length() const { return m_length; }
    void Cut(std::size_t length);
    void Add(char c);
    void Add(const char *szText); // null counts as empty
    void Add(zr_long number);

private:
    std::size_t m_length = 0;
    char m_text[kMaxLength + 1] = {};
};

// Knows the environment of elements near each other, and asks only after something in a tree has moved.
class OwnerMemo {
public:
    Zr::CZrEnv *Of(const Zr::CZrEnvElement &rElem);

private:
    Zr::CZrEnv *m_pOwner = nullptr;
    std::size_t m_uEdits = 0;
    bool m_bKnown = false;
};

// The number of an element among its namesakes, in sequence from the parent's present first child. In near-constant time
// as long as it is asked for one sibling after the other and nothing but appends happens in between.
class NamesakeCounter {
public:
    zr_long Number(const Zr::CZrEnvElement &rElem);

private:
    struct Counts {
        std::unordered_map<std::string, zr_long> named;
        zr_long nameless = 0;
        zr_long &Of(const Zr::CZrEnvElement &rElem);
    };

    std::unique_ptr<Counts> m_counts; // of all elements up to m_pLast
    const Zr::CZrEnvElement *m_pLast = nullptr;
    std::size_t m_uEdits = 0;
    unsigned m_uAsked = 0;
};

// Closes a subenvironment at its end.
struct SubenvCloser {
    void operator()(Zr::CZrEnv *pSub) const;
};
using Subenv = std::unique_ptr<Zr::CZrEnv, SubenvCloser>;

// The address of the element at which a walk stands. Shared by all levels of a walk.
struct StepAddress {
    std::string sectionName; // copied: a callback may rename or delete the section
    const char *section = nullptr;
    PathText pathText;
    bool hasPath = false;

    const char *Path() const { return hasPath ? pathText.Text() : nullptr; }
};

// Next() gives one element after the other. The successor is taken before the caller sees an element, and watched through a
// subenvironment of its own, so that the walk ends where it is deleted in the meantime.
// Threads: under the lock, from making to end.
class SiblingWalk {
public:
    // The children of the addressed block of an environment, which has to outlive the walk, as has section and path.
    SiblingWalk(Zr::CZrEnv &rEnv, const char *section, const char *path, bool bDirect);

    // The children of the root of a subenvironment that the walk above gave.
    SiblingWalk(Subenv sub, const char *section, const SiblingWalk &rAbove);

    const Zr::CZrEnv &Env() const { return *m_pEnv; }
    bool HasNext() const { return Next() != nullptr; }

    // Steps to the next element, of which there is one. Null if no subenvironment could be opened.
    Subenv Step(StepAddress &rAddress);

private:
    Zr::CZrEnvElement *Next() const { return m_next ? m_next->GetSubEnvRootElement() : nullptr; }
    void Watch(Zr::CZrEnvElement *pNext);
    Zr::CZrEnv *OpenSub(const StepAddress &rAddress);

    Subenv m_root; // null where the environment is the caller's
    Zr::CZrEnv *m_pEnv;
    const char *m_section;
    const char *m_path;
    bool m_bDirect;
    Subenv m_next;
    OwnerMemo m_elementOwner;
    OwnerMemo m_subOwner;
    NamesakeCounter m_numbers;
};

} // namespace zr::env

#endif
