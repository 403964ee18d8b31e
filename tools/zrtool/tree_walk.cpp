// Goes through a tree in the order of its text, without recursion.
#include "tree_walk.h"

namespace zrtool {

TreeWalk::Step TreeWalk::Next() {
    if (!m_started) {
        m_started = true;
        m_elem = m_env.GetFirstSection();
        return m_step = m_elem == nullptr ? Step::End : Step::Enter;
    }
    if (m_elem == nullptr)
        return Step::End;
    const Zr::CZrEnvBlock *block = m_elem->ToEnvBlock();
    if (m_step == Step::Enter && block != nullptr) {
        const Zr::CZrEnvElement *first = m_passChildren ? nullptr : block->GetFirstElement();
        m_passChildren = false;
        if (first == nullptr)
            return m_step = Step::Leave;
        m_elem = first;
        ++m_level;
        return m_step = Step::Enter;
    }
    return m_step = MoveOn();
}

TreeWalk::Step TreeWalk::MoveOn() {
    if (const Zr::CZrEnvElement *next = m_elem->GetSuccElem()) {
        m_elem = next;
        return Step::Enter;
    }
    m_elem = m_elem->GetParent();
    if (m_elem == nullptr)
        return Step::End;
    --m_level;
    return Step::Leave;
}

const char *NameOf(const Zr::CZrEnvElement &elem) {
    return elem.GetName() == nullptr ? "" : elem.GetName();
}

const char *ValueOf(const Zr::CZrEnvElement &elem) {
    const Zr::CZrEnvDataElement *data = elem.ToEnvDataElement();
    return data == nullptr || data->GetString() == nullptr ? "" : data->GetString();
}

std::string PlaceOf(const Zr::CZrEnvElement &elem) {
    constexpr std::size_t mostSteps = 16;
    const Zr::CZrEnvElement *at = &elem;
    std::string path;
    std::size_t steps = 0;
    for (; at->GetParent() != nullptr; at = at->GetParent()) {
        if (++steps <= mostSteps)
            path.insert(0, path.empty() ? "" : "@").insert(0, NameOf(*at));
    }
    if (steps > mostSteps)
        path.insert(0, "...@");
    const std::string section = std::string("[") + NameOf(*at) + "]";
    return path.empty() ? section : section + " " + path;
}

} // namespace zrtool
