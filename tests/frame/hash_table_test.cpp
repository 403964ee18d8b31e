// Hash tables.
#include <zrclb/hash.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <zrclb/heap.h>

#include "frame/counted_allocation.h"
#include "frame/hash_probe.h"
#include "frame/hash_size.h"
#include "frame/reference_hash.h"
#include "frame/refused_heap.h"
#include "frame/report_fixture.h"

namespace {

using zr::frame::HashSize;
using zr::frame::heap_block_count;
using zr::test::HeapBalance;
using zr::test::HeapInterruption;
using zr::test::HeapRefusal;
using zr::test::ReferenceHash;

constexpr zr_long lowest = INT32_MIN;

// A name's hash is the number before its first letter: "12b" has 12, "-3" has -3.
zr_long NumberHash(const char *name) {
    return static_cast<zr_long>(std::strtoll(name, nullptr, 10));
}

zr_long SevenHash(const char *) {
    return 7;
}

// The texts and places of `table` in the order of its slots: "3:ab 6:ba".
std::string Contents(const hash_table *table) {
    std::string text;
    for (zr_long index = 0; index < table->size; ++index) {
        if (table->slots[index].name != nullptr)
            text += (text.empty() ? "" : " ") + std::to_string(index) + ":" + table->slots[index].name;
    }
    return text;
}

class Hash : public ReportFixture {
protected:
    struct Answer {
        zr_long slot;
        zr_value value;
        zr_long owner;
        bool operator==(const Answer &) const = default;
        friend std::ostream &operator<<(std::ostream &out, const Answer &answer) {
            return out << "slot " << answer.slot << " value " << answer.value << " owner " << answer.owner;
        }
    };
    static constexpr zr_value no_value = 777;
    static constexpr zr_long no_owner = -777;
    static constexpr Answer not_found{-1, no_value, no_owner};

    void SetUp() override {
        ReportFixture::SetUp();
        m_before = heap_block_count;
    }

    void TearDown() override {
        EXPECT_TRUE(debugger.empty()) << debugger.front();
        while (!m_tables.empty()) {
            hash_close(m_tables.back());
            m_tables.pop_back();
        }
        EXPECT_EQ(heap_block_count, m_before);
        ReportFixture::TearDown();
    }

    // A table that is closed at the end, before those that were opened before it.
    hash_table *Open(zr_long id, zr_long size, hash_function fn = NumberHash, hash_table *parent = nullptr) {
        hash_table *table = hash_open(id, size, fn, parent);
        if (table != nullptr)
            m_tables.push_back(table);
        return table;
    }

    void Close(hash_table *table) {
        hash_close(table);
        std::erase(m_tables, table);
    }

    static Answer Get(hash_table *table, const char *name) {
        Answer answer = not_found;
        answer.slot = hash_get(table, name, &answer.value, &answer.owner);
        return answer;
    }

    zr_long Blocks() const { return heap_block_count - m_before; }

private:
    zr_long m_before = 0;
    std::vector<hash_table *> m_tables;
};

TEST_F(Hash, FieldsStandInTheirOrder) {
    EXPECT_EQ(offsetof(hash_table, id), 0u);
    EXPECT_EQ(offsetof(hash_table, size), 4u);
    EXPECT_EQ(offsetof(hash_table, slots), 8u);
    EXPECT_EQ(offsetof(hash_table, hash), 8 + sizeof(void *));
    EXPECT_EQ(offsetof(hash_table, parent), 8 + 2 * sizeof(void *));
    EXPECT_EQ(offsetof(hash_table, children), 8 + 3 * sizeof(void *));
    EXPECT_EQ(offsetof(hash_table, probe_position), 12 + 3 * sizeof(void *));
    EXPECT_EQ(offsetof(hash_table, probe_step), 16 + 3 * sizeof(void *));
    EXPECT_EQ(offsetof(hash_slot, name), 0u);
    EXPECT_EQ(offsetof(hash_slot, value), sizeof(void *));
    EXPECT_EQ(sizeof(hash_slot), 2 * sizeof(void *));
}

TEST_F(Hash, OpenGivesAnEmptyTable) {
    hash_table *table = Open(42, 10, SevenHash);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->id, 42);
    EXPECT_EQ(table->size, 11);
    EXPECT_EQ(Contents(table), "");
    EXPECT_EQ(table->hash, SevenHash);
    EXPECT_EQ(table->parent, nullptr);
    EXPECT_EQ(table->children, 0);
    EXPECT_EQ(table->probe_position, -1);
    EXPECT_EQ(table->probe_step, -1);
    EXPECT_EQ(Blocks(), 2);
    for (zr_long index = 0; index < 11; ++index)
        EXPECT_EQ(table->slots[index].value, 0u);
}

TEST_F(Hash, OpenAllocatesTheSlotsAndThenTheRecord) {
    static int at_second;
    static const HeapBalance *balance;
    const HeapBalance here;
    balance = &here;
    at_second = -1;
    {
        const HeapInterruption second(1, [] { at_second = balance->Open(); });
        Open(1, 11);
    }
    EXPECT_EQ(at_second, 0); // what came before was a heap_calloc
    EXPECT_EQ(here.Open(), 1);
    EXPECT_EQ(Blocks(), 2);
}

