// What the process holds.
#ifndef TESTS_PLATFORM_WIN32_PROCESS_MEASURES_H
#define TESTS_PLATFORM_WIN32_PROCESS_MEASURES_H

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
        DWORD handles = 0;
        GetProcessHandleCount(GetCurrentProcess(), &handles);
        now.handles = handles;
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
};

#endif
