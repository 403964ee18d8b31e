// Temporary folder and names, and the number that no other call gives.
#include "platform/temporary.h"

#include <cstring>

#include <windows.h>

#include <rpc.h>

#include "platform/files.h"

namespace zr::platform {

namespace {

// UuidCreate, looked up at run time, so that only those who ask for a name of this kind load its library.
using UuidCreateFunction = RPC_STATUS(RPC_ENTRY *)(UUID *);

} // namespace

std::size_t backend::TempFolder(char *out, std::size_t size) {
    if (out != nullptr && size != 0)
        out[0] = 0;
    char folder[MAX_PATH + 2];
    const DWORD length = GetTempPathA(sizeof folder, folder);
    if (length == 0 || length >= sizeof folder)
        return length;
    if (out == nullptr || size <= length)
        return length + 1;
    std::memcpy(out, folder, length + 1);
    return length;
}

unsigned backend::TempFileName(const char *folder, const char *prefix, unsigned unique, char *out) {
    out[0] = 0;
    constexpr std::size_t room_for_name = 14;
    if (folder == nullptr || strnlen(folder, path_size) > path_size - room_for_name)
        return 0;
    char path[path_size];
    const UINT number = GetTempFileNameA(folder, prefix == nullptr ? "" : prefix, unique, path);
    if (number != 0)
        std::strcpy(out, path);
    return number;
}

std::uint32_t backend::TickCount() {
    return GetTickCount();
}

int backend::CreateUuid(Uuid &out) {
    const HMODULE library = LoadLibraryA("rpcrt4.dll");
    if (library == nullptr)
        return static_cast<int>(GetLastError());
    UUID id;
    int status = RPC_S_CALL_FAILED;
    if (const FARPROC entry = GetProcAddress(library, "UuidCreate")) {
        UuidCreateFunction create;
        static_assert(sizeof create == sizeof entry);
        std::memcpy(&create, &entry, sizeof create);
        status = static_cast<int>(create(&id));
        out.data1 = static_cast<std::uint32_t>(id.Data1);
        out.data2 = id.Data2;
        out.data3 = id.Data3;
        std::memcpy(out.data4, id.Data4, sizeof out.data4);
    }
    FreeLibrary(library);
    return status;
}

} // namespace zr::platform
