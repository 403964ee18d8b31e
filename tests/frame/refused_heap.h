// Lets heap_malloc, heap_calloc and heap_realloc fail, for the library's own calls too. The build leads the calls of a program whose test
// source includes this here; one source of a program only. Counts what heap_malloc gave and heap_free has not taken back, too, and gives
// blocks as if they had been in use before: not zero.
#ifndef TESTS_FRAME_REFUSED_HEAP_H
#define TESTS_FRAME_REFUSED_HEAP_H

#include <algorithm>
#include <atomic>
#include <cstring>

extern "C" void *__real_heap_malloc(unsigned int size) noexcept;
extern "C" void *__real_heap_calloc(unsigned int count, unsigned int size) noexcept;
extern "C" void *__real_heap_realloc(void *block, unsigned int size) noexcept;
extern "C" void __real_heap_free(void *block) noexcept;

namespace zr::test {

// While it lives, the allocation that comes after so many others calls `action` first. One at a time.
class HeapInterruption {
public:
    HeapInterruption(int others, void (*action)()) {
        s_action = action;
        s_left = others;
    }
    HeapInterruption(const HeapInterruption &) = delete;
    HeapInterruption &operator=(const HeapInterruption &) = delete;
    ~HeapInterruption() { s_left = -1; }

    bool Met() const { return s_left < 0; } // there was such an allocation

    static void Count() {
        if (s_left >= 0 && s_left-- == 0)
            s_action();
    }

private:
    static inline void (*s_action)() = nullptr;
    static inline int s_left = -1;
};

// While it lives, the allocation that comes after so many others fails, and with `lasting` all behind it. One at a time.
class HeapRefusal {
public:
    explicit HeapRefusal(int others, bool lasting = false) {
        s_left = others;
        s_lasting = lasting;
        s_met = false;
    }
    HeapRefusal(const HeapRefusal &) = delete;
    HeapRefusal &operator=(const HeapRefusal &) = delete;
    ~HeapRefusal() { s_left = -1; }

    bool Met() const { return s_met; } // an allocation failed

    static bool Refuses() {
        HeapInterruption::Count();
        if (s_left < 0)
            return false;
        if (s_left > 0) {
            --s_left;
            return false;
        }
        s_met = true;
        if (!s_lasting)
            s_left = -1;
        return true;
    }

private:
    static inline int s_left = -1;
    static inline bool s_lasting = false;
    static inline bool s_met = false;
};

// Blocks of heap_malloc that were not there when it was made. Only where those of heap_calloc and heap_realloc are not freed.
class HeapBalance {
public:
    HeapBalance() : m_before(s_blocks) {}

    int Open() const { return s_blocks - m_before; }

    static void *Given(void *block, unsigned size) {
        constexpr unsigned used_before = 8192; // no more: a block may be larger than memory
        if (block == nullptr)
            return nullptr;
        ++s_blocks;
        return std::memset(block, 0xA5, std::min(size, used_before));
    }
    static void TakenBack(const void *block) { s_blocks -= block != nullptr ? 1 : 0; }

private:
    static inline std::atomic<int> s_blocks = 0;

    const int m_before;
};

} // namespace zr::test

extern "C" void *__wrap_heap_malloc(unsigned int size) noexcept {
    return zr::test::HeapRefusal::Refuses() ? nullptr : zr::test::HeapBalance::Given(__real_heap_malloc(size), size);
}

extern "C" void __wrap_heap_free(void *block) noexcept {
    zr::test::HeapBalance::TakenBack(block);
    __real_heap_free(block);
}

extern "C" void *__wrap_heap_calloc(unsigned int count, unsigned int size) noexcept {
    return zr::test::HeapRefusal::Refuses() ? nullptr : __real_heap_calloc(count, size);
}

extern "C" void *__wrap_heap_realloc(void *block, unsigned int size) noexcept {
    return zr::test::HeapRefusal::Refuses() ? nullptr : __real_heap_realloc(block, size);
}

#endif