TEST_F(Hash, SizeIsRaisedToAPrime) {
    const zr_long sizes[][2] = {{0, 3},   {1, 3},   {2, 3},   {3, 3},  {4, 5},      {10, 11},   {11, 11},
                                {12, 13}, {24, 29}, {25, 29}, {-1, 3}, {lowest, 3}, {121, 127}, {9, 11}};
    for (const auto &[wanted, size] : sizes) {
        hash_table *table = Open(1, wanted);
        EXPECT_EQ(table->size, size) << wanted;
    }
}

TEST_F(Hash, GreatestSizesArePrimesToo) {
    EXPECT_EQ(HashSize(2147483588), 2147483629);
    EXPECT_EQ(HashSize(2147483629), 2147483629);
    EXPECT_EQ(HashSize(2147483630), 2147483647);
    EXPECT_EQ(HashSize(2147483647), 2147483647);
}

TEST_F(Hash, WaysThroughTheGreatestTableDoNotOverflow) {
    zr::frame::HashTable table = {};
    table.shown.size = INT32_MAX;
    EXPECT_EQ(zr::frame::NextSlot(table, INT32_MAX - 1, INT32_MAX - 1), INT32_MAX - 2);
    EXPECT_EQ(zr::frame::NextSlot(table, INT32_MAX - 1, 1), 0);
    EXPECT_EQ(zr::frame::NextSlot(table, 0, INT32_MAX - 1), INT32_MAX - 1);
    table.shown.hash = [](const char *) { return lowest; };
    EXPECT_EQ(zr::frame::WayOf(table, "x").home, 3); // 2147483648 modulo 2147483646, plus 1
    table.shown.hash = [](const char *) -> zr_long { return INT32_MAX - 2; };
    EXPECT_EQ(zr::frame::WayOf(table, "x").home, INT32_MAX - 1);
}

TEST_F(Hash, SizesAreTheNextPrimesOfTheSieve) {
    constexpr int limit = 10000;
    std::vector<bool> composite(limit + 1, false);
    for (int number = 2; number <= limit; ++number) {
        for (int multiple = 2 * number; multiple <= limit; multiple += number)
            composite[static_cast<std::size_t>(multiple)] = true;
    }
    zr_long next = 9973; // the last one below the limit
    for (zr_long size = next; size > 2; --size) {
        if (!composite[static_cast<std::size_t>(size)])
            next = size;
        ASSERT_EQ(HashSize(size), next) << size;
    }
}

TEST_F(Hash, FunctionIsTheOwnThatOfTheParentOrTheDefault) {
    hash_table *plain = Open(1, 3, nullptr);
    hash_table *parent = Open(2, 3, SevenHash);
    hash_table *child = Open(3, 3, nullptr, parent);
    hash_table *grandchild = Open(4, 3, nullptr, child);
    hash_table *own = Open(5, 3, NumberHash, parent);
    hash_table *child_of_plain = Open(6, 3, nullptr, plain);
    EXPECT_EQ(plain->hash("ab"), 97 + 98);
    EXPECT_EQ(child->hash, SevenHash);
    EXPECT_EQ(grandchild->hash, SevenHash);
    EXPECT_EQ(own->hash, NumberHash);
    EXPECT_EQ(child_of_plain->hash, plain->hash);
    EXPECT_EQ(child->parent, parent);
}

TEST_F(Hash, FunctionIsCalledOnceForEachTableThatIsReached) {
    static int calls;
    const hash_function counting = [](const char *name) {
        ++calls;
        return NumberHash(name);
    };
    calls = 0;
    hash_table *parent = Open(1, 11, counting);
    hash_table *child = Open(2, 11, counting, parent);
    EXPECT_EQ(calls, 0);
    const auto calls_of = [](auto call) {
        calls = 0;
        call();
        return calls;
    };
    EXPECT_EQ(calls_of([child] { hash_put(child, "3a", 1); }), 1);
    EXPECT_EQ(calls_of([child] { hash_put(child, "3b", 2); }), 1);
    EXPECT_EQ(calls_of([child] { Get(child, "3a"); }), 1); // at home, before the parent
    EXPECT_EQ(calls_of([child] { Get(child, "3b"); }), 2);
    EXPECT_EQ(calls_of([child] { Get(child, "4"); }), 2);
    EXPECT_EQ(calls_of([parent] { Get(parent, "4"); }), 1);
    EXPECT_EQ(calls_of([child] { hash_remove_name(child, "3b"); }), 1);
    EXPECT_EQ(calls_of([child] { hash_remove_index(child, 4); }), 0);
    EXPECT_EQ(calls_of([child] { hash_reset(child); }), 0);
    EXPECT_EQ(calls_of([child] { hash_put(child, nullptr, 1); }), 0);
}

