// The order of names that mix letters and numbers.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

#include <zrclb/str.h>
#include <zrclb/window_utilities.h>

namespace {

using Byte = unsigned char;

// What a byte is in a name. The end of a text ends a token as a separator does.
enum class Kind : Byte {
    separator,
    digit,
    capital,
    small
};

struct Tables {
    std::array<Kind, 256> kind{};
    std::array<Byte, 256> folded{}; // capital letters made small, all others as they are

    constexpr Tables() {
        for (std::size_t i = 0; i < folded.size(); ++i)
            folded[i] = static_cast<Byte>(i);
        for (std::size_t i = '0'; i <= '9'; ++i)
            kind[i] = Kind::digit;
        for (std::size_t i = 'a'; i <= 'z'; ++i) {
            const std::size_t capital = i - 'a' + 'A';
            kind[i] = Kind::small;
            kind[capital] = Kind::capital;
            folded[capital] = static_cast<Byte>(i);
        }
    }
};

constexpr Tables tables;

Kind KindOf(Byte byte) {
    return tables.kind[byte];
}

int Folded(Byte byte) {
    return tables.folded[byte];
}

// A piece of a text, [begin, end).
struct Piece {
    const Byte *begin;
    const Byte *end;

    std::ptrdiff_t Length() const { return end - begin; }
};

Piece TokenAt(const Byte *text) {
    const Byte *end = text;
    while (KindOf(*end) != Kind::separator)
        ++end;
    return {text, end};
}

// What is left of a token in front of its trailing digits, and behind its leading ones.
Piece WithoutTrailingDigits(Piece token) {
    while (token.end != token.begin && KindOf(token.end[-1]) == Kind::digit)
        --token.end;
    return token;
}

Piece WithoutLeadingDigits(Piece token) {
    while (token.begin != token.end && KindOf(*token.begin) == Kind::digit)
        ++token.begin;
    return token;
}

// As str_icmp, with each piece's end for the terminator.
int CompareFolded(const Piece &a, const Piece &b) {
    const std::ptrdiff_t common = std::min(a.Length(), b.Length());
    for (std::ptrdiff_t i = 0; i < common; ++i) {
        const int difference = Folded(a.begin[i]) - Folded(b.begin[i]);
        if (difference != 0)
            return difference;
    }
    return (a.Length() > common ? Folded(a.begin[common]) : 0) - (b.Length() > common ? Folded(b.begin[common]) : 0);
}

// -1 or 1 at the first letter of which one is capital and the other small, the capital one in front. The pieces are
// equal apart from that.
int CompareCase(const Piece &a, const Piece &b) {
    for (std::ptrdiff_t i = 0; i < a.Length(); ++i) {
        if (a.begin[i] != b.begin[i])
            return KindOf(a.begin[i]) == Kind::capital ? -1 : 1;
    }
    return 0;
}

// The number that digits stand for, as convert_stol tells it.
std::int64_t Number(const Byte *begin, const Byte *end) {
    constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
    std::int64_t value = 0;
    for (; begin != end; ++begin)
        value = std::min(value * 10 + (*begin - '0'), highest);
    return value;
}

int CompareNumbers(std::int64_t a, std::int64_t b) {
    return static_cast<int>(a > b) - static_cast<int>(a < b);
}

bool EndsInDigit(const Piece &token) {
    return token.Length() != 0 && KindOf(token.end[-1]) == Kind::digit;
}

bool BeginsWithDigit(const Piece &token) {
    return token.Length() != 0 && KindOf(*token.begin) == Kind::digit;
}

// Whether the other parts are equal apart from their case; `order` is the tokens' order as far as these decide it.
bool HaveEqualParts(const Piece &a, const Piece &b, const Piece &part_a, const Piece &part_b, int &order) {
    if (part_a.Length() != part_b.Length() || CompareFolded(part_a, part_b) != 0) {
        order = CompareFolded(a, b);
        return false;
    }
    order = CompareCase(part_a, part_b);
    return order == 0;
}

int CompareTokens(const Piece &a, const Piece &b) {
    int order = 0;
    if (EndsInDigit(a) && EndsInDigit(b)) {
        const Piece part_a = WithoutTrailingDigits(a), part_b = WithoutTrailingDigits(b);
        if (!HaveEqualParts(a, b, part_a, part_b, order))
            return order;
        return CompareNumbers(Number(part_a.end, a.end), Number(part_b.end, b.end));
    }
    if (!BeginsWithDigit(a) || !BeginsWithDigit(b))
        return CompareFolded(a, b);
    const Piece part_a = WithoutLeadingDigits(a), part_b = WithoutLeadingDigits(b);
    if (!HaveEqualParts(a, b, part_a, part_b, order))
        return order;
    return CompareNumbers(Number(a.begin, part_a.begin), Number(b.begin, part_b.begin));
}

// Leads both texts to the tokens in which their first difference lies. False if there is none.
bool SkipEqualTokens(const Byte *&a, const Byte *&b) {
    std::size_t token = 0;
    for (std::size_t i = 0; a[i] == b[i]; ++i) {
        if (KindOf(a[i]) != Kind::separator)
            continue;
        if (a[i] == 0)
            return false;
        token = i + 1;
    }
    a += token;
    b += token;
    return true;
}

// Behind the token and the separator that ends it.
const Byte *Behind(const Piece &token) {
    return token.end + (*token.end != 0 ? 1 : 0);
}

} // namespace

extern "C" int wu_ANCmp(const char *a, const char *b) noexcept {
    if (a == nullptr || b == nullptr)
        return str_icmp(a, b);
    const Byte *rest_a = reinterpret_cast<const Byte *>(a);
    const Byte *rest_b = reinterpret_cast<const Byte *>(b);
    while (SkipEqualTokens(rest_a, rest_b)) {
        if (*rest_a == 0 || *rest_b == 0) // one text has no more
            return Folded(*rest_a) - Folded(*rest_b);
        const Piece token_a = TokenAt(rest_a), token_b = TokenAt(rest_b);
        const int order = CompareTokens(token_a, token_b);
        if (order != 0)
            return order;
        rest_a = Behind(token_a);
        rest_b = Behind(token_b);
    }
    return 0;
}
