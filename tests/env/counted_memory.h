// Counts what the program allocates with new and has not given back. Replaces the program's operator new, so only its test
// source includes this.
#ifndef TESTS_ENV_COUNTED_MEMORY_H
#define TESTS_ENV_COUNTED_MEMORY_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace zr::test {

inline std::atomic<long long> living_blocks = 0;
inline std::atomic<long long> living_bytes = 0;
inline std::atomic<long long> most_bytes = 0; // that lived at a time; a test sets it to living_bytes to begin anew

// In front of the block lie its size and the address of the memory that it is a part of.
inline void *AllocateCounted(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) noexcept {
    constexpr std::size_t front = sizeof(void *) + sizeof(std::size_t);
    void *memory = std::malloc(size + alignment + front);
    if (memory == nullptr)
        return nullptr;
    const auto first = reinterpret_cast<std::uintptr_t>(memory) + front;
    void **block = reinterpret_cast<void **>((first + alignment - 1) / alignment * alignment);
    block[-1] = memory;
    reinterpret_cast<std::size_t *>(block)[-2] = size;
    ++living_blocks;
    const long long bytes = living_bytes += static_cast<long long>(size);
    if (bytes > most_bytes)
        most_bytes = bytes;
    return block;
}

inline void *AllocateCountedOrThrow(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) {
    void *block = AllocateCounted(size, alignment);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

inline void ReleaseCounted(void *block) noexcept {
    if (block == nullptr)
        return;
    --living_blocks;
    living_bytes -= static_cast<long long>(static_cast<std::size_t *>(block)[-2]);
    std::free(static_cast<void **>(block)[-1]);
}

} // namespace zr::test

void *operator new(std::size_t size) {
    return zr::test::AllocateCountedOrThrow(size);
}
void *operator new[](std::size_t size) {
    return zr::test::AllocateCountedOrThrow(size);
}
void *operator new(std::size_t size, std::align_val_t alignment) {
    return zr::test::AllocateCountedOrThrow(size, static_cast<std::size_t>(alignment));
}
void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    return zr::test::AllocateCounted(size);
}
void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
    return zr::test::AllocateCounted(size);
}
void operator delete(void *block) noexcept {
    zr::test::ReleaseCounted(block);
}
void operator delete[](void *block) noexcept {
    zr::test::ReleaseCounted(block);
}
void operator delete(void *block, std::size_t) noexcept {
    zr::test::ReleaseCounted(block);
}
void operator delete[](void *block, std::size_t) noexcept {
    zr::test::ReleaseCounted(block);
}
void operator delete(void *block, std::align_val_t) noexcept {
    zr::test::ReleaseCounted(block);
}
void operator delete(void *block, std::size_t, std::align_val_t) noexcept {
    zr::test::ReleaseCounted(block);
}
void operator delete(void *block, const std::nothrow_t &) noexcept {
    zr::test::ReleaseCounted(block);
}
void operator delete[](void *block, const std::nothrow_t &) noexcept {
    zr::test::ReleaseCounted(block);
}

#endif