TEST_F(Hash, DefaultIsTheSumOfSignedBytes) {
    const hash_table *table = Open(1, 3, nullptr);
    EXPECT_EQ(table->hash(""), 0);
    EXPECT_EQ(table->hash("a"), 97);
    EXPECT_EQ(table->hash("ab"), 195);
    EXPECT_EQ(table->hash("ba"), 195);
    EXPECT_EQ(table->hash("\xE4"), -28);
    EXPECT_EQ(table->hash("a\x80"), 97 - 128);
    EXPECT_EQ(table->hash("\xFF\xFF"), -2);
    const std::string wraps(17000000, '\x7F');
    EXPECT_EQ(table->hash(wraps.c_str()), static_cast<zr_long>(17000000LL * 127 - 4294967296LL));
}

TEST_F(Hash, DefaultReportsANullName) {
    const hash_table *table = Open(1, 3, nullptr);
    EXPECT_EQ(table->hash(nullptr), 0);
    ASSERT_EQ(debugger.size(), 3u);
    EXPECT_EQ(debugger[0].find("ZR_ERROR in prog.exe \"Hash\" line "), 0u);
    EXPECT_EQ(debugger[1], " NIL  parameter");
    debugger.clear();
}

TEST_F(Hash, HomeSlotIsTheHashModuloSizeLessOnePlusOne) {
    hash_table *table = Open(1, 11);
    EXPECT_EQ(hash_put(table, "0", 1), 1);
    EXPECT_EQ(hash_put(table, "9", 1), 10);
    EXPECT_EQ(hash_put(table, "14", 1), 5);
    EXPECT_EQ(hash_put(table, "2147483647", 1), 8);
    EXPECT_EQ(Contents(table), "1:0 5:14 8:2147483647 10:9");
}

TEST_F(Hash, EqualSumsCollideAndBothFit) {
    hash_table *table = Open(1, 11, nullptr);
    const zr_long home = 195 % 10 + 1;
    EXPECT_EQ(hash_put(table, "ab", 1), home);
    EXPECT_EQ(hash_put(table, "ba", 2), 2 * home % 11);
    EXPECT_EQ(Get(table, "ab"), (Answer{home, 1, 1}));
    EXPECT_EQ(Get(table, "ba"), (Answer{2 * home % 11, 2, 1}));
}

TEST_F(Hash, NegativeHashHasTheHomeSlotOfItsOpposite) {
    for (const auto &[positive, negative] : {std::pair{"5", "-5"}, {"14", "-14"}, {"2147483647", "-2147483647"}}) {
        hash_table *one = Open(1, 11);
        hash_table *other = Open(1, 11);
        EXPECT_EQ(hash_put(one, positive, 1), hash_put(other, negative, 1));
        EXPECT_EQ(hash_get(other, negative, nullptr, nullptr), hash_get(one, positive, nullptr, nullptr));
    }
    hash_table *table = Open(1, 11);
    EXPECT_EQ(hash_put(table, "-5", 1), 6);
    EXPECT_EQ(hash_put(table, "5", 2), 1); // 12 modulo 11
}

TEST_F(Hash, LowestHashHasAHomeSlotToo) {
    for (zr_long size : {3, 5, 11, 13, 1009}) {
        hash_table *table = Open(1, size, [](const char *) { return lowest; });
        const auto home = static_cast<zr_long>(2147483648LL % (size - 1) + 1);
        EXPECT_EQ(hash_put(table, "x", 8), home);
        EXPECT_EQ(Get(table, "x"), (Answer{home, 8, 1}));
        EXPECT_EQ(hash_put(table, "y", 9), 2 * home % size);
        EXPECT_EQ(hash_remove_name(table, "y"), 2 * home % size);
        EXPECT_EQ(hash_remove_name(table, "x"), home);
    }
}

TEST_F(Hash, WayGoesByTheHomeSlotThroughAllSlotsToSlotZero) {
    for (zr_long size : {3, 7, 101}) {
        hash_table *table = Open(1, size, SevenHash);
        const zr_long home = 7 % (size - 1) + 1;
        for (zr_long i = 1; i <= size; ++i)
            ASSERT_EQ(hash_put(table, std::to_string(i).c_str(), 1), i * home % size);
        EXPECT_EQ(std::string(table->slots[0].name), std::to_string(size));
    }
}

TEST_F(Hash, FullTableRefusesNewNamesAndChangesOldOnes) {
    hash_table *table = Open(1, 5, SevenHash);
    for (const char *name : {"a", "b", "c", "d", "e"})
        ASSERT_GE(hash_put(table, name, 1), 0);
    const std::string contents = Contents(table);
    const zr_long blocks = Blocks();
    EXPECT_EQ(hash_put(table, "f", 2), -1);
    EXPECT_EQ(hash_remove_name(table, "f"), -1);
    EXPECT_EQ(Get(table, "f"), not_found);
    EXPECT_EQ(hash_put(table, "e", 3), 0);
    EXPECT_EQ(Get(table, "e"), (Answer{0, 3, 1}));
    EXPECT_EQ(Get(table, "a"), (Answer{4, 1, 1}));
    EXPECT_EQ(Contents(table), contents);
    EXPECT_EQ(Blocks(), blocks);
    EXPECT_EQ(hash_remove_name(table, "c"), 2);
    EXPECT_EQ(hash_put(table, "f", 4), 2);
}

