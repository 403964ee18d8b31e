// Lets allocations fail, chosen by their size or their number, and counts what they give. Replaces the program's operator new, so only
// its test source includes this.
#ifndef TESTS_ENV_REFUSED_MEMORY_H
#define TESTS_ENV_REFUSED_MEMORY_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>

namespace zr::test {

// While it lives, the allocation that comes after so many others fails, and with `lasting` all behind it; with an action it
// calls that and succeeds. One at a time.
class NthAllocation {
public:
    explicit NthAllocation(int others, void (*action)() = nullptr) : NthAllocation(others, false) { s_action = action; }
    NthAllocation(int others, bool lasting) {
        s_action = nullptr;
        s_lasting = lasting;
        s_left = others;
        s_met = false;
    }
    NthAllocation(const NthAllocation &) = delete;
    NthAllocation &operator=(const NthAllocation &) = delete;
    ~NthAllocation() { s_left = -1; }

    bool Met() const { return s_met; } // there was such an allocation

    static bool Refuses() {
        if (s_left < 0)
            return false;
        if (s_left > 0) {
            --s_left;
            return false;
        }
        s_met = true;
        if (!s_lasting)
            s_left = -1;
        if (s_action == nullptr)
            return true;
        s_action();
        return false;
    }

private:
    static inline void (*s_action)() = nullptr;
    static inline bool s_lasting = false;
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

    static bool Refuses(std::size_t size) {
        if (s_left == 0 || size < s_from || size > s_to)
            return false;
        --s_left;
        return true;
    }

private:
    static inline std::size_t s_from = 0;
    static inline std::size_t s_to = 0;
    static inline int s_left = 0;

    int m_times;
};

// While it lives, no allocation fails, nor does one count.
class Unrefused {
public:
    Unrefused() { ++s_count; }
    Unrefused(const Unrefused &) = delete;
    Unrefused &operator=(const Unrefused &) = delete;
    ~Unrefused() { --s_count; }

    static bool Holds() { return s_count != 0; }

private:
    static inline int s_count = 0;
};

// What has been allocated since it was made.
class MemoryBalance {
public:
    MemoryBalance() { s_most = s_bytes.load(); }

    long long Open() const { return s_blocks - m_blocks; }   // blocks that were not there then
    long long Bytes() const { return s_bytes - m_bytes; }    // what they hold
    long long MostBytes() const { return s_most - m_bytes; } // that they held at a time; only of the newest balance
    long long Given() const { return s_given - m_given; }    // allocations, whether their blocks are still there or not

    static void CountGiven(std::size_t size) {
        const auto bytes = static_cast<long long>(size);
        const long long now = s_bytes.fetch_add(bytes, std::memory_order_relaxed) + bytes;
        if (now > s_most.load(std::memory_order_relaxed))
            s_most.store(now, std::memory_order_relaxed);
        s_blocks.fetch_add(1, std::memory_order_relaxed);
        s_given.fetch_add(1, std::memory_order_relaxed);
    }
    static void CountTakenBack(std::size_t size) {
        s_bytes.fetch_sub(static_cast<long long>(size), std::memory_order_relaxed);
        s_blocks.fetch_sub(1, std::memory_order_relaxed);
    }

private:
    static inline std::atomic<long long> s_blocks = 0;
    static inline std::atomic<long long> s_bytes = 0;
    static inline std::atomic<long long> s_most = 0;
    static inline std::atomic<long long> s_given = 0;

    const long long m_blocks = s_blocks;
    const long long m_bytes = s_bytes;
    const long long m_given = s_given;
};

// Stands in front of every block.
struct alignas(std::max_align_t) BlockFront {
    void *memory; // that the block is a part of
    std::size_t size;
};

// Nothing follows the block but where it is aligned more than usual, so that sanitizers see what goes beyond it.
inline void *Allocate(std::size_t size, std::size_t alignment = alignof(BlockFront)) {
    if (!Unrefused::Holds() && (NthAllocation::Refuses() || Refusal::Refuses(size)))
        return nullptr;
    const std::size_t more = sizeof(BlockFront) + (alignment > alignof(BlockFront) ? alignment : 0);
    void *memory = size <= std::numeric_limits<std::size_t>::max() - more ? std::malloc(size + more) : nullptr;
    if (memory == nullptr)
        return nullptr;
    const auto first = reinterpret_cast<std::uintptr_t>(memory) + sizeof(BlockFront);
    auto *block = reinterpret_cast<BlockFront *>((first + alignment - 1) / alignment * alignment);
    block[-1] = {memory, size};
    MemoryBalance::CountGiven(size);
    return block;
}

inline void *AllocateOrThrow(std::size_t size, std::size_t alignment = alignof(BlockFront)) {
    void *block = Allocate(size, alignment);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

inline void Release(void *block) {
    if (block == nullptr)
        return;
    const BlockFront front = static_cast<BlockFront *>(block)[-1];
    MemoryBalance::CountTakenBack(front.size);
    std::free(front.memory);
}

} // namespace zr::test

void *operator new(std::size_t size) {
    return zr::test::AllocateOrThrow(size);
}
void *operator new[](std::size_t size) {
    return zr::test::AllocateOrThrow(size);
}
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    return zr::test::Allocate(size);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
    return zr::test::Allocate(size);
}
void operator delete(void *block) noexcept {
    zr::test::Release(block);
}
void operator delete[](void *block) noexcept {
    zr::test::Release(block);
}
void operator delete(void *block, std::size_t) noexcept {
    zr::test::Release(block);
}
void operator delete[](void *block, std::size_t) noexcept {
    zr::test::Release(block);
}
void operator delete(void *block, const std::nothrow_t &) noexcept {
    zr::test::Release(block);
}
void operator delete[](void *block, const std::nothrow_t &) noexcept {
    zr::test::Release(block);
}
void *operator new(std::size_t size, std::align_val_t align) {
    return zr::test::AllocateOrThrow(size, static_cast<std::size_t>(align));
}
void operator delete(void *block, std::align_val_t) noexcept {
    zr::test::Release(block);
}
void operator delete(void *block, std::size_t, std::align_val_t) noexcept {
    zr::test::Release(block);
}

#endif
