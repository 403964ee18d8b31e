// The records of settings files that are held in memory, and where they live.
#include "settings/mini_memory.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>

#include <zrclb/heap.h>
#include <zrclb/report.h>

namespace zr::settings {

namespace {

char *CopyText(char *to, std::string_view text) {
    std::memcpy(to, text.data(), text.size());
    to[text.size()] = 0;
    return to;
}

char *NewText(std::string_view text) {
    return CopyText(static_cast<char *>(TakeMemory(text.size() + 1)), text);
}

bool HasFeed(std::string_view text) {
    return text.find('\n') != std::string_view::npos;
}

std::uint32_t SizeOf(std::string_view text) {
    return static_cast<std::uint32_t>(text.size());
}

// A record with its name behind it.
template <class Record>
Record *MakeRecord(std::string_view name) {
    auto *const record = new (TakeMemory(sizeof(Record) + name.size() + 1)) Record();
    record->name = CopyText(reinterpret_cast<char *>(record + 1), name);
    record->name_size = SizeOf(name);
    return record;
}

template <class Record>
void ReplaceName(Record &record, std::string_view name) {
    char *const old_name = record.owns_name ? record.name : nullptr;
    record.name = NewText(name);
    record.name_size = SizeOf(name);
    record.owns_name = true;
    heap_free(old_name);
}

void FreeEntry(MiniEntry *entry) {
    if (entry->owns_value)
        heap_free(entry->value);
    if (entry->owns_name)
        heap_free(entry->name);
    if (entry->owns_record)
        heap_free(entry);
}

void FreeSection(MiniSection *section) {
    for (MiniEntry *entry = section->FirstEntry(), *next; entry != nullptr; entry = next) {
        next = entry->Next();
        FreeEntry(entry);
    }
    section->finder.Forget();
    if (section->owns_name)
        heap_free(section->name);
    if (section->block != nullptr)
        section->block->Release();
    else
        heap_free(section);
}

list_element *Element(mini_entry *entry) {
    return reinterpret_cast<list_element *>(entry);
}

list_element *Element(mini_section *section) {
    return reinterpret_cast<list_element *>(section);
}

} // namespace

void EndWithoutMemory() {
    zr_exit("Insufficient of memory.", nullptr, nullptr, mini_tag, __LINE__);
}

void *TakeMemory(std::size_t size) {
    void *const memory =
        size <= std::numeric_limits<unsigned>::max() ? heap_malloc(static_cast<unsigned>(size)) : nullptr;
    if (memory == nullptr)
        EndWithoutMemory();
    return memory;
}

MiniBlock *MiniBlock::Create(std::size_t chunk_size) {
    auto *const block = new (TakeMemory(sizeof(MiniBlock))) MiniBlock();
    block->m_chunk_size = chunk_size;
    return block;
}

void MiniBlock::Release() {
    if (--m_holders > 0)
        return;
    for (Chunk *chunk = m_chunks, *next; chunk != nullptr; chunk = next) {
        next = chunk->next;
        heap_free(chunk);
    }
    heap_free(m_text);
    heap_free(this);
}

void *MiniBlock::TakeFromNew(std::size_t size) {
    const std::size_t room = std::max(size, m_chunk_size);
    auto *const chunk = static_cast<Chunk *>(TakeMemory(sizeof(Chunk) + room));
    chunk->next = m_chunks;
    m_chunks = chunk;
    char *const piece = reinterpret_cast<char *>(chunk + 1);
    m_at = piece + size;
    m_left = room - size;
    return piece;
}

char *MiniBlock::Copy(std::string_view text) {
    return CopyText(static_cast<char *>(Take(text.size() + 1)), text);
}

MiniEntry *MakeEntry(MiniBlock &block, char *name, std::size_t name_size, char *value, std::size_t value_size) {
    auto *const entry = new (block.Take(sizeof(MiniEntry))) MiniEntry();
    entry->name = name;
    entry->name_size = static_cast<std::uint32_t>(name_size);
    entry->value = value;
    entry->value_size = static_cast<std::uint32_t>(value_size);
    return entry;
}

MiniEntry *MakeEntry(std::string_view name) {
    auto *const entry = MakeRecord<MiniEntry>(name);
    entry->owns_record = true;
    entry->may_hold_feed = HasFeed(name);
    return entry;
}

MiniSection *MakeSection(MiniBlock &block, char *name, std::size_t name_size) {
    auto *const section = new (block.Take(sizeof(MiniSection))) MiniSection();
    section->name = name;
    section->name_size = static_cast<std::uint32_t>(name_size);
    section->block = &block;
    block.Hold();
    return section;
}

MiniSection *MakeSection(std::string_view name) {
    return MakeRecord<MiniSection>(name);
}

void AddSection(MiniFile &file, MiniSection *section) {
    if (section->name_size == 0) {
        list_insert_before(&file.sections, nullptr, Element(section));
        file.finder.Forget();
        return;
    }
    list_insert_after(&file.sections, nullptr, Element(section));
    file.finder.NoteLast(section);
}

void AddEntry(MiniSection &section, MiniEntry *entry) {
    list_insert_after(&section.entries, nullptr, Element(entry));
    section.finder.NoteLast(entry);
}

void RemoveEntry(MiniSection &section, MiniEntry *entry) {
    section.finder.Forget();
    list_delete(&section.entries, Element(entry));
    FreeEntry(entry);
}

void RemoveSection(MiniFile &file, MiniSection *section) {
    file.finder.Forget();
    list_delete(&file.sections, Element(section));
    FreeSection(section);
}

void RemoveAllSections(MiniFile &file) {
    file.finder.Forget();
    for (MiniSection *section = file.FirstSection(), *next; section != nullptr; section = next) {
        next = section->Next();
        FreeSection(section);
    }
    list_init(&file.sections);
}

void SetValue(MiniEntry &entry, std::string_view value) {
    char *const old_value = entry.owns_value ? entry.value : nullptr;
    entry.may_hold_feed = entry.may_hold_feed || HasFeed(value);
    entry.value = NewText(value);
    entry.value_size = SizeOf(value);
    entry.owns_value = true;
    heap_free(old_value);
}

void SetName(MiniSection &section, MiniEntry &entry, std::string_view name) {
    section.finder.Forget();
    entry.may_hold_feed = entry.may_hold_feed || HasFeed(name);
    ReplaceName(entry, name);
}

void SetName(MiniFile &file, MiniSection &section, std::string_view name) {
    file.finder.Forget();
    ReplaceName(section, name);
}

} // namespace zr::settings