TEST_F(Hash, PutOfAPresentNameReplacesTheValueOnly) {
    hash_table *table = Open(1, 11);
    const zr_long slot = hash_put(table, "3x", 5);
    const char *copy = table->slots[slot].name;
    EXPECT_EQ(Blocks(), 3);
    EXPECT_EQ(hash_put(table, "3x", 6), slot);
    EXPECT_EQ(Blocks(), 3);
    EXPECT_EQ(table->slots[slot].name, copy);
    EXPECT_EQ(Get(table, "3x"), (Answer{slot, 6, 1}));
}

TEST_F(Hash, NamesAreCopiesAndComparedByteForByte) {
    hash_table *table = Open(1, 11, SevenHash);
    char name[] = "Stra\xDF"
                  "e";
    const zr_long slot = hash_put(table, name, 1);
    EXPECT_NE(table->slots[slot].name, name);
    name[0] = 's';
    EXPECT_EQ(Get(table, name), not_found);
    EXPECT_EQ(Get(table, "Stra\xDF"), not_found);
    EXPECT_EQ(Get(table, "Stra\xDF"
                         "e "),
              not_found);
    EXPECT_EQ(Get(table, "Stra\xDF"
                         "e"),
              (Answer{slot, 1, 1}));
}

TEST_F(Hash, EmptyAndLongNamesAreNames) {
    hash_table *table = Open(1, 11, nullptr);
    EXPECT_EQ(hash_put(table, "", 4), 1);
    EXPECT_EQ(Get(table, ""), (Answer{1, 4, 1}));
    const std::string base(100000, 'x');
    const zr_long first = hash_put(table, (base + "1").c_str(), 5);
    const zr_long second = hash_put(table, (base + "2").c_str(), 6);
    EXPECT_NE(first, second);
    EXPECT_EQ(Get(table, (base + "1").c_str()), (Answer{first, 5, 1}));
    EXPECT_EQ(Get(table, (base + "2").c_str()), (Answer{second, 6, 1}));
    EXPECT_EQ(Get(table, base.c_str()), not_found);
}

TEST_F(Hash, ValuesAreAsWideAsPointers) {
    hash_table *table = Open(1, 11);
    hash_put(table, "1", reinterpret_cast<zr_value>(table));
    hash_put(table, "2", UINTPTR_MAX);
    hash_put(table, "3", 0);
    EXPECT_EQ(Get(table, "1").value, reinterpret_cast<zr_value>(table));
    EXPECT_EQ(Get(table, "2").value, UINTPTR_MAX);
    EXPECT_EQ(Get(table, "3").value, 0u);
}

TEST_F(Hash, PutLooksAtItsOwnTableOnly) {
    hash_table *parent = Open(1, 11);
    hash_table *child = Open(2, 5, nullptr, parent);
    hash_put(parent, "3", 30);
    EXPECT_EQ(hash_put(child, "3", 31), 4);
    EXPECT_EQ(parent->slots[4].value, 30u);
    EXPECT_EQ(hash_remove_name(child, "3"), 4);
    EXPECT_EQ(hash_remove_name(child, "3"), -1);
    EXPECT_EQ(Contents(parent), "4:3");
}

TEST_F(Hash, GetFillsOnlyWhatIsAskedFor) {
    hash_table *table = Open(9, 11);
    hash_put(table, "3", 30);
    zr_value value = no_value;
    zr_long owner = no_owner;
    EXPECT_EQ(hash_get(table, "3", nullptr, nullptr), 4);
    EXPECT_EQ(hash_get(table, "3", &value, nullptr), 4);
    EXPECT_EQ(value, 30u);
    EXPECT_EQ(hash_get(table, "3", nullptr, &owner), 4);
    EXPECT_EQ(owner, 9);
}

TEST_F(Hash, ChildWinsAtHome) {
    hash_table *parent = Open(1, 11);
    hash_table *child = Open(2, 11, nullptr, parent);
    hash_put(parent, "3", 30);
    hash_put(child, "3", 31);
    EXPECT_EQ(Get(child, "3"), (Answer{4, 31, 2}));
    EXPECT_EQ(Get(parent, "3"), (Answer{4, 30, 1}));
}

TEST_F(Hash, NameOfTheParentIsFoundThroughTheChild) {
    hash_table *parent = Open(1, 13);
    hash_table *child = Open(2, 11, nullptr, parent);
    hash_table *grandchild = Open(3, 5, nullptr, child);
    hash_put(parent, "3", 30);
    // Over slots that are free, and over slots that others have taken.
    EXPECT_EQ(Get(child, "3"), (Answer{4, 30, 1}));
    EXPECT_EQ(Get(grandchild, "3"), (Answer{4, 30, 1}));
    hash_put(child, "3other", 31);
    hash_put(grandchild, "3another", 32);
    EXPECT_EQ(Get(child, "3"), (Answer{4, 30, 1}));
    EXPECT_EQ(Get(grandchild, "3"), (Answer{4, 30, 1}));
    EXPECT_EQ(Get(grandchild, "3other"), (Answer{4, 31, 2}));
}

