// Work on a thread whose stack has a given size.
#ifndef TESTS_PLATFORM_WIN32_SMALL_STACK_H
#define TESTS_PLATFORM_WIN32_SMALL_STACK_H

#include <cstddef>
#include <stdexcept>

#include <windows.h>

namespace zr::test {

// Returns when `work` has ended.
inline void RunOnStack(std::size_t size, void (*work)()) {
    HANDLE thread = CreateThread(
        nullptr, size,
        [](void *argument) -> DWORD {
            reinterpret_cast<void (*)()>(argument)();
            return 0;
        },
        reinterpret_cast<void *>(work), STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == nullptr)
        throw std::runtime_error("no thread");
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

} // namespace zr::test

#endif
