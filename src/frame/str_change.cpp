// Changing texts in place: blanks, replacing, inserting.
#include <zrclb/str.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <zrclb/report.h>

namespace zr::frame {
namespace {

void ReportError(const char *text, int line) {
    zr_error(text, nullptr, nullptr, "Str", line);
}

// The first `from` in s..end, or null.
const char *Find(const char *s, const char *end, std::string_view from) {
    std::size_t at = std::string_view(s, static_cast<std::size_t>(end - s)).find(from);
    return at != std::string_view::npos ? s + at : nullptr;
}

std::size_t CountOccurrences(const char *s, std::string_view from) {
    const char *end = s + std::strlen(s);
    std::size_t count = 0;
    for (const char *place = Find(s, end, from); place != nullptr; place = Find(place + from.size(), end, from)) {
        ++count;
    }
    return count;
}

// How many of `count` replacements fit one after the other into a buffer of `size` bytes, the text having `length`
// characters and each replacement changing that by `growth`. A text that shrinks only has to pass the first test.
std::size_t CountFitting(std::size_t count, std::size_t length, std::int64_t growth, int size) {
    std::int64_t room = std::int64_t{size} - 1 - static_cast<std::int64_t>(length);
    if (growth <= 0) {
        return growth <= room ? count : 0;
    }
    return room > 0 ? std::min(count, static_cast<std::size_t>(room / growth)) : 0;
}

// Replaces the first `count` occurrences, which are known to be there and to fit. The text moves to the end of the space
// that the result takes and is read from there, so that every character moves twice at most.
void ReplaceFirst(char *s, std::size_t count, const char *from, const char *to) {
    std::size_t from_length = std::strlen(from);
    std::size_t to_length = std::strlen(to);
    std::size_t ahead = to_length > from_length ? count * (to_length - from_length) : 0;
    char *start = s + ahead;
    std::size_t length = std::strlen(s);
    std::memmove(start, s, length + 1);
    const char *read = start;
    const char *end = start + length;
    char *write = s;
    for (std::size_t i = 0; i < count; ++i) {
        const char *place = Find(read, end, {from, from_length});
        if (place == nullptr) {
            break; // only if `from` lies in the text itself
        }
        auto kept = static_cast<std::size_t>(place - read);
        std::memmove(write, read, kept);
        std::memmove(write + kept, to, to_length);
        write += kept + to_length;
        read = place + from_length;
    }
    std::memmove(write, read, static_cast<std::size_t>(end - read) + 1);
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

char *str_trim(char *s) noexcept {
    return str_ltrim(str_rtrim(s));
}

char *str_ltrim(char *s) noexcept {
    if (s != nullptr) {
        const char *start = s + std::strspn(s, " ");
        std::memmove(s, start, std::strlen(start) + 1);
    }
    return s;
}

char *str_rtrim(char *s) noexcept {
    if (s != nullptr) {
        std::size_t length = std::strlen(s);
        while (length > 0 && s[length - 1] == ' ') {
            --length;
        }
        s[length] = '\0';
    }
    return s;
}

char *str_repl(char *s, int size, const char *from, const char *to) noexcept {
    if (s == nullptr || from == nullptr || to == nullptr) {
        ReportError("str_repl : Falsche Parameter", __LINE__);
        return nullptr;
    }
    if (*from == '\0') {
        return s;
    }
    char *place = std::strstr(s, from);
    if (place == nullptr) {
        return nullptr;
    }
    std::size_t from_length = std::strlen(from);
    std::size_t to_length = std::strlen(to);
    auto growth = static_cast<std::int64_t>(to_length) - static_cast<std::int64_t>(from_length);
    if (CountFitting(1, std::strlen(s), growth, size) == 0) {
        ReportError("str_repl : Buffer zu klein", __LINE__);
        return nullptr;
    }
    char *rest = place + from_length;
    std::memmove(place + to_length, rest, std::strlen(rest) + 1);
    std::memmove(place, to, to_length);
    return s;
}

int str_repl_all(char *s, int size, const char *from, const char *to) noexcept {
    if (s == nullptr || from == nullptr || to == nullptr) {
        ReportError("str_repl_all : Falsche Parameter", __LINE__);
        return 0;
    }
    if (*from == '\0') {
        return 0;
    }
    std::size_t from_length = std::strlen(from);
    std::size_t count = CountOccurrences(s, {from, from_length});
    auto growth = static_cast<std::int64_t>(std::strlen(to)) - static_cast<std::int64_t>(from_length);
    std::size_t fitting = CountFitting(count, std::strlen(s), growth, size);
    if (fitting > 0) {
        ReplaceFirst(s, fitting, from, to);
    }
    if (fitting < count) {
        ReportError("str_repl_all : Buffer zu klein", __LINE__);
        return -1;
    }
    return static_cast<int>(count);
}

char *str_ins(char *s, int size, int pos, const char *text) noexcept {
    if (s == nullptr || size <= 0 || pos < 0 || text == nullptr) {
        ReportError("str_ins: Falsche Parameter", __LINE__);
        return nullptr;
    }
    std::size_t length = std::strlen(s);
    std::size_t text_length = std::strlen(text);
    auto place = static_cast<std::size_t>(pos);
    if (place > length) {
        ReportError("str_ins: Index zu gro\xDF", __LINE__);
        return nullptr;
    }
    if (length == 0) {
        str_ncpy(s, text, size - 1);
        return s;
    }
    if (text_length == 0) {
        return s;
    }
    if (length + text_length >= static_cast<std::size_t>(size)) {
        ReportError("str_ins: Buffer zu klein", __LINE__);
        return nullptr;
    }
    std::memmove(s + place + text_length, s + place, length - place + 1);
    std::memmove(s + place, text, text_length);
    return s;
}
}
