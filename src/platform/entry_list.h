// Found entries, collected to be delivered in the order of their names.
#ifndef ZR_PLATFORM_ENTRY_LIST_H
#define ZR_PLATFORM_ENTRY_LIST_H

#include <cstddef>
#include <cstdint>

#include "platform/folder_search.h"

namespace zr::platform {

// Takes about 50 bytes for an entry. First Add, then Sort once, then Next. Threads: one at a time.
class EntryList {
public:
    EntryList() = default;
    ~EntryList();
    EntryList(const EntryList &) = delete;
    EntryList &operator=(const EntryList &) = delete;

    // False if memory has run out: the entry is missing then, those before are there.
    bool Add(const FoundEntry &entry);

    // ".", "..", then by name in upper case of code page 1252; what differs in case alone by the bytes.
    void Sort();

    // The next entry; false if there is none.
    bool Next(FoundEntry &out);

private:
    struct Block;
    struct Record;
    struct Place {
        std::uint64_t key; // the first bytes of the name in upper case, as one number to compare
        const Record *record;
    };

    static std::uint64_t KeyOf(const char *name);
    static bool IsBefore(const Place &a, const Place &b);
    bool MakeRoom(std::size_t bytes);

    Block *m_block = nullptr; // the one being filled; the full ones hang behind it
    std::size_t m_used = 0;   // bytes of that block
    Place *m_places = nullptr;
    std::size_t m_count = 0, m_room = 0, m_next = 0;
};

} // namespace zr::platform

#endif
