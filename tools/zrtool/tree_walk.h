// Goes through a tree in the order of its text, without recursion: a step into each element, and a step out of each
// block and section behind the last of its children.
#ifndef ZRTOOL_TREE_WALK_H
#define ZRTOOL_TREE_WALK_H

#include <cstddef>
#include <string>

#include <zrclb/env.hpp>

namespace zrtool {

class TreeWalk {
public:
    enum class Step {
        Enter,
        Leave,
        End
    };

    // The walk borrows the environment, which must not change meanwhile.
    explicit TreeWalk(const Zr::CZrEnv &env) : m_env(env) {}

    Step Next();

    // What the last step was about; null behind the end.
    const Zr::CZrEnvElement *Element() const { return m_elem; }
    // 0 for a section, 1 for its children, and so on.
    std::size_t Level() const { return m_level; }
    // After entering a block: its children are passed by, the next step leaves it.
    void PassChildren() { m_passChildren = true; }

private:
    Step MoveOn();

    const Zr::CZrEnv &m_env;
    const Zr::CZrEnvElement *m_elem = nullptr;
    std::size_t m_level = 0;
    Step m_step = Step::End;
    bool m_started = false;
    bool m_passChildren = false;
};

// Name and value, never null: the empty text stands for what is missing.
const char *NameOf(const Zr::CZrEnvElement &elem);
const char *ValueOf(const Zr::CZrEnvElement &elem);

// Where an element stands, for messages: "[Model] Loads@Factor". Long paths keep their last steps.
std::string PlaceOf(const Zr::CZrEnvElement &elem);

} // namespace zrtool

#endif
