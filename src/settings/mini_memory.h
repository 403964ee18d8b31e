// The records of settings files that are held in memory, and where they live.
//
// What a load brings lies in one block: the text of the file, cut into names and values where it stands, and the
// records made of it. What is written later is allocated piece by piece.
#ifndef ZR_SETTINGS_MINI_MEMORY_H
#define ZR_SETTINGS_MINI_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <zrclb/mini.h>

#include "settings/mini_names.h"

namespace zr::settings {

inline constexpr char mini_tag[] = "Mini";

// Ends the process.
[[noreturn]] void EndWithoutMemory();

// A new block of memory. Without memory the process ends.
void *TakeMemory(std::size_t size);

// Memory that is given out piece by piece and freed as a whole, with the last section that was made in it.
class MiniBlock {
public:
    // The caller holds it. `chunk_size` is what is asked for at a time.
    static MiniBlock *Create(std::size_t chunk_size);

    void Hold() { ++m_holders; }
    void Release();

    // `size` bytes, for any record.
    void *Take(std::size_t size) {
        size = (size + alignment - 1) / alignment * alignment;
        if (m_left < size)
            return TakeFromNew(size);
        m_left -= size;
        void *const piece = m_at;
        m_at += size;
        return piece;
    }

    // A copy of the text, terminated.
    char *Copy(std::string_view text);

    // Takes over a block of heap_malloc.
    void Own(char *text) { m_text = text; }

private:
    static constexpr std::size_t alignment = alignof(std::max_align_t);

    struct alignas(alignment) Chunk {
        Chunk *next;
    };

    MiniBlock() = default;
    void *TakeFromNew(std::size_t size);

    std::size_t m_holders = 1;
    std::size_t m_chunk_size = 0;
    Chunk *m_chunks = nullptr;
    char *m_at = nullptr;
    std::size_t m_left = 0;
    char *m_text = nullptr;
};

// Its parts belong to a block, unless said otherwise.
struct MiniEntry : mini_entry {
    MiniEntry *Next() const { return reinterpret_cast<MiniEntry *>(next); }
    std::string_view Name() const { return {name, name_size}; }
    std::string_view Value() const { return {value, value_size}; }

    std::uint32_t name_size;
    std::uint32_t value_size;
    bool owns_record; // with the name that it was made with
    bool owns_name;
    bool owns_value;
    bool may_hold_feed; // a line feed in name or value; nothing that was loaded has one
};

struct MiniSection : mini_section {
    MiniSection *Next() const { return reinterpret_cast<MiniSection *>(next); }
    std::string_view Name() const { return {name, name_size}; }
    MiniEntry *FirstEntry() const { return reinterpret_cast<MiniEntry *>(entries.first); }
    MiniEntry *Find(std::string_view entry) { return finder.Find(entries, entry); }

    std::uint32_t name_size;
    bool owns_name;
    MiniBlock *block; // in which it lies; null for one of its own
    NameFinder<MiniEntry> finder;
};

struct MiniFile : mini_file {
    MiniSection *FirstSection() const { return reinterpret_cast<MiniSection *>(sections.first); }
    MiniSection *Find(std::string_view section) { return finder.Find(sections, section); }
    bool Has(std::int32_t flag) const { return (flags & flag) != 0; }

    bool is_cut; // the file could not be read to its end
    NameFinder<MiniSection> finder;
};

inline MiniFile *FileOf(mini_file *handle) {
    return static_cast<MiniFile *>(handle);
}

// New records, in a block with names that belong to it, and by themselves with names copied. They are in no list.
MiniEntry *MakeEntry(MiniBlock &block, char *name, std::size_t name_size, char *value, std::size_t value_size);
MiniEntry *MakeEntry(std::string_view name);
MiniSection *MakeSection(MiniBlock &block, char *name, std::size_t name_size);
MiniSection *MakeSection(std::string_view name);

// Puts a section in its place: that of empty name in front of all, others behind.
void AddSection(MiniFile &file, MiniSection *section);
void AddEntry(MiniSection &section, MiniEntry *entry);

// Take a record out of its list and free it with all that belongs to it.
void RemoveEntry(MiniSection &section, MiniEntry *entry);
void RemoveSection(MiniFile &file, MiniSection *section);
void RemoveAllSections(MiniFile &file);

// Change a record's text to a copy of the new one, which may be a part of the old.
void SetValue(MiniEntry &entry, std::string_view value);
void SetName(MiniSection &section, MiniEntry &entry, std::string_view name);
void SetName(MiniFile &file, MiniSection &section, std::string_view name);

} // namespace zr::settings

#endif