TEST_F(Hash, NearerTableWinsAtTheSameDepthOnly) {
    hash_table *parent = Open(1, 11);
    hash_table *child = Open(2, 11, nullptr, parent);
    hash_put(child, "3taken", 1);
    EXPECT_EQ(hash_put(child, "3", 31), 8);
    EXPECT_EQ(hash_put(parent, "3", 30), 4);
    EXPECT_EQ(Get(child, "3"), (Answer{4, 30, 1}));

    hash_remove_name(parent, "3");
    hash_put(parent, "3taken too", 2);
    EXPECT_EQ(hash_put(parent, "3", 32), 8);
    EXPECT_EQ(Get(child, "3"), (Answer{8, 31, 2}));
}

TEST_F(Hash, LongerTableIsSearchedToItsEndAfterAShorterOne) {
    hash_table *parent = Open(1, 101, SevenHash);
    hash_table *child = Open(2, 3, SevenHash, parent);
    hash_table *grandchild = Open(3, 11, SevenHash, child);
    for (hash_table *table : {parent, child, grandchild}) {
        for (zr_long i = 1; i <= table->size; ++i)
            hash_put(table, (std::to_string(table->id) + "/" + std::to_string(i)).c_str(), static_cast<zr_value>(i));
        EXPECT_NE(table->slots[0].name, nullptr);
    }
    EXPECT_EQ(Get(grandchild, "1/101"), (Answer{0, 101, 1}));
    EXPECT_EQ(child->probe_position, 2);      // at home again
    EXPECT_EQ(grandchild->probe_position, 8); // at home again
    EXPECT_EQ(Get(grandchild, "2/3"), (Answer{0, 3, 2}));
    EXPECT_EQ(Get(grandchild, "3/11"), (Answer{0, 11, 3}));
    EXPECT_EQ(Get(grandchild, "1/102"), not_found);
    EXPECT_EQ(parent->probe_position, 8);
}

TEST_F(Hash, NameThatIsNowhereLeavesTheOutputsAlone) {
    hash_table *parent = Open(1, 13);
    hash_table *child = Open(2, 3, nullptr, parent);
    EXPECT_EQ(Get(parent, "3"), not_found);
    EXPECT_EQ(Get(child, "3"), not_found);
    hash_put(parent, "3", 1);
    hash_put(child, "4", 1);
    EXPECT_EQ(Get(child, "5"), not_found);
    EXPECT_EQ(Get(child, "3x"), not_found);
    EXPECT_EQ(Get(parent, "4"), not_found);
    EXPECT_EQ(hash_get(child, "5", nullptr, nullptr), -1);
}

TEST_F(Hash, GetGoesOnBehindFreeSlots) {
    hash_table *parent = Open(1, 11);
    hash_table *child = Open(2, 11, nullptr, parent);
    for (const char *name : {"3a", "3b", "3c", "3d"})
        hash_put(parent, name, static_cast<zr_value>(name[1]));
    EXPECT_EQ(Contents(parent), "1:3c 4:3a 5:3d 8:3b");
    hash_remove_name(parent, "3a");
    hash_remove_index(parent, 8);
    EXPECT_EQ(Get(parent, "3d"), (Answer{5, 'd', 1}));
    EXPECT_EQ(Get(child, "3d"), (Answer{5, 'd', 1}));
    EXPECT_EQ(Get(child, "3a"), not_found);
}

TEST_F(Hash, NameBehindAGapIsNotMetAndStoredTwice) {
    hash_table *table = Open(1, 11);
    EXPECT_EQ(hash_put(table, "3a", 1), 4);
    EXPECT_EQ(hash_put(table, "3b", 2), 8);
    EXPECT_EQ(hash_remove_name(table, "3a"), 4);
    EXPECT_EQ(hash_remove_name(table, "3b"), -1);
    EXPECT_EQ(hash_put(table, "3b", 3), 4);
    EXPECT_EQ(Contents(table), "4:3b 8:3b");
    EXPECT_EQ(Get(table, "3b"), (Answer{4, 3, 1}));
    EXPECT_EQ(table->slots[8].value, 2u);
    EXPECT_EQ(hash_remove_name(table, "3b"), 4);
    EXPECT_EQ(Get(table, "3b"), (Answer{8, 2, 1}));
}

