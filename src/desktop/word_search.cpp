// The search for an installed Word.
#include "desktop/word_search.h"

#include <cstring>
#include <memory>

#include <zrclb/files.h>
#include <zrclb/heap.h>
#include <zrclb/report.h>
#include <zrclb/str.h>

#include "platform/registry.h"
#include "platform/server_programs.h"

namespace zr::desktop {
namespace {

constexpr int not_found = 0;
constexpr int without_version = -1;
constexpr int unreadable_version = -2;

struct FreeBlock {
    void operator()(void *block) const { heap_free(block); }
};

// Reads the own value of a key below the classes, whose name holds the class id, to out[0..size-1].
bool ReadClassKey(const char *format, const char *class_id, char *out, std::size_t size) {
    char key[80];
    // The formats are those below, and none makes a longer key.
    std::strcpy(key, format);
    str_repl(key, sizeof key, "%s", class_id);
    return platform::ReadRegistryText(platform::RegistryHive::classes_root, key, nullptr, out, size);
}

// Takes blanks from both ends, or else quotes: a quoted text with blanks around it keeps its quotes.
void CleanPath(char *path) {
    const std::size_t length = std::strlen(path);
    str_trim(path);
    if (length <= 2 || std::strlen(path) != length || path[0] != '"' || path[length - 1] != '"')
        return;
    path[length - 1] = '\0';
    std::memmove(path, path + 1, length - 1);
}

// Reads the path of the program from a key; true if there is such a file. Without a value the path is empty.
bool FindProgram(const char *format, const char *class_id, winword_info &info) {
    if (!ReadClassKey(format, class_id, info.path, sizeof info.path))
        return false;
    CleanPath(info.path);
    return fio_exist("", info.path) != 0;
}

// The number in front of the first dot of a version.
int MajorNumber(const char *version) {
    char number[sizeof winword_info::version];
    std::strcpy(number, version);
    number[std::strcspn(number, ".")] = '\0';
    return static_cast<int>(convert_stol(str_trim(number)));
}

// The older entry of the registry, which tells the version itself.
int SearchOlderEntry(const char *class_id, winword_info &info) {
    if (!ReadClassKey("CLSID\\%s\\Version", class_id, info.version, sizeof info.version))
        info.version[0] = '\0';
    const int number = MajorNumber(info.version);
    if (!FindProgram("CLSID\\%s\\LocalServer", class_id, info))
        return not_found;
    return number < 1 ? without_version : number;
}

} // namespace

int ProgramVersion(const char *path) {
    constexpr std::size_t reserve = 4;
    constexpr std::size_t largest = 0x7FFFFFFF - reserve;
    if (fio_exist("", path) == 0) {
        zr_message("Invalid function call: file must exist", nullptr, nullptr, "winword", __LINE__);
        return unreadable_version;
    }
    const std::size_t size = platform::VersionRecordSize(path);
    if (size == 0)
        return unreadable_version;
    const std::unique_ptr<void, FreeBlock> record(size <= largest ? heap_malloc(static_cast<unsigned>(size + reserve))
                                                                  : nullptr);
    if (record == nullptr) {
        zr_message("Not enough memory", nullptr, nullptr, "winword", __LINE__);
        return unreadable_version;
    }
    if (!platform::ReadVersionRecord(path, record.get(), size))
        return unreadable_version;
    platform::FileVersion version;
    if (!platform::FindProductVersion(record.get(), version)) {
        zr_message("Could not retrieve Winword version info: VerQueryValue FAILED", nullptr, nullptr, "winword",
                   __LINE__);
        return unreadable_version;
    }
    return version.a;
}

int SearchWord(winword_info *info) {
    if (info == nullptr) {
        zr_error("NULL pInfo parameter", nullptr, nullptr, "winword", __LINE__);
        return not_found;
    }
    *info = {};
    char class_id[platform::class_id_size];
    if (!platform::FindClassId("Word.Document", class_id, sizeof class_id))
        return not_found;
    if (FindProgram("CLSID\\%s\\LocalServer32", class_id, *info) ||
        FindProgram("Wow6432Node\\CLSID\\%s\\LocalServer32", class_id, *info))
        return ProgramVersion(info->path);
    return SearchOlderEntry(class_id, *info);
}

} // namespace zr::desktop
