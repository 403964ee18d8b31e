// The keywords of a scanner: the caller's list, sorted through an index.
#ifndef ZR_EXPRESSIONS_KEYWORD_INDEX_H
#define ZR_EXPRESSIONS_KEYWORD_INDEX_H

#include <cstddef>
#include <cstdint>

#include <zrclb/types.h>

namespace zr::expressions {

class KeywordIndex {
public:
    KeywordIndex() = default;
    ~KeywordIndex();
    KeywordIndex(const KeywordIndex &) = delete;
    KeywordIndex &operator=(const KeywordIndex &) = delete;

    // Sorts the positions of `keywords`, a list that ends with null, or null; it stays the caller's. Equal texts keep their order.
    // False if memory runs out: then there are no keywords.
    bool Build(const char *const *keywords, bool ignore_case);

    // Position in the caller's list of the keyword name[0..length-1], or -1. There is a zero byte behind the name, and its last
    // characters, eight at most, are also in `packed`, the last one lowest.
    zr_long Find(const char *name, std::size_t length, std::uint64_t packed) const {
        const Group &group = m_groups[static_cast<unsigned char>(name[0])];
        return (group.lengths >> length % 64 & 1) != 0 ? FindIn(group, name, length, packed) : -1;
    }

private:
    static constexpr std::size_t head_size = 8;

    struct Keyword {
        std::uint64_t head; // the first characters, the very first one on top; what is missing is 0
        zr_long position;   // in the caller's list
    };

    // The keywords with a first character: m_sorted[low..high-1]. Bit n % 64 is set if one of them has n characters.
    struct Group {
        std::uint64_t lengths = 0;
        zr_long low = 0;
        zr_long high = 0;
    };

    std::uint64_t Head(const char *text) const;
    int CompareTexts(const char *name, const char *keyword) const;
    int Compare(std::uint64_t head, const char *name, const Keyword &keyword) const;
    zr_long FindIn(const Group &group, const char *name, std::size_t length, std::uint64_t packed) const;
    zr_long Bisect(const char *name) const;
    void SettleRepeated();
    void AddToGroup(int first, zr_long sorted, std::size_t length);
    void MakeGroups();

    const char *const *m_keywords = nullptr;
    Keyword *m_sorted = nullptr; // owned
    zr_long m_count = 0;
    bool m_ignoreCase = false;
    Group m_groups[256] = {};
};

} // namespace zr::expressions

#endif