TEST_F(Hash, SearchLeavesItsCursorWhereItCameTo) {
    hash_table *parent = Open(1, 13);
    hash_table *child = Open(2, 11, nullptr, parent);
    for (const char *name : {"3a", "3b", "3c"}) {
        hash_put(child, name, 1);
        hash_remove_name(child, "none");
    }
    EXPECT_EQ(child->probe_position, -1);
    EXPECT_EQ(child->probe_step, -1);
    hash_get(child, "3a", nullptr, nullptr);
    EXPECT_EQ(child->probe_position, 4);
    EXPECT_EQ(child->probe_step, 4);
    EXPECT_EQ(parent->probe_position, -1); // the search did not get there
    hash_get(child, "3c", nullptr, nullptr);
    EXPECT_EQ(child->probe_position, 1); // three times 4, modulo 11
    EXPECT_EQ(child->probe_step, 4);
    EXPECT_EQ(parent->probe_position, 8); // a step less
    EXPECT_EQ(parent->probe_step, 4);
    hash_get(child, "5", nullptr, nullptr);
    EXPECT_EQ(child->probe_position, 6); // back at home
    EXPECT_EQ(parent->probe_position, 6);
    hash_get(parent, "7", nullptr, nullptr);
    EXPECT_EQ(parent->probe_position, 8);
    EXPECT_EQ(parent->probe_step, 8);
    EXPECT_EQ(child->probe_position, 6);
    hash_put(child, "9", 1);
    hash_get_index(child, 4, nullptr, nullptr);
    hash_remove_index(child, 4);
    EXPECT_EQ(child->probe_position, 6);
    hash_reset(child);
    EXPECT_EQ(child->probe_position, -1);
    EXPECT_EQ(child->probe_step, -1);
    EXPECT_EQ(parent->probe_position, 8);
}

TEST_F(Hash, GetIndexGivesACopyAndTheValue) {
    hash_table *table = Open(1, 11);
    hash_put(table, "3", 30);
    char *name = nullptr;
    zr_value value = no_value;
    const zr_long blocks = Blocks();
    EXPECT_EQ(hash_get_index(table, 4, &name, &value), 4);
    EXPECT_STREQ(name, "3");
    EXPECT_NE(name, table->slots[4].name);
    EXPECT_EQ(value, 30u);
    EXPECT_EQ(Blocks(), blocks + 1);
    heap_free(name);
    value = no_value;
    EXPECT_EQ(hash_get_index(table, 4, nullptr, &value), 4);
    EXPECT_EQ(value, 30u);
    EXPECT_EQ(hash_get_index(table, 4, &name, nullptr), 4);
    EXPECT_STREQ(name, "3");
    heap_free(name);
    EXPECT_EQ(hash_get_index(table, 4, nullptr, nullptr), 4);
    EXPECT_EQ(Blocks(), blocks);
}

TEST_F(Hash, GetIndexWithoutAnEntryClearsTheNameOnly) {
    hash_table *table = Open(1, 11);
    hash_put(table, "3", 30);
    hash_remove_name(table, "3");
    char mark = 'm';
    for (zr_long index : {zr_long{4}, zr_long{0}, zr_long{-1}, zr_long{11}, zr_long{INT32_MAX}, lowest}) {
        char *name = &mark;
        zr_value value = no_value;
        EXPECT_EQ(hash_get_index(table, index, &name, &value), -1) << index;
        EXPECT_EQ(name, nullptr);
        EXPECT_EQ(value, no_value);
    }
    char *name = &mark;
    zr_value value = no_value;
    EXPECT_EQ(hash_get_index(nullptr, 0, &name, &value), -1);
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(value, no_value);
    EXPECT_EQ(hash_get_index(nullptr, 0, nullptr, nullptr), -1);
    EXPECT_EQ(hash_get_index(table, 0, nullptr, nullptr), -1);
}

TEST_F(Hash, WalkOverAllIndicesListsTheTable) {
    hash_table *table = Open(1, 11);
    hash_put(table, "9", 1); // in slot 10, the last one
    hash_put(table, "0", 2);
    hash_put(table, "10", 3);
    std::string list;
    for (zr_long index = 0; index < 20; ++index) {
        char *name = nullptr;
        zr_value value = 0;
        if (hash_get_index(table, index, &name, &value) >= 0)
            list += std::string(name) + "=" + std::to_string(value) + " ";
        heap_free(name);
    }
    EXPECT_EQ(list, "0=2 10=3 9=1 ");
}

TEST_F(Hash, RemovingFreesTheNameAndLeavesTheValueBehind) {
    hash_table *table = Open(1, 11);
    hash_put(table, "3", 30);
    hash_put(table, "4", 40);
    EXPECT_EQ(hash_remove_name(table, "5"), -1);
    EXPECT_EQ(hash_remove_name(table, "3x"), -1);
    EXPECT_EQ(Blocks(), 4);
    EXPECT_EQ(hash_remove_name(table, "3"), 4);
    EXPECT_EQ(Blocks(), 3);
    EXPECT_EQ(table->slots[4].name, nullptr);
    EXPECT_EQ(table->slots[4].value, 30u);
    EXPECT_EQ(hash_remove_name(table, "3"), -1);
    EXPECT_EQ(hash_remove_index(table, 4), -1);
    EXPECT_EQ(hash_remove_index(table, 5), 5);
    EXPECT_EQ(table->slots[5].value, 40u);
    EXPECT_EQ(Blocks(), 2);
    EXPECT_EQ(Get(table, "4"), not_found);
}

