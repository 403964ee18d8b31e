// Copying and joining of texts.
#include <zrclb/str.h>

#include <climits>
#include <cstddef>
#include <cstring>

#include <zrclb/heap.h>

namespace zr::frame {
namespace {

// Length of `text`, of which at most `limit` characters are looked at.
std::size_t BoundedLength(const char *text, std::size_t limit) {
    const void *end = std::memchr(text, '\0', limit);
    return end != nullptr ? static_cast<std::size_t>(static_cast<const char *>(end) - text) : limit;
}

// Whether first..last is a range at all. Where it begins shows the text itself.
bool IsRange(int first, int last) {
    return first >= 0 && last >= first;
}

// Copies the characters from first to last, as far as src has them, to dst, and terminates it.
void CopyRange(char *dst, const char *src, int first, int last) {
    auto start = static_cast<std::size_t>(first);
    if (BoundedLength(src, start) < start) {
        *dst = '\0';
        return;
    }
    std::size_t length = BoundedLength(src + start, static_cast<std::size_t>(last) - start + 1);
    std::memmove(dst, src + start, length);
    dst[length] = '\0';
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

char *str_cpy(char *dst, const char *src) noexcept {
    if (dst == nullptr) {
        return nullptr;
    }
    if (src == nullptr) {
        *dst = '\0';
        return dst;
    }
    std::memmove(dst, src, std::strlen(src) + 1);
    return dst;
}

char *str_ncpy(char *dst, const char *src, int n) noexcept {
    if (dst == nullptr || n < 1) {
        return nullptr;
    }
    std::size_t length = src != nullptr ? BoundedLength(src, static_cast<std::size_t>(n)) : 0;
    if (length > 0) {
        std::memmove(dst, src, length);
    }
    dst[length] = '\0';
    return dst;
}

char *str_pcpy(char *dst, const char *src, int first, int last) noexcept {
    if (dst == nullptr) {
        return nullptr;
    }
    if (src == nullptr || !IsRange(first, last)) {
        *dst = '\0';
    } else {
        CopyRange(dst, src, first, last);
    }
    return dst;
}

char *str_cat(char *dst, const char *src) noexcept {
    if (dst != nullptr && src != nullptr) {
        std::memcpy(dst + std::strlen(dst), src, std::strlen(src) + 1);
    }
    return dst;
}

char *str_ncat(char *dst, const char *src, short n) noexcept {
    if (dst != nullptr && src != nullptr) {
        // A negative count is a huge one.
        std::size_t length = n >= 0 ? BoundedLength(src, static_cast<std::size_t>(n)) : std::strlen(src);
        char *end = dst + std::strlen(dst);
        std::memcpy(end, src, length);
        end[length] = '\0';
    }
    return dst;
}

char *str_pcat(char *dst, const char *src, int first, int last) noexcept {
    if (dst != nullptr && src != nullptr && IsRange(first, last)) {
        CopyRange(dst + std::strlen(dst), src, first, last);
    }
    return dst;
}

char *str_alloc(const char *src) noexcept {
    if (src == nullptr) {
        return nullptr;
    }
    std::size_t length = std::strlen(src);
    if (length >= UINT_MAX) {
        return nullptr;
    }
    auto *copy = static_cast<char *>(heap_calloc(static_cast<unsigned>(length) + 1, 1));
    if (copy != nullptr) {
        std::memcpy(copy, src, length);
    }
    return copy;
}
}
