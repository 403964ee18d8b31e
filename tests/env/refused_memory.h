// Lets allocations fail, chosen by their size or their number. Replaces the program's operator new, so only its test source includes this.
#ifndef TESTS_ENV_REFUSED_MEMORY_H
#define TESTS_ENV_REFUSED_MEMORY_H

#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

namespace zr::test {

// While it lives, the allocation that comes after so many others fails; with an action it calls that and succeeds. One at a
// time.
class NthAllocation {
public:
    explicit NthAllocation(int others, void (*action)() = nullptr) {
        s_action = action;
        s_left = others;
        s_met = false;
    }
    NthAllocation(const NthAllocation &) = delete;
    NthAllocation &operator=(const NthAllocation &) = delete;
    ~NthAllocation() { s_left = -1; }

    bool Met() const { return s_met; } // there was such an allocation

    static bool Refuses() {
        if (s_left < 0 || s_left-- > 0)
            return false;
        s_met = true;
        if (s_action == nullptr)
            return true;
        s_action();
        return false;
    }

private:
    static inline void (*s_action)() = nullptr;
    static inline int s_left = -1;
    static inline bool s_met = false;
};

// While it lives, the next allocations of from..to bytes fail, as many as told. One at a time.
class Refusal {
public:
    explicit Refusal(std::size_t from, std::size_t to = std::numeric_limits<std::size_t>::max(), int times = 1)
        : m_times(times) {
        s_from = from;
        s_to = to;
        s_left = times;
    }
    Refusal(const Refusal &) = delete;
    Refusal &operator=(const Refusal &) = delete;
    ~Refusal() { s_left = 0; }

    bool Met() const { return s_left == 0; }             // all of them were asked for
    bool Untouched() const { return s_left == m_times; } // none was

    static void *Allocate(std::size_t size) {
        if (NthAllocation::Refuses())
            return nullptr;
        if (s_left == 0 || size < s_from || size > s_to)
            return std::malloc(size != 0 ? size : 1);
        --s_left;
        return nullptr;
    }

private:
    static inline std::size_t s_from = 0;
    static inline std::size_t s_to = 0;
    static inline int s_left = 0;

    int m_times;
};

inline void *AllocateOrThrow(std::size_t size) {
    void *block = Refusal::Allocate(size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

} // namespace zr::test

void *operator new(std::size_t size) {
    return zr::test::AllocateOrThrow(size);
}
void *operator new[](std::size_t size) {
    return zr::test::AllocateOrThrow(size);
}
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    return zr::test::Refusal::Allocate(size);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
    return zr::test::Refusal::Allocate(size);
}
void operator delete(void *block) noexcept {
    std::free(block);
}
void operator delete[](void *block) noexcept {
    std::free(block);
}
void operator delete(void *block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void *block, std::size_t) noexcept {
    std::free(block);
}
void operator delete(void *block, const std::nothrow_t &) noexcept {
    std::free(block);
}
void operator delete[](void *block, const std::nothrow_t &) noexcept {
    std::free(block);
}

#endif
