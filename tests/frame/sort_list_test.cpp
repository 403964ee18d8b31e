// Insertion sort of lists.
#include <zrclb/list.h>

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct Item {
    list_element links;
    int key;
    char name;
};

const Item &AsItem(const list_element *element) {
    return *reinterpret_cast<const Item *>(element);
}

std::string compared;

int Compare(list_element *a, list_element *b) {
    compared += AsItem(a).name;
    compared += AsItem(b).name;
    compared += ' ';
    return AsItem(a).key < AsItem(b).key ? 1 : AsItem(a).key > AsItem(b).key ? 2 : 0;
}

// Makes a list of the keys, named a, b, c ..., sorts it and gives the names in their order, every link checked.
std::string Sorted(const std::vector<int> &keys, int mode, list_compare_function compare = Compare) {
    std::vector<Item> items(keys.size());
    list_descriptor list;
    list_init(&list);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        items[i].key = keys[i];
        items[i].name = static_cast<char>('a' + i % 26);
        list_insert_after(&list, nullptr, &items[i].links);
    }
    compared.clear();
    sort_list(&list, mode, compare);
    EXPECT_EQ(list.count, static_cast<zr_long>(keys.size()));
    std::string names;
    const list_element *before = nullptr;
    for (const list_element *element = list.first; element != nullptr; element = element->next) {
        EXPECT_EQ(element->prev, before);
        names += AsItem(element).name;
        before = element;
    }
    EXPECT_EQ(list.last, before);
    return names;
}

TEST(SortList, EmptyListStaysEmpty) {
    EXPECT_EQ(Sorted({}, 1), "");
}

TEST(SortList, ModeOneSortsAscending) {
    EXPECT_EQ(Sorted({3, 1, 2}, 1), "bca");
    EXPECT_EQ(Sorted({1, 2, 3}, 1), "abc");
    EXPECT_EQ(Sorted({7}, 1), "a");
}

TEST(SortList, EveryOtherModeSortsDescending) {
    for (int mode : {0, 2, -1, 99}) {
        EXPECT_EQ(Sorted({3, 1, 2}, mode), "acb");
    }
}

TEST(SortList, EqualElementsEndUpReversed) {
    EXPECT_EQ(Sorted({5, 5, 5}, 1), "cba");
    EXPECT_EQ(Sorted({5, 5, 5}, 2), "cba");
    EXPECT_EQ(Sorted({2, 1, 2, 1}, 1), "dbca");
}

TEST(SortList, ComparesThePlacedElementWithTheNewOneFromTheFront) {
    Sorted({3, 1, 2}, 1);
    EXPECT_EQ(compared, "ab bc ac ");
}

int AlwaysThree(list_element *, list_element *) {
    return 3;
}

TEST(SortList, AnswerThatIsNeitherReverses) {
    EXPECT_EQ(Sorted({1, 2, 3}, 1, AlwaysThree), "cba");
    EXPECT_EQ(Sorted({1, 2, 3}, 2, AlwaysThree), "cba");
}

TEST(SortList, NullCompareLeavesTheList) {
    EXPECT_EQ(Sorted({3, 1, 2}, 1, nullptr), "abc");
    sort_list(nullptr, 1, Compare);
}

TEST(SortList, ThousandElementsAreSorted) {
    std::vector<int> keys;
    std::vector<Item> items(1000);
    list_descriptor list;
    list_init(&list);
    unsigned state = 1;
    for (Item &item : items) {
        state = state * 1103515245u + 12345u;
        item.key = static_cast<int>(state >> 16);
        keys.push_back(item.key);
        list_insert_after(&list, nullptr, &item.links);
    }
    sort_list(&list, 1, [](list_element *a, list_element *b) {
        return AsItem(a).key < AsItem(b).key ? 1 : AsItem(a).key > AsItem(b).key ? 2 : 0;
    });
    std::sort(keys.begin(), keys.end());
    std::vector<int> sorted;
    for (const list_element *element = list.first; element != nullptr; element = element->next) {
        sorted.push_back(AsItem(element).key);
    }
    EXPECT_EQ(sorted, keys);
}

} // namespace
