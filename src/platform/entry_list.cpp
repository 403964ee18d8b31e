// Found entries, collected to be delivered in the order of their names.
#include "platform/entry_list.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/letter_case.h"

namespace zr::platform {

namespace {

constexpr std::size_t block_size = 32768;
constexpr std::size_t first_room = 64;

} // namespace

struct EntryList::Record {
    std::uint64_t size;
    std::int64_t modified;
    std::uint32_t attributes;
    char name[1]; // as long as it is, with its terminator
};

struct EntryList::Block {
    Block *before;
    alignas(Record) unsigned char bytes[block_size];
};

EntryList::~EntryList() {
    while (m_block != nullptr) {
        Block *before = m_block->before;
        delete m_block;
        m_block = before;
    }
    delete[] m_places;
}

bool EntryList::MakeRoom(std::size_t bytes) {
    if (m_count == m_room) {
        const std::size_t room = m_room == 0 ? first_room : m_room * 2;
        Place *places = new (std::nothrow) Place[room];
        if (places == nullptr)
            return false;
        std::copy(m_places, m_places + m_count, places);
        delete[] m_places;
        m_places = places;
        m_room = room;
    }
    if (m_block == nullptr || block_size - m_used < bytes) {
        Block *block = new (std::nothrow) Block;
        if (block == nullptr)
            return false;
        block->before = m_block;
        m_block = block;
        m_used = 0;
    }
    return true;
}

// "." and ".." have the smallest keys; every other name's first byte stands in the highest place.
std::uint64_t EntryList::KeyOf(const char *name) {
    if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)))
        return name[1] == 0 ? 0 : 1;
    std::uint64_t key = 0;
    for (std::size_t i = 0; i < sizeof key; ++i)
        key = key << 8 | (*name != 0 ? Capital(*name++) : 0U);
    return key;
}

bool EntryList::IsBefore(const Place &a, const Place &b) {
    if (a.key != b.key)
        return a.key < b.key;
    const char *x = a.record->name;
    const char *y = b.record->name;
    while (*x != 0 && Capital(*x) == Capital(*y)) {
        ++x;
        ++y;
    }
    if (Capital(*x) != Capital(*y))
        return Capital(*x) < Capital(*y);
    return std::strcmp(a.record->name, b.record->name) < 0;
}

bool EntryList::Add(const FoundEntry &entry) {
    const std::size_t length = std::strlen(entry.name);
    const std::size_t needed = offsetof(Record, name) + length + 1;
    const std::size_t bytes = (needed + alignof(Record) - 1) / alignof(Record) * alignof(Record);
    if (!MakeRoom(std::max(bytes, sizeof(Record))))
        return false;
    unsigned char *place = m_block->bytes + m_used;
    Record *record = new (place) Record{entry.size, entry.modified, entry.attributes, {}};
    std::memcpy(place + offsetof(Record, name), entry.name, length + 1);
    m_used += std::max(bytes, sizeof(Record));
    m_places[m_count++] = {KeyOf(entry.name), record};
    return true;
}

void EntryList::Sort() {
    std::sort(m_places, m_places + m_count, IsBefore);
}

bool EntryList::Next(FoundEntry &out) {
    if (m_next == m_count)
        return false;
    const Record *record = m_places[m_next++].record;
    out.size = record->size;
    out.modified = record->modified;
    out.attributes = record->attributes;
    std::strcpy(out.name, reinterpret_cast<const char *>(record) + offsetof(Record, name));
    return true;
}

} // namespace zr::platform
