// Leads the system calls of the library and of its C runtime to the faults of system_faults.h, by the tables in which both
// keep the addresses of what they call. One source of a program only.
#ifndef TESTS_PLATFORM_WIN32_FAILING_SYSTEM_H
#define TESTS_PLATFORM_WIN32_FAILING_SYSTEM_H

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>

#include <windows.h>

#include "platform/system_faults.h"

namespace zr::test {

// Whether the C runtime may forget what it has read for a call when it cannot read the rest, and takes a write of fewer
// bytes for one that failed; whether signals interrupt calls.
inline constexpr bool failed_read_may_lose_a_block = true;
inline constexpr bool short_write_is_a_failure = true;
inline constexpr bool signals_interrupt_calls = false;

namespace system_calls {

// The addresses that a module calls a function by; null if it does not call it.
inline void **ImportOf(HMODULE module, const char *function) {
    auto *base = reinterpret_cast<char *>(module);
    const auto *dos = reinterpret_cast<const IMAGE_DOS_HEADER *>(base);
    const auto *headers = reinterpret_cast<const IMAGE_NT_HEADERS *>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY &directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto *library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR *>(base + directory.VirtualAddress);
    for (; directory.VirtualAddress != 0 && library->Name != 0; ++library) {
        const auto *name = reinterpret_cast<const IMAGE_THUNK_DATA *>(base + library->OriginalFirstThunk);
        auto *address = reinterpret_cast<IMAGE_THUNK_DATA *>(base + library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                continue;
            const auto *entry = reinterpret_cast<const IMAGE_IMPORT_BY_NAME *>(base + name->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char *>(entry->Name), function) == 0)
                return reinterpret_cast<void **>(&address->u1.Function);
        }
    }
    return nullptr;
}

// Leads a module's calls of a function elsewhere. Answers the function.
template <class Function>
Function *Lead(HMODULE module, const char *function, Function *target) {
    void **address = ImportOf(module, function);
    if (address == nullptr)
        return nullptr;
    DWORD before = 0;
    VirtualProtect(address, sizeof *address, PAGE_READWRITE, &before);
    Function *original = reinterpret_cast<Function *>(*address);
    *address = reinterpret_cast<void *>(target);
    VirtualProtect(address, sizeof *address, before, &before);
    return original;
}

inline std::set<HANDLE> &FaultyHandles() {
    static std::set<HANDLE> handles;
    return handles;
}

inline SystemFaults::Answer NextOn(HANDLE handle, SystemCall call) {
    SystemFaults *faults = SystemFaults::Current();
    if (faults == nullptr || !FaultyHandles().contains(handle))
        return SystemFaults::Answer::Pass;
    const auto answer = faults->Next(call, SetFilePointer(handle, 0, nullptr, FILE_CURRENT));
    if (answer == SystemFaults::Answer::Fail)
        SetLastError(call == SystemCall::Write ? ERROR_DISK_FULL : ERROR_IO_DEVICE);
    return answer;
}

// What the program's own calls lead here were before.
inline decltype(CreateFileA) *real_create = nullptr;
inline decltype(GetFileInformationByHandle) *real_information = nullptr;
inline decltype(CloseHandle) *real_close = nullptr;

// The name tells whose file it is; `open` really opens it.
template <class Open>
HANDLE OpenFaulty(const std::string &path, SystemCall call, const Open &open) {
    SystemFaults *faults = SystemFaults::Current();
    if (faults == nullptr || !faults->IsMine(path))
        return open();
    if (faults->Next(call) == SystemFaults::Answer::Fail) {
        SetLastError(ERROR_TOO_MANY_OPEN_FILES);
        return INVALID_HANDLE_VALUE;
    }
    const HANDLE handle = open();
    if (handle != INVALID_HANDLE_VALUE) {
        FaultyHandles().insert(handle);
        faults->CountOpen(1);
    }
    return handle;
}

// The runtime opens streams; the library itself opens files for their status only.
inline HANDLE WINAPI OpenStatus(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD how,
                                DWORD flags, HANDLE like) {
    return OpenFaulty(path, SystemCall::Status,
                      [&] { return real_create(path, access, share, security, how, flags, like); });
}

inline HANDLE WINAPI OpenA(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD how,
                           DWORD flags, HANDLE like) {
    return OpenFaulty(path, SystemCall::Open,
                      [&] { return real_create(path, access, share, security, how, flags, like); });
}

inline HANDLE WINAPI OpenW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD how,
                           DWORD flags, HANDLE like) {
    return OpenFaulty(std::filesystem::path(path).string(), SystemCall::Open,
                      [&] { return CreateFileW(path, access, share, security, how, flags, like); });
}

