// Any calls on a handful of chained hash tables: results, slots and cursors are those of the reference, with the told
// probing, and all memory comes back.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zrclb/hash.h>
#include <zrclb/heap.h>

#include "byte_input.h"
#include "frame/counted_allocation.h"
#include "frame/reference_hash.h"

namespace {

using fuzz::Require;
using zr::test::ReferenceHash;

// The input as names.
class Input : public fuzz::ByteInput {
public:
    using ByteInput::ByteInput;

    // A length, then as many characters: mostly of a few that make names meet again.
    std::string Name() {
        static constexpr char alphabet[] = "ab\xE4\x7F";
        const std::uint8_t kind = Byte();
        std::string name;
        for (int count = kind % 4; count > 0; --count) {
            const std::uint8_t byte = Byte();
            name += kind < 192 ? alphabet[byte % 4] : static_cast<char>(byte != 0 ? byte : 1);
        }
        return name;
    }
};

zr_long Spread(const char *name) {
    std::uint32_t hash = 2166136261u;
    for (; *name != '\0'; ++name)
        hash = (hash ^ static_cast<unsigned char>(*name)) * 16777619u;
    return static_cast<zr_long>(hash);
}

hash_function Function(std::uint8_t choice) {
    switch (choice % 5) {
    case 0:
        return Spread;
    case 1:
        return [](const char *) -> zr_long { return INT32_MIN; };
    case 2:
        return [](const char *name) -> zr_long { return *name != '\0' ? -1 : INT32_MAX; };
    case 3:
        return [](const char *name) -> zr_long { return -Spread(name) / 2; };
    default:
        return nullptr;
    }
}

class Run {
public:
    Run(const std::uint8_t *data, std::size_t size) : m_input(data, size), m_blocks(zr::frame::heap_block_count) {}

    void Play() {
        while (!m_input.Empty()) {
            if (m_pairs.empty() || m_input.Byte() % 16 == 0)
                ChangeTables();
            else
                Call(m_pairs[m_input.Byte() % m_pairs.size()]);
            for (const Pair &pair : m_pairs)
                Require(pair.reference->IsLike(*pair.table), "same slots, cursors and children");
        }
        while (!m_pairs.empty())
            CloseLast();
        Require(zr::frame::heap_block_count == m_blocks, "no block is left");
    }

private:
    struct Pair {
        hash_table *table;
        std::unique_ptr<ReferenceHash> reference;
    };

    void ChangeTables() {
        if (m_pairs.size() < 5)
            OpenNext();
        else
            CloseLast();
    }

    // With one of the open tables as parent, or none.
    void OpenNext() {
        const zr_long size = m_input.Byte() % 32;
        const hash_function fn = Function(m_input.Byte());
        const std::size_t parent = m_input.Byte() % (m_pairs.size() + 1);
        const bool has_parent = parent < m_pairs.size();
        const auto id = static_cast<zr_long>(m_pairs.size());
        hash_table *table = hash_open(id, size, fn, has_parent ? m_pairs[parent].table : nullptr);
        Require(table != nullptr, "table opens");
        m_pairs.push_back({table, std::make_unique<ReferenceHash>(
                                      id, size, fn, has_parent ? m_pairs[parent].reference.get() : nullptr)});
    }

    // The last one has no children, and the others keep theirs.
    void CloseLast() {
        for (const Pair &pair : m_pairs) {
            if (pair.table->children > 0)
                hash_close(pair.table);
        }
        hash_close(m_pairs.back().table);
        m_pairs.back().reference->Close();
        m_pairs.pop_back();
    }

    void Call(Pair &pair) {
        const std::uint8_t kind = m_input.Byte();
        switch (kind % 8) {
        case 0:
        case 1:
        case 2:
            Put(pair);
            break;
        case 3:
            Remove(pair);
            break;
        case 4:
            CallByIndex(pair);
            break;
        case 5:
            if (kind >= 224) {
                hash_reset(pair.table);
                pair.reference->Reset();
                break;
            }
            [[fallthrough]];
        default:
            Get(pair);
        }
    }

    void Put(Pair &pair) {
        const std::string name = m_input.Name();
        const zr_value value = ++m_value;
        Require(hash_put(pair.table, name.c_str(), value) == pair.reference->Put(name, value), "same slot put");
    }

    void Remove(Pair &pair) {
        const std::string name = m_input.Name();
        Require(hash_remove_name(pair.table, name.c_str()) == pair.reference->RemoveName(name), "same slot removed");
    }

    void Get(Pair &pair) {
        const std::string name = m_input.Name();
        zr_value value = 1, expected_value = 1;
        zr_long owner = -2, expected_owner = -2;
        const zr_long slot = hash_get(pair.table, name.c_str(), &value, &owner);
        Require(slot == pair.reference->Get(name, &expected_value, &expected_owner), "same slot found");
        Require(value == expected_value && owner == expected_owner, "same value and owner");
    }

    void CallByIndex(Pair &pair) {
        const zr_long index = m_input.Byte() % 40 - 2;
        const bool used = index >= 0 && index < pair.reference->Size() &&
                          pair.reference->Slots()[static_cast<std::size_t>(index)].name.has_value();
        char *name = nullptr;
        zr_value value = 1;
        Require(hash_get_index(pair.table, index, &name, &value) == (used ? index : -1), "same entry listed");
        if (used) {
            const ReferenceHash::Slot &slot = pair.reference->Slots()[static_cast<std::size_t>(index)];
            Require(name != nullptr && name == *slot.name && value == slot.value, "same name and value listed");
        } else {
            Require(name == nullptr && value == 1, "nothing listed");
        }
        heap_free(name);
        if (index % 2 != 0)
            Require(hash_remove_index(pair.table, index) == pair.reference->RemoveIndex(index), "same index removed");
    }

    Input m_input;
    zr_long m_blocks;
    zr_value m_value = 1;
    std::vector<Pair> m_pairs;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Run(data, size).Play();
    return 0;
}