TEST_F(Hash, RemovingByIndexKeepsToTheTable) {
    hash_table *table = Open(1, 3);
    for (const char *name : {"0", "1", "2"})
        hash_put(table, name, 1);
    for (zr_long index : {zr_long{-1}, zr_long{3}, zr_long{INT32_MAX}, lowest})
        EXPECT_EQ(hash_remove_index(table, index), -1) << index;
    EXPECT_EQ(Blocks(), 5);
    EXPECT_EQ(hash_remove_index(table, 0), 0);
    EXPECT_EQ(hash_remove_index(table, 2), 2);
}

TEST_F(Hash, OwnNameOfATableMayBeGivenToIt) {
    hash_table *table = Open(1, 11);
    hash_put(table, "3", 30);
    EXPECT_EQ(hash_put(table, table->slots[4].name, 31), 4);
    EXPECT_EQ(Get(table, table->slots[4].name), (Answer{4, 31, 1}));
    EXPECT_EQ(hash_remove_name(table, table->slots[4].name), 4);
}

TEST_F(Hash, ResetEmptiesAndKeepsTheChain) {
    hash_table *parent = Open(1, 11);
    hash_table *table = Open(2, 11, nullptr, parent);
    hash_table *child = Open(3, 11, nullptr, table);
    hash_put(table, "3", 30);
    hash_put(table, "3x", 31);
    hash_remove_name(table, "3");
    hash_get(table, "3x", nullptr, nullptr);
    hash_reset(table);
    EXPECT_EQ(Contents(table), "");
    EXPECT_EQ(Blocks(), 6);
    EXPECT_EQ(table->probe_position, -1);
    EXPECT_EQ(table->probe_step, -1);
    EXPECT_EQ(table->id, 2);
    EXPECT_EQ(table->size, 11);
    EXPECT_EQ(table->hash, NumberHash);
    EXPECT_EQ(table->parent, parent);
    EXPECT_EQ(table->children, 1);
    EXPECT_EQ(Get(child, "3x"), not_found);
    EXPECT_EQ(hash_put(table, "3x", 32), 4);
    EXPECT_EQ(Get(child, "3x"), (Answer{4, 32, 2}));
}

TEST_F(Hash, TableWithOpenChildrenStaysOpen) {
    hash_table *parent = Open(1, 11);
    hash_put(parent, "3", 30);
    hash_table *first = Open(2, 11, nullptr, parent);
    hash_table *second = Open(3, 11, nullptr, parent);
    EXPECT_EQ(parent->children, 2);
    hash_close(parent);
    EXPECT_EQ(Get(first, "3"), (Answer{4, 30, 1}));
    Close(first);
    EXPECT_EQ(parent->children, 1);
    hash_close(parent);
    EXPECT_EQ(Get(second, "3"), (Answer{4, 30, 1}));
    hash_table *third = Open(4, 11, nullptr, second);
    EXPECT_EQ(parent->children, 1);
    EXPECT_EQ(second->children, 1);
    Close(third);
    Close(second);
    EXPECT_EQ(parent->children, 0);
    EXPECT_EQ(Blocks(), 3);
    Close(parent);
    EXPECT_EQ(Blocks(), 0);
}

TEST_F(Hash, ClosingFreesAllNames) {
    hash_table *table = Open(1, 101);
    for (int i = 0; i < 80; ++i)
        hash_put(table, std::to_string(i).c_str(), 1);
    EXPECT_EQ(Blocks(), 82);
    Close(table);
    EXPECT_EQ(Blocks(), 0);
}

TEST_F(Hash, NullIsTolerated) {
    hash_table *table = Open(1, 11);
    hash_put(table, "3", 30);
    hash_close(nullptr);
    hash_reset(nullptr);
    EXPECT_EQ(hash_put(nullptr, "3", 1), -1);
    EXPECT_EQ(hash_put(table, nullptr, 1), -1);
    EXPECT_EQ(Get(nullptr, "3"), not_found);
    EXPECT_EQ(Get(table, nullptr), not_found);
    EXPECT_EQ(hash_remove_name(nullptr, "3"), -1);
    EXPECT_EQ(hash_remove_name(table, nullptr), -1);
    EXPECT_EQ(hash_remove_index(nullptr, 0), -1);
    EXPECT_EQ(Contents(table), "4:3");
    EXPECT_EQ(table->probe_position, -1);
}

TEST_F(Hash, OpenWithoutMemoryGivesNullAndLeavesNothing) {
    hash_table *parent = Open(1, 11);
    int failures = 0;
    for (int others = 0;; ++others) {
        const zr_long before = heap_block_count;
        HeapRefusal refusal(others);
        hash_table *table = Open(2, 11, nullptr, parent);
        if (!refusal.Met()) {
            EXPECT_NE(table, nullptr);
            break;
        }
        ++failures;
        EXPECT_EQ(table, nullptr);
        EXPECT_EQ(heap_block_count, before);
        EXPECT_EQ(parent->children, 0);
    }
    EXPECT_EQ(failures, 2);
    EXPECT_EQ(parent->children, 1);
    HeapRefusal refusal(0);
    EXPECT_EQ(Open(3, INT32_MAX, nullptr, parent), nullptr);
    EXPECT_TRUE(refusal.Met());
    EXPECT_EQ(parent->children, 1);
}

