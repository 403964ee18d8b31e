// The keywords of a scanner: the caller's list, sorted through an index.
#include "expressions/keyword_index.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <numeric>

#include <zrclb/heap.h>

namespace zr::expressions {

namespace {

int Lower(int c) {
    return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c;
}

int Upper(int c) {
    return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c;
}

// Byte order of a text of a known length and a terminated one.
int CompareTexts(const char *name, std::size_t length, const char *keyword, bool ignore_case) {
    for (std::size_t i = 0;; ++i) {
        int a = i < length ? static_cast<unsigned char>(name[i]) : 0;
        int b = static_cast<unsigned char>(keyword[i]);
        if (ignore_case) {
            a = Lower(a);
            b = Lower(b);
        }
        if (a != b || b == 0)
            return a - b;
    }
}

} // namespace

KeywordIndex::~KeywordIndex() {
    heap_free(sorted_);
}

bool KeywordIndex::Build(const char *const *keywords, bool ignore_case) {
    std::size_t count = 0;
    while (keywords != nullptr && keywords[count] != nullptr)
        ++count;
    if (count == 0)
        return true;
    if (count > std::numeric_limits<zr_long>::max() / sizeof(zr_long))
        return false;
    sorted_ = static_cast<zr_long *>(heap_malloc(static_cast<unsigned>(count * sizeof(zr_long))));
    if (sorted_ == nullptr)
        return false;
    keywords_ = keywords;
    count_ = static_cast<zr_long>(count);
    ignore_case_ = ignore_case;
    std::iota(sorted_, sorted_ + count, 0);
    std::sort(sorted_, sorted_ + count, [&](zr_long a, zr_long b) {
        const int order = CompareTexts(keywords[a], std::strlen(keywords[a]), keywords[b], ignore_case);
        return order != 0 ? order < 0 : a < b;
    });
    SettleRepeated();
    MakeGroups();
    return true;
}

// Of keywords with the same text all stand for the one that the bisection of the whole list meets.
void KeywordIndex::SettleRepeated() {
    for (zr_long i = 1; i < count_; ++i) {
        const char *keyword = keywords_[sorted_[i]];
        const std::size_t length = std::strlen(keyword);
        if (Compare(keyword, length, i - 1) != 0)
            continue;
        const zr_long met = Bisect(keyword, length);
        for (--i; i < count_ && Compare(keyword, length, i) == 0; ++i)
            sorted_[i] = met;
    }
}

void KeywordIndex::AddToGroup(int first, zr_long sorted, std::size_t length) {
    Group &group = groups_[first];
    if (group.lengths == 0)
        group.low = sorted;
    group.high = sorted + 1;
    group.lengths |= std::uint64_t{1} << LengthBit(length);
}

void KeywordIndex::MakeGroups() {
    for (zr_long i = 0; i < count_; ++i) {
        const char *keyword = keywords_[sorted_[i]];
        const std::size_t length = std::strlen(keyword);
        const int first = static_cast<unsigned char>(keyword[0]);
        AddToGroup(first, i, length);
        if (ignore_case_) {
            AddToGroup(Lower(first), i, length);
            AddToGroup(Upper(first), i, length);
        }
    }
}

int KeywordIndex::Compare(const char *name, std::size_t length, zr_long sorted) const {
    return CompareTexts(name, length, keywords_[sorted_[sorted]], ignore_case_);
}

zr_long KeywordIndex::FindIn(const Group &group, const char *name, std::size_t length) const {
    zr_long low = group.low;
    zr_long high = group.high;
    while (low < high) {
        const zr_long middle = low + (high - low) / 2;
        const int order = Compare(name, length, middle);
        if (order == 0)
            return sorted_[middle];
        if (order < 0)
            high = middle;
        else
            low = middle + 1;
    }
    return -1;
}

// The first and the last keyword are looked at ahead, so that the search in between never has to.
zr_long KeywordIndex::Bisect(const char *name, std::size_t length) const {
    if (Compare(name, length, 0) == 0)
        return sorted_[0];
    if (Compare(name, length, count_ - 1) == 0)
        return sorted_[count_ - 1];
    zr_long low = 0;
    zr_long high = count_ - 1;
    while (low < high - 1) {
        const zr_long middle = low + (high - low) / 2;
        const int order = Compare(name, length, middle);
        if (order == 0)
            return sorted_[middle];
        (order < 0 ? high : low) = middle;
    }
    return -1;
}

} // namespace zr::expressions
