// What a hash table holds beside its public record, and how names find their way through it.
//
// Each slot has a tag: 0 while it is free, else some bits that follow from its name. The tags stand close together, so a
// walk sees in the processor's cache which slots it can pass by without a look at their names.
#ifndef ZR_FRAME_HASH_PROBE_H
#define ZR_FRAME_HASH_PROBE_H

#include <cstdint>
#include <cstring>

#include <zrclb/hash.h>

namespace zr::frame {

struct HashTable {
    hash_table shown;    // first, so that a handle's address is that of the whole
    unsigned char *tags; // tags[0..size-1], in one block with the slots
    bool has_gaps;       // a name was removed since the table was empty: names may stand behind free slots on their way
    unsigned char searched_tag; // of the present search
    bool search_ended;          // no further slot of this table can hold the name searched for
};

inline HashTable *Whole(hash_table *table) {
    return reinterpret_cast<HashTable *>(table);
}

// Where the way of a name begins, which is also its step, and the name's tag.
struct HashWay {
    zr_long home; // 1..size-1
    unsigned char tag;
};

// The hash function of tables that have been given none.
zr_long DefaultHash(const char *name);

// Bits for the tag of a name with this hash. Many names share one sum of characters, so that of the default tells nothing
// more of a name than where its way begins: here the order of the characters does.
inline std::uint32_t TagBits(const HashTable &table, const char *name, std::uint32_t hash) {
    if (table.shown.hash == DefaultHash) {
        for (hash = 0; *name != '\0'; ++name)
            hash = hash * 31 + static_cast<unsigned char>(*name);
    }
    return hash * 0x9E3779B1u;
}

inline HashWay WayOf(const HashTable &table, const char *name) {
    const zr_long hash = table.shown.hash(name);
    const auto bits = static_cast<std::uint32_t>(hash);
    // The lowest long has no opposite in 32 bits; its absolute value is one without a sign.
    const std::uint32_t magnitude = hash < 0 ? 0u - bits : bits;
    const auto home = static_cast<zr_long>(magnitude % (static_cast<std::uint32_t>(table.shown.size) - 1)) + 1;
    return {home, static_cast<unsigned char>((TagBits(table, name, bits) >> 24) | 1u)};
}

inline zr_long NextSlot(const HashTable &table, zr_long position, zr_long step) {
    const auto size = static_cast<std::uint32_t>(table.shown.size);
    const std::uint32_t next = static_cast<std::uint32_t>(position) + static_cast<std::uint32_t>(step);
    return static_cast<zr_long>(next < size ? next : next - size);
}

// Whether the slot at `position` holds `name`, whose tag is `tag`.
inline bool Holds(const HashTable &table, zr_long position, unsigned char tag, const char *name) {
    return table.tags[position] == tag && std::strcmp(table.shown.slots[position].name, name) == 0;
}

} // namespace zr::frame

#endif
