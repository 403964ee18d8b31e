// Hash tables: opening and closing, names put and removed, slots listed.
#include <zrclb/hash.h>

#include <climits>
#include <cstdint>
#include <cstring>

#include <zrclb/heap.h>
#include <zrclb/report.h>
#include <zrclb/str.h>

#include "frame/hash_probe.h"
#include "frame/hash_size.h"

namespace zr::frame {

zr_long DefaultHash(const char *name) {
    if (name == nullptr) {
        zr_error(" NIL  parameter", nullptr, nullptr, "Hash", __LINE__);
        return 0;
    }
    std::uint32_t sum = 0;
    for (; *name != '\0'; ++name)
        sum += static_cast<std::uint32_t>(static_cast<signed char>(*name));
    return static_cast<zr_long>(sum);
}

namespace {

// The first slot on the way of a name that is free or holds it; -1 if the table is full of others.
zr_long FindSlot(const HashTable &table, const char *name, HashWay way) {
    zr_long position = way.home;
    do {
        if (table.tags[position] == 0 || Holds(table, position, way.tag, name))
            return position;
        position = NextSlot(table, position, way.home);
    } while (position != way.home);
    return -1;
}

// A copy of a text, or null. As str_alloc makes it, but the block need not be zero first.
char *CopyOf(const char *name) {
    const std::size_t length = std::strlen(name);
    if (length >= UINT_MAX)
        return nullptr;
    void *copy = heap_malloc(static_cast<unsigned>(length) + 1);
    return copy != nullptr ? static_cast<char *>(std::memcpy(copy, name, length + 1)) : nullptr;
}

bool IsUsed(const hash_table *table, zr_long index) {
    return table != nullptr && index >= 0 && index < table->size && table->slots[index].name != nullptr;
}

void FreeNames(HashTable &table) {
    for (zr_long index = 0; index < table.shown.size; ++index) {
        heap_free(table.shown.slots[index].name);
        table.shown.slots[index].name = nullptr;
        table.tags[index] = 0;
    }
    table.has_gaps = false;
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

hash_table *hash_open(zr_long id, zr_long size, hash_function fn, hash_table *parent) noexcept {
    const zr_long prime = HashSize(size);
    // The tags stand behind the slots.
    auto *slots = static_cast<hash_slot *>(heap_calloc(static_cast<unsigned>(prime), sizeof(hash_slot) + 1));
    if (slots == nullptr)
        return nullptr;
    auto *table = static_cast<HashTable *>(heap_malloc(sizeof(HashTable)));
    if (table == nullptr) {
        heap_free(slots);
        return nullptr;
    }
    if (fn == nullptr)
        fn = parent != nullptr ? parent->hash : DefaultHash;
    *table = {
        {id, prime, slots, fn, parent, 0, -1, -1}, reinterpret_cast<unsigned char *>(slots + prime), false, 0, false};
    if (parent != nullptr)
        ++parent->children;
    return &table->shown;
}

void hash_close(hash_table *table) noexcept {
    if (table == nullptr || table->children > 0)
        return;
    FreeNames(*Whole(table));
    heap_free(table->slots);
    if (table->parent != nullptr)
        --table->parent->children;
    heap_free(table);
}

void hash_reset(hash_table *table) noexcept {
    if (table == nullptr)
        return;
    FreeNames(*Whole(table));
    table->probe_position = -1;
    table->probe_step = -1;
}

zr_long hash_put(hash_table *table, const char *name, zr_value value) noexcept {
    if (table == nullptr || name == nullptr)
        return -1;
    HashTable &whole = *Whole(table);
    const HashWay way = WayOf(whole, name);
    const zr_long index = FindSlot(whole, name, way);
    if (index < 0)
        return -1;
    hash_slot &slot = table->slots[index];
    if (whole.tags[index] == 0) { // which tells of a free slot without a wait for the slot itself
        char *copy = CopyOf(name);
        if (copy == nullptr)
            return -1;
        slot.name = copy;
        whole.tags[index] = way.tag;
    }
    slot.value = value;
    return index;
}

zr_long hash_get_index(hash_table *table, zr_long index, char **name, zr_value *value) noexcept {
    const bool used = IsUsed(table, index);
    if (name != nullptr)
        *name = used ? str_alloc(table->slots[index].name) : nullptr;
    if (!used)
        return -1;
    if (value != nullptr)
        *value = table->slots[index].value;
    return index;
}

zr_long hash_remove_name(hash_table *table, const char *name) noexcept {
    if (table == nullptr || name == nullptr)
        return -1;
    const HashTable &whole = *Whole(table);
    return hash_remove_index(table, FindSlot(whole, name, WayOf(whole, name)));
}

zr_long hash_remove_index(hash_table *table, zr_long index) noexcept {
    if (!IsUsed(table, index))
        return -1;
    HashTable &whole = *Whole(table);
    heap_free(table->slots[index].name);
    table->slots[index].name = nullptr;
    whole.tags[index] = 0;
    whole.has_gaps = true;
    return index;
}
}
