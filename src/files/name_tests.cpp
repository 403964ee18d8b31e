// What a text may be taken for: the name of a file, of a folder, or one with an extension.
#include <zrclb/paths.h>

#include <climits>
#include <cstddef>
#include <cstring>

namespace zr::files {
namespace {

enum NameTest {
    GoodName = 0,
    BadName = 1,
    Pattern = 2
};

constexpr std::size_t name_limit = 255; // characters

// 0 for a null, empty or over-long name, which all are bad ones.
std::size_t NameLength(const char *name) {
    const void *end = name != nullptr ? std::memchr(name, '\0', name_limit + 1) : nullptr;
    return end != nullptr ? static_cast<std::size_t>(static_cast<const char *>(end) - name) : 0;
}

NameTest TestCharacters(const char *name, std::size_t length) {
    if (std::strpbrk(name, "\"/:;<>@\\|") != nullptr)
        return BadName;
    return std::strcspn(name, "*?") < length ? Pattern : GoodName;
}

bool MayEndAFolderName(char c) {
    return c != ' ' && c != '\t' && c != '.';
}

} // namespace
} // namespace zr::files

using namespace zr::files;

extern "C" {

int fio_test_filename(const char *name) noexcept {
    const std::size_t length = NameLength(name);
    return length > 0 ? TestCharacters(name, length) : BadName;
}

int fio_test_foldername(const char *name) noexcept {
    const std::size_t length = NameLength(name);
    if (length == 0 || !MayEndAFolderName(name[0]) || !MayEndAFolderName(name[length - 1]))
        return BadName;
    return TestCharacters(name, length);
}

int fio_get_extention_pos(const char *path) noexcept {
    const char *point = path != nullptr ? std::strrchr(path, '.') : nullptr;
    if (point == nullptr || point == path || point - path > INT_MAX)
        return -1;
    return static_cast<int>(point - path);
}

} // extern "C"
