// Comparing, measuring and searching of texts.
#include <zrclb/str.h>

#include <climits>
#include <cstddef>
#include <cstring>

#include <zrclb/report.h>

namespace zr::frame {
namespace {

constinit char *tok_list_position = nullptr; // where the walk over packed strings has come to
// Where the tokeniser has come to: for each thread apart, and apart from the one of the C library.
constinit thread_local char *token_position = nullptr;

int Sign(int value) {
    return (value > 0) - (value < 0);
}

// The order of two texts of which at least one is null.
int CompareNulls(const char *a, const char *b) {
    return (a != nullptr) - (b != nullptr);
}

int FoldAscii(char ch) {
    auto byte = static_cast<unsigned char>(ch);
    return byte >= 'A' && byte <= 'Z' ? byte + ('a' - 'A') : byte;
}

int IndexOf(const char *s, const char *place) {
    return place != nullptr && place - s <= INT_MAX ? static_cast<int>(place - s) : -1;
}

char *NextToken(char *s, const char *delimiters) {
    char *start = s != nullptr ? s : token_position;
    if (start == nullptr) {
        return nullptr;
    }
    start += std::strspn(start, delimiters);
    char *end = start + std::strcspn(start, delimiters);
    token_position = end;
    if (*end != '\0') {
        *end = '\0';
        ++token_position;
    }
    return end != start ? start : nullptr;
}

char *NextPacked(char *s) {
    if (s != nullptr) {
        tok_list_position = s;
    }
    if (tok_list_position == nullptr) {
        zr_error("The str_tok was called with wrong parameter <source>.", nullptr, nullptr, "Str", __LINE__);
        return nullptr;
    }
    char *text = tok_list_position;
    if (*text == '\0') {
        return nullptr;
    }
    tok_list_position = text + std::strlen(text) + 1;
    return text;
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

int str_eq(const char *a, const char *b) noexcept {
    return a != nullptr && b != nullptr && std::strcmp(a, b) == 0 ? 1 : 0;
}

int str_cmp(const char *a, const char *b) noexcept {
    return a != nullptr && b != nullptr ? Sign(std::strcmp(a, b)) : CompareNulls(a, b);
}

int str_ncmp(const char *a, const char *b, unsigned int n) noexcept {
    return a != nullptr && b != nullptr ? Sign(std::strncmp(a, b, n)) : CompareNulls(a, b);
}

int str_icmp(const char *a, const char *b) noexcept {
    if (a == nullptr || b == nullptr) {
        return CompareNulls(a, b);
    }
    while (*a != '\0' && FoldAscii(*a) == FoldAscii(*b)) {
        ++a;
        ++b;
    }
    return FoldAscii(*a) - FoldAscii(*b);
}

int str_ieq(const char *a, const char *b) noexcept {
    return a != nullptr && b != nullptr && str_icmp(a, b) == 0 ? 1 : 0;
}

int str_len(const char *s) noexcept {
    std::size_t length = s != nullptr ? std::strlen(s) : 0;
    return length < INT_MAX ? static_cast<int>(length) : INT_MAX;
}

char *str_chr(char *s, char ch) noexcept {
    return s != nullptr ? std::strchr(s, ch) : nullptr;
}

char *str_rchr(char *s, char ch) noexcept {
    return s != nullptr ? std::strrchr(s, ch) : nullptr;
}

int str_ichr(char *s, char ch) noexcept {
    return IndexOf(s, str_chr(s, ch));
}

int str_irchr(char *s, char ch) noexcept {
    return IndexOf(s, str_rchr(s, ch));
}

char *str_pos(char *s, const char *what) noexcept {
    return s != nullptr && what != nullptr ? std::strstr(s, what) : nullptr;
}

int str_ipos(char *s, const char *what) noexcept {
    return IndexOf(s, str_pos(s, what));
}

char *str_tok(char *s, const char *delimiters) noexcept {
    return delimiters != nullptr ? NextToken(s, delimiters) : NextPacked(s);
}
}
