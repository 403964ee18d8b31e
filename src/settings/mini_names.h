// Names of the settings that are held in memory: as they are given, and tables by which their records are found.
#ifndef ZR_SETTINGS_MINI_NAMES_H
#define ZR_SETTINGS_MINI_NAMES_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <zrclb/heap.h>
#include <zrclb/list.h>

#include "settings/ini_lines.h"

namespace zr::settings {

inline constexpr std::size_t given_name_limit = 255;

// What counts of a section's name, and of a new name, that a caller gave: its first 255 characters, trimmed. Null
// counts as empty.
inline std::string_view GivenName(const char *name) {
    if (name == nullptr)
        return "";
    const std::string_view text(name, strnlen(name, given_name_limit));
    const auto is_blank = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    return text.empty() || (!is_blank(text.front()) && !is_blank(text.back())) ? text : Trimmed(text);
}

// A copy of such a name, for where the text that was given may go meanwhile: it may be one of the library's own.
class NameCopy {
public:
    explicit NameCopy(std::string_view name) : m_size(name.size()) {
        std::memcpy(m_text, name.data(), m_size);
        m_text[m_size] = 0;
    }
    const char *Text() const { return m_text; }
    std::string_view View() const { return {m_text, m_size}; }

private:
    std::size_t m_size;
    char m_text[given_name_limit + 1];
};

// Some bytes of a text as a number.
template <class Bits>
Bits BitsAt(const char *text) {
    Bits bits;
    std::memcpy(&bits, text, sizeof bits);
    return bits;
}

inline std::uint32_t HashOf(std::string_view name) {
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15U;
    const char *text = name.data();
    std::size_t left = name.size();
    std::uint64_t hash = left * factor;
    const auto mix = [&hash](std::uint64_t bits) {
        hash = (hash ^ bits) * factor;
        hash ^= hash >> 32;
    };
    for (; left > 8; left -= 8, text += 8)
        mix(BitsAt<std::uint64_t>(text));
    // The rest, of which some bytes count twice.
    if (left >= 4)
        mix(std::uint64_t{BitsAt<std::uint32_t>(text)} << 32 | BitsAt<std::uint32_t>(text + left - 4));
    else if (left > 0)
        mix(std::uint64_t{BitsAt<std::uint8_t>(text)} << 16 |
            std::uint64_t{BitsAt<std::uint8_t>(text + left / 2)} << 8 | BitsAt<std::uint8_t>(text + left - 1));
    return static_cast<std::uint32_t>(hash);
}

// memcmp for names, most of which are so short that the call would take longer than the work.
inline bool IsSame(const char *a, const char *b, std::size_t size) {
    if (size > 16)
        return std::memcmp(a, b, size) == 0;
    const auto both = [&](auto bits) { // from either end
        using Bits = decltype(bits);
        const std::size_t last = size - sizeof(Bits);
        return BitsAt<Bits>(a) == BitsAt<Bits>(b) && BitsAt<Bits>(a + last) == BitsAt<Bits>(b + last);
    };
    if (size >= 8)
        return both(std::uint64_t());
    if (size >= 4)
        return both(std::uint32_t());
    for (std::size_t i = 0; i < size; ++i) {
        if (a[i] != b[i])
            return false;
    }
    return true;
}

// Finds the first record of a name in a list of records, which have the fields next, name and name_size.
//
// At first it walks along the list. When walks have cost more than a table would, it makes one with all first records
// of their names. The table only speeds things up: without memory it stays at walking. Who changes the list says so.
// Records are plain memory: who frees the owner of a finder calls Forget before.
template <class Record>
class NameFinder {
public:
    Record *Find(const list_descriptor &list, std::string_view name) {
        if (m_slots != nullptr)
            return SlotOf(name, HashOf(name))->record;
        return Walk(list, name);
    }

    // The record came to be the last of the list.
    void NoteLast(Record *record) {
        if (m_slots == nullptr)
            return;
        if (++m_used > m_capacity / 2)
            return Forget();
        Put(record);
    }

    // The list changed in another way.
    void Forget() {
        heap_free(m_slots);
        m_slots = nullptr;
        m_walked = 0;
    }

private:
    struct Slot {
        std::uint32_t hash;
        std::uint32_t name_size;
        const char *name; // the record's: one step less to get there
        Record *record;   // null in a free slot
    };

    static constexpr std::size_t shortest = 5;    // lists with fewer records need no table
    static constexpr std::size_t free_walks = 64; // records that are passed before a table is thought of
    static constexpr zr_long longest = 1 << 26;   // with more records the table has no size that can be asked for

    Record *Walk(const list_descriptor &list, std::string_view name) {
        auto *record = reinterpret_cast<Record *>(list.first);
        for (; record != nullptr; record = record->Next()) {
            ++m_walked;
            if (record->Name() == name)
                break;
        }
        if (m_walked > free_walks + 2 * static_cast<std::size_t>(list.count))
            MakeTable(list);
        return record;
    }

    void MakeTable(const list_descriptor &list) {
        m_walked = 0;
        const auto count = static_cast<std::uint32_t>(list.count);
        if (count < shortest || list.count > longest)
            return;
        m_capacity = std::bit_ceil(count * 3);
        m_slots = static_cast<Slot *>(heap_calloc(m_capacity, sizeof(Slot)));
        if (m_slots == nullptr)
            return;
        m_used = count;
        for (auto *record = reinterpret_cast<Record *>(list.first); record != nullptr; record = record->Next())
            Put(record);
    }

    void Put(Record *record) {
        const std::string_view name = record->Name();
        const std::uint32_t hash = HashOf(name);
        Slot *const slot = SlotOf(name, hash);
        if (slot->record == nullptr)
            *slot = {hash, static_cast<std::uint32_t>(name.size()), name.data(), record};
    }

    // The slot with this name, or the free one where it belongs.
    Slot *SlotOf(std::string_view name, std::uint32_t hash) const {
        for (std::uint32_t i = hash;; ++i) {
            Slot *const slot = m_slots + (i & (m_capacity - 1));
            if (slot->record == nullptr ||
                (slot->hash == hash && slot->name_size == name.size() && IsSame(slot->name, name.data(), name.size())))
                return slot;
        }
    }

    Slot *m_slots = nullptr;
    std::uint32_t m_capacity = 0; // a power of two
    std::uint32_t m_used = 0;     // at least as many slots as are not free
    std::size_t m_walked = 0;
};

} // namespace zr::settings

#endif
