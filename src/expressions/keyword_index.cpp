// The keywords of a scanner: the caller's list, sorted through an index.
#include "expressions/keyword_index.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include <zrclb/heap.h>

namespace zr::expressions {

namespace {

int Lower(int c) {
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
}

int Upper(int c) {
    return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c;
}

// The letters among eight packed characters in lower case.
std::uint64_t LowerPacked(std::uint64_t packed) {
    constexpr std::uint64_t ones = 0x0101010101010101;
    constexpr std::uint64_t tops = 0x80 * ones;
    const std::uint64_t low_bits = packed & ~tops;
    const std::uint64_t from_a = low_bits + (0x80 - 'A') * ones;   // top bits: a character of 7 bits is at least "A"
    const std::uint64_t behind_z = low_bits + (0x7F - 'Z') * ones; // the same, behind "Z"
    return packed | (from_a & ~behind_z & ~packed & tops) >> 2;    // 0x20, what the cases differ in
}

} // namespace

KeywordIndex::~KeywordIndex() {
    heap_free(m_sorted);
}

bool KeywordIndex::Build(const char *const *keywords, bool ignore_case) {
    std::size_t count = 0;
    while (keywords != nullptr && keywords[count] != nullptr)
        ++count;
    if (count == 0)
        return true;
    if (count > std::numeric_limits<zr_long>::max() / sizeof(Keyword))
        return false;
    m_sorted = static_cast<Keyword *>(heap_malloc(static_cast<unsigned>(count * sizeof(Keyword))));
    if (m_sorted == nullptr)
        return false;
    m_keywords = keywords;
    m_count = static_cast<zr_long>(count);
    m_ignoreCase = ignore_case;
    for (zr_long i = 0; i < m_count; ++i)
        m_sorted[i] = {Head(keywords[i]), i};
    std::sort(m_sorted, m_sorted + count, [&](const Keyword &a, const Keyword &b) {
        const int order = Compare(a.head, keywords[a.position], b);
        return order != 0 ? order < 0 : a.position < b.position;
    });
    SettleRepeated();
    MakeGroups();
    return true;
}

// Of keywords with the same text all stand for the one that the bisection of the whole list meets.
void KeywordIndex::SettleRepeated() {
    for (zr_long i = 1; i < m_count; ++i) {
        const char *keyword = m_keywords[m_sorted[i].position];
        if (CompareTexts(keyword, m_keywords[m_sorted[i - 1].position]) != 0)
            continue;
        const zr_long met = Bisect(keyword);
        for (--i; i < m_count && CompareTexts(keyword, m_keywords[m_sorted[i].position]) == 0; ++i)
            m_sorted[i].position = met;
    }
}

void KeywordIndex::AddToGroup(int first, zr_long sorted, std::size_t length) {
    Group &group = m_groups[first];
    if (group.lengths == 0)
        group.low = sorted;
    group.high = sorted + 1;
    group.lengths |= std::uint64_t{1} << length % 64;
}

void KeywordIndex::MakeGroups() {
    for (zr_long i = 0; i < m_count; ++i) {
        const char *keyword = m_keywords[m_sorted[i].position];
        const std::size_t length = std::strlen(keyword);
        const int first = static_cast<unsigned char>(keyword[0]);
        AddToGroup(first, i, length);
        if (m_ignoreCase) {
            AddToGroup(Lower(first), i, length);
            AddToGroup(Upper(first), i, length);
        }
    }
}

std::uint64_t KeywordIndex::Head(const char *text) const {
    std::uint64_t head = 0;
    for (std::size_t i = 0; i < head_size; ++i)
        head = head << 8 | (*text != 0 ? static_cast<unsigned char>(*text++) : 0);
    return m_ignoreCase ? LowerPacked(head) : head;
}

// Byte order.
int KeywordIndex::CompareTexts(const char *name, const char *keyword) const {
    for (;; ++name, ++keyword) {
        int a = static_cast<unsigned char>(*name);
        int b = static_cast<unsigned char>(*keyword);
        if (m_ignoreCase) {
            a = Lower(a);
            b = Lower(b);
        }
        if (a != b || b == 0)
            return a - b;
    }
}

// The same for a name whose head is known. Heads that are equal and full leave the rest to be compared.
int KeywordIndex::Compare(std::uint64_t head, const char *name, const Keyword &keyword) const {
    if (head != keyword.head)
        return head < keyword.head ? -1 : 1;
    return (head & 0xFF) == 0 ? 0 : CompareTexts(name + head_size, m_keywords[keyword.position] + head_size);
}

zr_long KeywordIndex::FindIn(const Group &group, const char *name, std::size_t length, std::uint64_t packed) const {
    std::uint64_t head = 0;
    if (length > head_size)
        head = Head(name);
    else
        head = (m_ignoreCase ? LowerPacked(packed) : packed) << (head_size - length) * 8;
    zr_long low = group.low;
    zr_long high = group.high;
    while (low < high) {
        const zr_long middle = low + (high - low) / 2;
        const int order = Compare(head, name, m_sorted[middle]);
        if (order == 0)
            return m_sorted[middle].position;
        if (order < 0)
            high = middle;
        else
            low = middle + 1;
    }
    return -1;
}

// The first and the last keyword are looked at ahead, so that the search in between never has to.
zr_long KeywordIndex::Bisect(const char *name) const {
    const auto compare = [&](zr_long sorted) { return CompareTexts(name, m_keywords[m_sorted[sorted].position]); };
    if (compare(0) == 0)
        return m_sorted[0].position;
    if (compare(m_count - 1) == 0)
        return m_sorted[m_count - 1].position;
    zr_long low = 0;
    zr_long high = m_count - 1;
    while (low < high - 1) {
        const zr_long middle = low + (high - low) / 2;
        const int order = compare(middle);
        if (order == 0)
            return m_sorted[middle].position;
        (order < 0 ? high : low) = middle;
    }
    return -1;
}

} // namespace zr::expressions