TEST_F(Hash, PutWithoutMemoryLeavesTheTable) {
    hash_table *table = Open(1, 11);
    hash_put(table, "3a", 30);
    {
        HeapRefusal refusal(0, true);
        EXPECT_EQ(hash_put(table, "3b", 31), -1);
        EXPECT_TRUE(refusal.Met());
        EXPECT_EQ(hash_put(table, "3a", 32), 4); // needs none
    }
    EXPECT_EQ(Contents(table), "4:3a");
    EXPECT_EQ(table->slots[8].value, 0u);
    EXPECT_EQ(Blocks(), 3);
    EXPECT_EQ(Get(table, "3b"), not_found);
    EXPECT_EQ(Get(table, "3a"), (Answer{4, 32, 1}));
    EXPECT_EQ(hash_put(table, "3b", 31), 8);
}

TEST_F(Hash, GetIndexWithoutMemoryGivesNoName) {
    hash_table *table = Open(1, 11);
    hash_put(table, "3", 30);
    char mark = 'm';
    char *name = &mark;
    zr_value value = no_value;
    HeapRefusal refusal(0);
    EXPECT_EQ(hash_get_index(table, 4, &name, &value), 4);
    EXPECT_TRUE(refusal.Met());
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(value, 30u);
    EXPECT_EQ(Contents(table), "4:3");
}

TEST_F(Hash, LookingAndRemovingNeedNoMemory) {
    hash_table *table = Open(1, 11);
    hash_put(table, "3", 30);
    HeapRefusal refusal(0, true);
    EXPECT_EQ(Get(table, "3"), (Answer{4, 30, 1}));
    EXPECT_EQ(hash_remove_name(table, "3"), 4);
    hash_reset(table);
    EXPECT_FALSE(refusal.Met());
}

TEST_F(Hash, TwentyThousandNamesAreFoundAgain) {
    constexpr zr_value count = 20000;
    hash_table *table = Open(1, 2 * count, [](const char *name) {
        std::uint32_t hash = 0;
        for (; *name != '\0'; ++name)
            hash = hash * 31 + static_cast<unsigned char>(*name);
        return static_cast<zr_long>(hash);
    });
    for (zr_value i = 0; i < count; ++i)
        ASSERT_GE(hash_put(table, ("name" + std::to_string(i)).c_str(), i), 0);
    zr_value wrong = 0;
    for (zr_value i = 0; i < count; ++i)
        wrong += Get(table, ("name" + std::to_string(i)).c_str()).value != i;
    EXPECT_EQ(wrong, 0u);
    EXPECT_EQ(Get(table, "name20000"), not_found);
}

// Any calls on a chain of tables: results, slots and cursors are those of the reference.
TEST_F(Hash, AnyCallsGoAsTold) {
    std::mt19937 random(6);
    const auto below = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    const hash_function functions[] = {nullptr, NumberHash, SevenHash, [](const char *) { return lowest; }};
    for (int round = 0; round < 60; ++round) {
        std::vector<hash_table *> tables;
        std::vector<std::unique_ptr<ReferenceHash>> references;
        for (zr_long id = 0; id < 3; ++id) {
            const auto size = static_cast<zr_long>(below(20));
            const hash_function fn = functions[below(4)];
            tables.push_back(Open(id, size, fn, tables.empty() ? nullptr : tables.back()));
            ReferenceHash *parent = references.empty() ? nullptr : references.back().get();
            references.push_back(std::make_unique<ReferenceHash>(id, size, fn, parent));
        }
        for (int call = 0; call < 200; ++call) {
            const unsigned which = below(3);
            hash_table *table = tables[which];
            ReferenceHash &reference = *references[which];
            const std::string name = std::to_string(static_cast<int>(below(30)) - 15) + (below(2) != 0 ? "x" : "");
            const auto value = static_cast<zr_value>(random());
            const unsigned kind = below(100);
            if (kind < 4) {
                HeapRefusal refusal(0);
                ASSERT_EQ(hash_put(table, name.c_str(), value), reference.PutWithoutMemory(name, value)) << name;
            } else if (kind < 40) {
                ASSERT_EQ(hash_put(table, name.c_str(), value), reference.Put(name, value)) << name;
            } else if (kind < 50) {
                ASSERT_EQ(hash_remove_name(table, name.c_str()), reference.RemoveName(name)) << name;
            } else if (kind < 58) {
                const auto index = static_cast<zr_long>(below(25)) - 2;
                ASSERT_EQ(hash_remove_index(table, index), reference.RemoveIndex(index));
            } else if (kind < 60) {
                hash_reset(table);
                reference.Reset();
            } else {
                Answer expected = not_found;
                expected.slot = reference.Get(name, &expected.value, &expected.owner);
                ASSERT_EQ(Get(table, name.c_str()), expected) << name;
            }
            for (std::size_t i = 0; i < tables.size(); ++i)
                ASSERT_TRUE(references[i]->IsLike(*tables[i])) << i << " after call " << call;
        }
    }
}

} // namespace
