// What the process holds.
#ifndef TESTS_PLATFORM_WIN32_PROCESS_MEASURES_H
#define TESTS_PLATFORM_WIN32_PROCESS_MEASURES_H

#include <cstdint>

#include <windows.h>

struct ProcessMeasures {
    long long handles = 0;
    long long mappings = 0; // pieces of the address space
    long long space = 0;    // their bytes
    long long heap = 0;     // bytes that are allocated
    long long keys = 0;     // the next index of thread storage

    static constexpr bool space_tells_leaks = true;

    static ProcessMeasures Now() {
        ProcessMeasures now;
        now.handles = OpenHandles();
        MEMORY_BASIC_INFORMATION piece;
        for (const char *at = nullptr; VirtualQuery(at, &piece, sizeof piece) != 0; at += piece.RegionSize) {
            if (piece.State != MEM_FREE) {
                ++now.mappings;
                now.space += static_cast<long long>(piece.RegionSize);
            }
        }
        HANDLE heaps[64];
        const DWORD count = GetProcessHeaps(64, heaps);
        for (DWORD i = 0; i < count && i < 64; ++i) {
            PROCESS_HEAP_ENTRY entry = {};
            while (HeapWalk(heaps[i], &entry)) {
                if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
                    now.heap += entry.cbData;
            }
        }
        now.keys = TlsAlloc();
        TlsFree(static_cast<DWORD>(now.keys));
        return now;
    }

    // Those with small numbers, which are given out first, are tried one by one: some systems don't tell how many there are.
    static long long OpenHandles() {
        constexpr std::uintptr_t behind = 0x2000;
        long long count = 0;
        DWORD flags = 0;
        for (std::uintptr_t number = 4; number < behind; number += 4)
            count += GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) ? 1 : 0;
        return count;
    }
};

#endif
