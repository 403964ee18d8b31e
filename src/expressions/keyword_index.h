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

    // Position in the caller's list of the keyword name[0..length-1], or -1.
    zr_long Find(const char *name, std::size_t length) const {
        const Group &group = groups_[static_cast<unsigned char>(name[0])];
        return (group.lengths >> LengthBit(length) & 1) != 0 ? FindIn(group, name, length) : -1;
    }

private:
    // The keywords with a first character: sorted_[low..high-1]. Bit n is set if one of them has n characters.
    struct Group {
        std::uint64_t lengths = 0;
        zr_long low = 0;
        zr_long high = 0;
    };

    // All lengths from 63 on share a bit.
    static std::size_t LengthBit(std::size_t length) { return length < 63 ? length : 63; }
    int Compare(const char *name, std::size_t length, zr_long sorted) const;
    zr_long FindIn(const Group &group, const char *name, std::size_t length) const;
    zr_long Bisect(const char *name, std::size_t length) const;
    void SettleRepeated();
    void AddToGroup(int first, zr_long sorted, std::size_t length);
    void MakeGroups();

    const char *const *keywords_ = nullptr;
    zr_long *sorted_ = nullptr; // owned
    zr_long count_ = 0;
    bool ignore_case_ = false;
    Group groups_[256] = {};
};

} // namespace zr::expressions

#endif