inline BOOL WINAPI Read(HANDLE handle, LPVOID buffer, DWORD size, LPDWORD done, LPOVERLAPPED overlapped) {
    const auto answer = NextOn(handle, SystemCall::Read);
    if (answer == SystemFaults::Answer::Fail)
        return FALSE;
    return ReadFile(handle, buffer, static_cast<DWORD>(SystemFaults::Shortened(answer, size)), done, overlapped);
}

inline BOOL WINAPI Write(HANDLE handle, LPCVOID data, DWORD size, LPDWORD done, LPOVERLAPPED overlapped) {
    const auto answer = NextOn(handle, SystemCall::Write);
    if (answer == SystemFaults::Answer::Fail)
        return FALSE;
    return WriteFile(handle, data, static_cast<DWORD>(SystemFaults::Shortened(answer, size)), done, overlapped);
}

inline DWORD WINAPI Seek(HANDLE handle, LONG low, PLONG high, DWORD whence) {
    if (NextOn(handle, SystemCall::Seek) == SystemFaults::Answer::Fail)
        return INVALID_SET_FILE_POINTER;
    return SetFilePointer(handle, low, high, whence);
}

inline BOOL WINAPI Information(HANDLE handle, LPBY_HANDLE_FILE_INFORMATION out) {
    if (NextOn(handle, SystemCall::Status) == SystemFaults::Answer::Fail)
        return FALSE;
    return real_information(handle, out);
}

inline BOOL WINAPI Close(HANDLE handle) {
    const bool refused = NextOn(handle, SystemCall::Close) == SystemFaults::Answer::Fail;
    if (FaultyHandles().erase(handle) != 0 && SystemFaults::Current() != nullptr)
        SystemFaults::Current()->CountOpen(-1);
    const BOOL result = real_close(handle);
    if (refused)
        SetLastError(ERROR_IO_DEVICE);
    return refused ? FALSE : result;
}

// The C runtime that the program calls.
inline HMODULE Runtime() {
    void **open = ImportOf(GetModuleHandleA(nullptr), "_open");
    HMODULE runtime = nullptr;
    constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (open == nullptr || !GetModuleHandleExA(flags, static_cast<LPCSTR>(*open), &runtime))
        std::abort();
    return runtime;
}

// Needs all of these calls: a test of faults that meets none would tell nothing.
inline bool LeadAll() {
    const HMODULE program = GetModuleHandleA(nullptr);
    const HMODULE runtime = Runtime();
    real_create = Lead(program, "CreateFileA", OpenStatus);
    real_information = Lead(program, "GetFileInformationByHandle", Information);
    real_close = Lead(program, "CloseHandle", Close);
    const bool closes = Lead(runtime, "CloseHandle", Close) != nullptr;
    const bool reads = Lead(runtime, "ReadFile", Read) != nullptr;
    const bool writes = Lead(runtime, "WriteFile", Write) != nullptr;
    const bool opens_narrow = Lead(runtime, "CreateFileA", OpenA) != nullptr;
    const bool opens_wide = Lead(runtime, "CreateFileW", OpenW) != nullptr;
    Lead(runtime, "SetFilePointer", Seek); // or SetFilePointerEx: not every fault of a seek is met then
    if (!real_create || !real_information || !real_close || !closes || !reads || !writes ||
        !(opens_narrow || opens_wide)) {
        std::fputs("the runtime does not call the system as it is expected to\n", stderr);
        std::abort();
    }
    return true;
}

inline const bool all_led = LeadAll();

} // namespace system_calls

} // namespace zr::test

#endif
