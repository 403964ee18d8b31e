// Counts the changes of trees that can put an element elsewhere, or give it another number among its namesakes: whoever
// remembers such facts across foreign code can tell whether they still hold.
#ifndef ZR_ENV_TREE_EDITS_H
#define ZR_ENV_TREE_EDITS_H

#include <atomic>
#include <cstddef>

namespace Zr {

// One count for all trees of the process. Insertions at the end of a block are not counted: they change no other element.
inline std::atomic<std::size_t> g_uTreeEdits{0};

inline void CountTreeEdit() noexcept {
    g_uTreeEdits.fetch_add(1, std::memory_order_relaxed);
}

inline std::size_t TreeEdits() noexcept {
    return g_uTreeEdits.load(std::memory_order_relaxed);
}

} // namespace Zr

#endif
