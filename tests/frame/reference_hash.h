// Hash table and chained search as their contract tells them, step by step: what the library's are compared with.
#ifndef TESTS_FRAME_REFERENCE_HASH_H
#define TESTS_FRAME_REFERENCE_HASH_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <zrclb/hash.h>

namespace zr::test {

class ReferenceHash {
public:
    struct Slot {
        std::optional<std::string> name;
        zr_value value = 0;
    };

    ReferenceHash(zr_long id, zr_long size, hash_function fn, ReferenceHash *parent)
        : m_id(id), m_hash(fn != nullptr ? fn : (parent != nullptr ? parent->m_hash : SumOf)), m_parent(parent) {
        std::int64_t prime = size;
        while (!IsPrime(prime))
            ++prime;
        m_slots.resize(static_cast<std::size_t>(prime));
        if (m_parent != nullptr)
            ++m_parent->m_children;
    }

    // Of one without children, before its end.
    void Close() {
        if (m_parent != nullptr)
            --m_parent->m_children;
    }

    zr_long Put(const std::string &name, zr_value value) {
        const std::int64_t index = FindSlot(name);
        if (index < 0)
            return -1;
        At(index) = {name, value};
        return static_cast<zr_long>(index);
    }

    // A name that is there needs no copy.
    zr_long PutWithoutMemory(const std::string &name, zr_value value) {
        const std::int64_t index = FindSlot(name);
        return index >= 0 && At(index).name ? Put(name, value) : -1;
    }

    zr_long Get(const std::string &name, zr_value *value, zr_long *owner) {
        ReferenceHash *found = nullptr;
        for (ReferenceHash *table = this; table != nullptr && found == nullptr; table = table->m_parent) {
            table->m_position = table->m_step = table->Home(name);
            if (table->At(table->m_position).name == name)
                found = table;
        }
        for (std::int64_t round = 1; found == nullptr && IsAnyLongerThan(round); ++round)
            found = LookAt(round, name);
        if (found == nullptr)
            return -1;
        *value = found->At(found->m_position).value;
        *owner = found->m_id;
        return static_cast<zr_long>(found->m_position);
    }

    zr_long RemoveName(const std::string &name) { return RemoveIndex(FindSlot(name)); }

    zr_long RemoveIndex(std::int64_t index) {
        if (index < 0 || index >= Size() || !At(index).name)
            return -1;
        At(index).name.reset();
        return static_cast<zr_long>(index);
    }

    void Reset() {
        for (Slot &slot : m_slots)
            slot.name.reset();
        m_position = m_step = -1;
    }

    std::int64_t Size() const { return static_cast<std::int64_t>(m_slots.size()); }
    const std::vector<Slot> &Slots() const { return m_slots; }

    // Whether `table` has the same slots, cursor and number of children.
    bool IsLike(const hash_table &table) const {
        if (table.size != Size() || table.probe_position != m_position || table.probe_step != m_step ||
            table.id != m_id || table.children != m_children)
            return false;
        for (std::size_t i = 0; i < m_slots.size(); ++i) {
            const hash_slot &slot = table.slots[i];
            if (slot.value != m_slots[i].value || (slot.name != nullptr) != m_slots[i].name.has_value())
                return false;
            if (slot.name != nullptr && slot.name != *m_slots[i].name)
                return false;
        }
        return true;
    }

    static zr_long SumOf(const char *name) {
        std::int64_t sum = 0;
        for (; *name != '\0'; ++name)
            sum += static_cast<unsigned char>(*name) < 128 ? *name : static_cast<unsigned char>(*name) - 256;
        return static_cast<zr_long>(sum);
    }

private:
    static bool IsPrime(std::int64_t number) {
        if (number < 3 || number % 2 == 0)
            return false;
        for (std::int64_t divisor = 3; divisor * divisor <= number; divisor += 2) {
            if (number % divisor == 0)
                return false;
        }
        return true;
    }

    Slot &At(std::int64_t index) { return m_slots[static_cast<std::size_t>(index)]; }

    std::int64_t Home(const std::string &name) const {
        const std::int64_t hash = m_hash(name.c_str());
        return std::llabs(hash) % (Size() - 1) + 1;
    }

    // The place that comes so many steps behind the home slot.
    std::int64_t Place(std::int64_t home, std::int64_t steps) const { return (home + steps * home) % Size(); }

    std::int64_t FindSlot(const std::string &name) {
        const std::int64_t home = Home(name);
        for (std::int64_t steps = 0; steps < Size(); ++steps) {
            const Slot &slot = At(Place(home, steps));
            if (!slot.name || slot.name == name)
                return Place(home, steps);
        }
        return -1;
    }

    bool IsAnyLongerThan(std::int64_t steps) const {
        for (const ReferenceHash *table = this; table != nullptr; table = table->m_parent) {
            if (table->Size() >= steps)
                return true;
        }
        return false;
    }

    // One step further in every table; the one whose home slot is reached again stays there.
    ReferenceHash *LookAt(std::int64_t steps, const std::string &name) {
        for (ReferenceHash *table = this; table != nullptr; table = table->m_parent) {
            if (steps > table->Size())
                continue;
            table->m_position = table->Place(table->m_step, steps);
            if (steps < table->Size() && table->At(table->m_position).name == name)
                return table;
        }
        return nullptr;
    }

    zr_long m_id;
    hash_function m_hash;
    ReferenceHash *m_parent;
    std::vector<Slot> m_slots;
    zr_long m_children = 0;
    std::int64_t m_position = -1;
    std::int64_t m_step = -1;
};

} // namespace zr::test

#endif
