// What the parts of the file name value share: how its texts are measured and stored, and how it reports.
#ifndef ZR_FILES_FILE_NAME_TEXT_H
#define ZR_FILES_FILE_NAME_TEXT_H

#include <cstddef>
#include <cstring>

#include <zrclb/report.h>

namespace zr::files {

// Characters that a name, an extension or a directory given to a setter may have.
inline constexpr std::size_t part_limit = 255;

inline bool IsEmpty(const char *text) {
    return text == nullptr || *text == '\0';
}

// Length of `text`, of which at most `limit` characters are looked at; 0 for null.
inline std::size_t LengthUpTo(const char *text, std::size_t limit) {
    if (text == nullptr)
        return 0;
    const void *end = std::memchr(text, '\0', limit);
    return end != nullptr ? static_cast<std::size_t>(static_cast<const char *>(end) - text) : limit;
}

// Copies at most `limit` characters of `text` and a terminator to out[0..limit]. The two may overlap; null is empty.
inline void StoreUpTo(char *out, const char *text, std::size_t limit) {
    const std::size_t length = LengthUpTo(text, limit);
    if (length > 0)
        std::memmove(out, text, length);
    out[length] = '\0';
}

// Cuts a backslash at the end of `text`.
inline void CutTrailingBackslash(char *text) {
    const std::size_t length = std::strlen(text);
    if (length > 0 && text[length - 1] == '\\')
        text[length - 1] = '\0';
}

inline void ReportFileName(const char *text, const char *object, int line) {
    zr_error(text, object, nullptr, "ZrFileName", line);
}

} // namespace zr::files

#endif
