// Doubly linked lists: links, ends, walks.
#include <zrclb/list.h>

#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "frame/report_fixture.h"

namespace {

struct Item {
    list_element links;
    char name;
};

char NameOf(const list_element *element) {
    return reinterpret_cast<const Item *>(element)->name;
}

class List : public ReportFixture {
protected:
    void SetUp() override {
        ReportFixture::SetUp();
        list_init(&list);
    }

    // The names from first to last, after a check of every link and of the count.
    std::string Names() const {
        std::string names;
        const list_element *before = nullptr;
        for (const list_element *element = list.first; element != nullptr; element = element->next) {
            EXPECT_EQ(element->prev, before);
            names += NameOf(element);
            before = element;
        }
        EXPECT_EQ(list.last, before);
        EXPECT_EQ(list.count, static_cast<zr_long>(names.size()));
        return names;
    }

    void Append(Item &item) { list_insert_after(&list, nullptr, &item.links); }

    void FillAbc() {
        Append(a);
        Append(b);
        Append(c);
    }

    // The text of the one error since the last call, empty if there was none.
    static std::string TakeError() {
        std::string text = debugger.size() == 3 ? debugger[1] : "";
        if (!debugger.empty()) {
            EXPECT_EQ(debugger.size(), 3u);
            EXPECT_EQ(debugger[0].find("ZR_ERROR in prog.exe \"List\" line "), 0u);
        }
        debugger.clear();
        return text;
    }

    list_descriptor list = {};
    Item a = {{nullptr, nullptr}, 'a'};
    Item b = {{nullptr, nullptr}, 'b'};
    Item c = {{nullptr, nullptr}, 'c'};
    Item d = {{nullptr, nullptr}, 'd'};
};

TEST_F(List, FieldsStandInTheirOrder) {
    EXPECT_EQ(offsetof(list_element, prev), 0u);
    EXPECT_EQ(offsetof(list_element, next), sizeof(void *));
    EXPECT_EQ(sizeof(list_element), 2 * sizeof(void *));
    EXPECT_EQ(offsetof(list_descriptor, count), 0u);
    EXPECT_EQ(offsetof(list_descriptor, first), sizeof(void *));
    EXPECT_EQ(offsetof(list_descriptor, last), 2 * sizeof(void *));
}

TEST_F(List, InitClearsAllFields) {
    list = {7, &a.links, &b.links};
    list_init(&list);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.first, nullptr);
    EXPECT_EQ(list.last, nullptr);
}

TEST_F(List, InitReportsNull) {
    list_init(nullptr);
    EXPECT_EQ(TakeError(), "list_open: invalid listdescriptor");
}

TEST_F(List, InsertBeforeNullPutsAtTheFront) {
    list_insert_before(&list, nullptr, &a.links);
    EXPECT_EQ(list.first, &a.links);
    EXPECT_EQ(list.last, &a.links);
    EXPECT_EQ(Names(), "a");
    list_insert_before(&list, nullptr, &b.links);
    EXPECT_EQ(Names(), "ba");
}

TEST_F(List, InsertAfterNullPutsAtTheEnd) {
    list_insert_after(&list, nullptr, &a.links);
    EXPECT_EQ(list.first, &a.links);
    EXPECT_EQ(list.last, &a.links);
    EXPECT_EQ(Names(), "a");
    list_insert_after(&list, nullptr, &b.links);
    EXPECT_EQ(Names(), "ab");
}

TEST_F(List, InsertBeforeAnElement) {
    Append(a);
    Append(b);
    list_insert_before(&list, &b.links, &c.links);
    EXPECT_EQ(Names(), "acb");
    list_insert_before(&list, &a.links, &d.links);
    EXPECT_EQ(Names(), "dacb");
    EXPECT_EQ(TakeError(), "");
}

TEST_F(List, InsertAfterAnElement) {
    Append(a);
    Append(b);
    list_insert_after(&list, &a.links, &c.links);
    EXPECT_EQ(Names(), "acb");
    list_insert_after(&list, &b.links, &d.links);
    EXPECT_EQ(Names(), "acbd");
    EXPECT_EQ(TakeError(), "");
}

TEST_F(List, ReferenceThatIsInNoListIsReported) {
    FillAbc();
    Item other = {{nullptr, nullptr}, 'x'};
    list_insert_before(&list, &other.links, &d.links);
    EXPECT_EQ(TakeError(), "list_insert_before: list is not in order");
    EXPECT_EQ(Names(), "abc");
    list_insert_after(&list, &other.links, &d.links);
    EXPECT_EQ(TakeError(), "list_insert_after: list is not in order");
    EXPECT_EQ(Names(), "abc");
    EXPECT_EQ(d.links.prev, nullptr);
    EXPECT_EQ(d.links.next, nullptr);
}

TEST_F(List, ReferenceOfAnotherListIsReportedAtItsEnd) {
    FillAbc();
    list_descriptor other;
    list_init(&other);
    list_insert_before(&other, &a.links, &d.links);
    EXPECT_EQ(TakeError(), "list_insert_before: list is not in order");
    list_insert_after(&other, &c.links, &d.links);
    EXPECT_EQ(TakeError(), "list_insert_after: list is not in order");
    EXPECT_EQ(other.count, 0);
    EXPECT_EQ(other.first, nullptr);
    EXPECT_EQ(Names(), "abc");
}

TEST_F(List, DeleteKeepsTheEndsRight) {
    FillAbc();
    list_delete(&list, &b.links);
    EXPECT_EQ(Names(), "ac");
    EXPECT_EQ(b.links.prev, &a.links);
    EXPECT_EQ(b.links.next, &c.links);
    list_delete(&list, &a.links);
    EXPECT_EQ(Names(), "c");
    list_delete(&list, &c.links);
    EXPECT_EQ(Names(), "");
    EXPECT_EQ(list.first, nullptr);
    EXPECT_EQ(list.last, nullptr);
    FillAbc();
    list_delete(&list, &c.links);
    EXPECT_EQ(Names(), "ab");
    list_delete(&list, nullptr);
    EXPECT_EQ(Names(), "ab");
}

TEST_F(List, DeleteDoesNotAskWhoseTheElementIs) {
    FillAbc();
    list_descriptor other;
    list_init(&other);
    list_delete(&other, &b.links);
    EXPECT_EQ(other.count, -1);
    EXPECT_EQ(other.first, nullptr);
    EXPECT_EQ(other.last, nullptr);
    EXPECT_EQ(a.links.next, &c.links);
    EXPECT_EQ(c.links.prev, &a.links);
    EXPECT_EQ(list.count, 3);
    EXPECT_EQ(TakeError(), "");
}

std::string freed;

int Free(list_element *element) {
    freed += NameOf(element);
    return 1;
}

TEST_F(List, FreeDeletesAndCallsBack) {
    freed.clear();
    FillAbc();
    list_free(&list, &b.links, Free);
    EXPECT_EQ(freed, "b");
    EXPECT_EQ(Names(), "ac");
    list_free(&list, &a.links, nullptr);
    EXPECT_EQ(freed, "b");
    EXPECT_EQ(Names(), "c");
    list_free(&list, nullptr, Free);
    EXPECT_EQ(freed, "b");
    EXPECT_EQ(Names(), "c");
}

list_descriptor *shrinking;

int SeesItselfOutOfTheList(list_element *element) {
    EXPECT_EQ(list_isinlist(shrinking, element), 0);
    EXPECT_EQ(shrinking->count, 2);
    freed += NameOf(element);
    return -1;
}

TEST_F(List, FreeTakesTheElementOutBeforeItCallsBack) {
    freed.clear();
    FillAbc();
    shrinking = &list;
    list_free(&list, &a.links, SeesItselfOutOfTheList);
    EXPECT_EQ(freed, "a");
    EXPECT_EQ(Names(), "bc");
}

TEST_F(List, FreeAllCallsBackInOrderAndClears) {
    freed.clear();
    FillAbc();
    list_free_all(&list, Free);
    EXPECT_EQ(freed, "abc");
    EXPECT_EQ(Names(), "");
    FillAbc();
    list_free_all(&list, nullptr);
    EXPECT_EQ(Names(), "");
    EXPECT_EQ(a.links.next, &b.links);
}

Item *NewItem(char name) {
    auto *item = static_cast<Item *>(std::malloc(sizeof(Item)));
    *item = {{nullptr, nullptr}, name};
    return item;
}

int visits;

// Spoils the links before the item goes, so that a walk that reads them too late goes astray.
int FreeItem(list_element *element) {
    ++visits;
    *element = {element, element};
    std::free(element);
    return 0;
}

int FreeVisited(list_element *element, zr_value) {
    return FreeItem(element);
}

int FreeSearched(list_element *element, zr_value) {
    FreeItem(element);
    return 2;
}

TEST_F(List, CallbacksMayFreeTheElementAtHand) {
    auto fill = [this] {
        list_init(&list);
        for (char name : {'a', 'b', 'c'}) {
            Append(*NewItem(name));
        }
    };
    visits = 0;
    fill();
    list_free_all(&list, FreeItem);
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(visits, 3);
    fill();
    list_traverse(&list, FreeVisited, 0);
    EXPECT_EQ(visits, 6);
    fill();
    list_traverse_backward(&list, FreeVisited, 0);
    EXPECT_EQ(visits, 9);
    fill();
    EXPECT_EQ(list_search(&list, FreeSearched, 0), nullptr);
    EXPECT_EQ(visits, 12);
    fill();
    EXPECT_EQ(list_search_backward(&list, FreeSearched, 0), nullptr);
    EXPECT_EQ(visits, 15);
    fill();
    EXPECT_EQ(list_search_from_to(&list, list.first, list.last, FreeSearched, 0), nullptr);
    EXPECT_EQ(visits, 18);
    fill();
    EXPECT_EQ(list_search_from(&list, list.first, FreeSearched, 0), nullptr);
    EXPECT_EQ(visits, 21);
    fill();
    EXPECT_EQ(list_search_to(&list, list.last, FreeSearched, 0), nullptr);
    EXPECT_EQ(visits, 24);
}

int UnlinkVisited(list_element *element, zr_value value) {
    list_delete(reinterpret_cast<list_descriptor *>(value), element);
    *element = {nullptr, nullptr};
    return 0;
}

TEST_F(List, CallbacksMayUnlinkTheElementAtHand) {
    FillAbc();
    list_traverse(&list, UnlinkVisited, reinterpret_cast<zr_value>(&list));
    EXPECT_EQ(Names(), "");
    FillAbc();
    list_traverse_backward(&list, UnlinkVisited, reinterpret_cast<zr_value>(&list));
    EXPECT_EQ(Names(), "");
    FillAbc();
    EXPECT_EQ(list_search(&list, UnlinkVisited, reinterpret_cast<zr_value>(&list)), nullptr);
    EXPECT_EQ(Names(), "");
}

std::string visited;

int Visit(list_element *element, zr_value value) {
    visited += NameOf(element);
    return NameOf(element) == static_cast<char>(value) ? 1 : 0;
}

int AnswerValue(list_element *element, zr_value value) {
    visited += NameOf(element);
    return static_cast<int>(value);
}

// The names that a search looked at.
std::string TakeVisited() {
    std::string names;
    names.swap(visited);
    return names;
}

TEST_F(List, SearchGoesFromTheFirstToTheHit) {
    FillAbc();
    EXPECT_EQ(list_search(&list, Visit, 'b'), &b.links);
    EXPECT_EQ(TakeVisited(), "ab");
    EXPECT_EQ(list_search(&list, Visit, 'x'), nullptr);
    EXPECT_EQ(TakeVisited(), "abc");
}

TEST_F(List, OnlyOneIsAHit) {
    FillAbc();
    for (int answer : {0, 2, -1, 256, 257}) {
        auto value = static_cast<zr_value>(answer);
        EXPECT_EQ(list_search(&list, AnswerValue, value), nullptr);
        EXPECT_EQ(TakeVisited(), "abc");
        EXPECT_EQ(list_search_from(&list, &b.links, AnswerValue, value), nullptr);
        EXPECT_EQ(TakeVisited(), "bc");
        EXPECT_EQ(list_search_to(&list, &b.links, AnswerValue, value), nullptr);
        EXPECT_EQ(TakeVisited(), "ab");
        EXPECT_EQ(list_search_from_to(&list, &b.links, &b.links, AnswerValue, value), nullptr);
        EXPECT_EQ(TakeVisited(), "b");
        EXPECT_EQ(list_search_backward(&list, AnswerValue, value), nullptr);
        EXPECT_EQ(TakeVisited(), "cba");
    }
    EXPECT_EQ(list_search(&list, AnswerValue, 1), &a.links);
    EXPECT_EQ(list_search_backward(&list, AnswerValue, 1), &c.links);
    EXPECT_EQ(TakeVisited(), "ac");
}

TEST_F(List, SearchFromGoesToTheEnd) {
    FillAbc();
    EXPECT_EQ(list_search_from(&list, &b.links, Visit, 'a'), nullptr);
    EXPECT_EQ(TakeVisited(), "bc");
    EXPECT_EQ(list_search_from(&list, &b.links, Visit, 'c'), &c.links);
    EXPECT_EQ(TakeVisited(), "bc");
    EXPECT_EQ(list_search_from(&list, nullptr, Visit, 'a'), nullptr);
    EXPECT_EQ(list_search_from(nullptr, &a.links, Visit, 'b'), &b.links);
    EXPECT_EQ(TakeVisited(), "ab");
}

TEST_F(List, SearchToIncludesItsEnd) {
    FillAbc();
    EXPECT_EQ(list_search_to(&list, &b.links, Visit, 'b'), &b.links);
    EXPECT_EQ(TakeVisited(), "ab");
    EXPECT_EQ(list_search_to(&list, &a.links, Visit, 'b'), nullptr);
    EXPECT_EQ(TakeVisited(), "a");
}

TEST_F(List, SearchToGoesToTheEndIfItsEndDoesNotCome) {
    FillAbc();
    EXPECT_EQ(list_search_to(&list, nullptr, Visit, 'c'), &c.links);
    EXPECT_EQ(TakeVisited(), "abc");
    EXPECT_EQ(list_search_to(&list, &d.links, Visit, 'x'), nullptr);
    EXPECT_EQ(TakeVisited(), "abc");
}

TEST_F(List, SearchFromToEndsAtTheEndIfItsEndDoesNotCome) {
    FillAbc();
    EXPECT_EQ(list_search_from_to(&list, &b.links, &c.links, Visit, 'c'), &c.links);
    EXPECT_EQ(TakeVisited(), "bc");
    EXPECT_EQ(list_search_from_to(&list, &b.links, &b.links, Visit, 'c'), nullptr);
    EXPECT_EQ(TakeVisited(), "b");
    EXPECT_EQ(list_search_from_to(&list, &b.links, &a.links, Visit, 'x'), nullptr);
    EXPECT_EQ(TakeVisited(), "bc");
    EXPECT_EQ(list_search_from_to(&list, &b.links, nullptr, Visit, 'x'), nullptr);
    EXPECT_EQ(TakeVisited(), "bc");
    EXPECT_EQ(list_search_from_to(&list, nullptr, &c.links, Visit, 'c'), nullptr);
    EXPECT_EQ(TakeVisited(), "");
}

TEST_F(List, SearchBackwardGoesFromTheLast) {
    FillAbc();
    EXPECT_EQ(list_search_backward(&list, Visit, 'b'), &b.links);
    EXPECT_EQ(TakeVisited(), "cb");
    EXPECT_EQ(list_search_backward(&list, Visit, 'x'), nullptr);
    EXPECT_EQ(TakeVisited(), "cba");
}

TEST_F(List, TraverseVisitsAllWhateverTheAnswer) {
    FillAbc();
    list_traverse(&list, Visit, 'a');
    EXPECT_EQ(TakeVisited(), "abc");
    list_traverse_backward(&list, Visit, 'c');
    EXPECT_EQ(TakeVisited(), "cba");
}

int StoreInto(list_element *element, zr_value value) {
    reinterpret_cast<std::vector<list_element *> *>(value)->push_back(element);
    return 0;
}

TEST_F(List, ValueIsAsWideAsAPointer) {
    FillAbc();
    std::vector<list_element *> seen;
    list_traverse(&list, StoreInto, reinterpret_cast<zr_value>(&seen));
    EXPECT_EQ(seen, (std::vector<list_element *>{&a.links, &b.links, &c.links}));
}

TEST_F(List, EmptyListIsWalkedOverNothing) {
    EXPECT_EQ(list_search(&list, Visit, 'a'), nullptr);
    EXPECT_EQ(list_search_to(&list, nullptr, Visit, 'a'), nullptr);
    EXPECT_EQ(list_search_backward(&list, Visit, 'a'), nullptr);
    list_traverse(&list, Visit, 0);
    list_traverse_backward(&list, Visit, 0);
    list_free_all(&list, Free);
    EXPECT_EQ(TakeVisited(), "");
    EXPECT_EQ(Names(), "");
}

TEST_F(List, NumbersCountFromOne) {
    EXPECT_EQ(list_get_element_by_number(&list, 1), nullptr);
    FillAbc();
    EXPECT_EQ(list_get_element_by_number(&list, 1), &a.links);
    EXPECT_EQ(list_get_element_by_number(&list, 2), &b.links);
    EXPECT_EQ(list_get_element_by_number(&list, 3), &c.links);
    EXPECT_EQ(list_get_element_by_number(&list, 4), nullptr);
    EXPECT_EQ(list_get_element_by_number(&list, 2147483647), nullptr);
    EXPECT_EQ(list_get_element_by_number(&list, 0), &a.links);
    EXPECT_EQ(list_get_element_by_number(&list, -2147483647 - 1), &a.links);
}

TEST_F(List, NeighboursOfNullAreNull) {
    FillAbc();
    EXPECT_EQ(list_next_elem(&a.links), &b.links);
    EXPECT_EQ(list_prev_elem(&b.links), &a.links);
    EXPECT_EQ(list_next_elem(&c.links), nullptr);
    EXPECT_EQ(list_prev_elem(&a.links), nullptr);
    EXPECT_EQ(list_next_elem(nullptr), nullptr);
    EXPECT_EQ(list_prev_elem(nullptr), nullptr);
}

TEST_F(List, IsInListGoesByIdentity) {
    FillAbc();
    Item twin = a;
    EXPECT_EQ(list_isinlist(&list, &a.links), 1);
    EXPECT_EQ(list_isinlist(&list, &c.links), 1);
    EXPECT_EQ(list_isinlist(&list, &twin.links), 0);
    EXPECT_EQ(list_isinlist(&list, nullptr), 0);
    list_init(&list);
    EXPECT_EQ(list_isinlist(&list, &a.links), 0);
}

TEST_F(List, NullArgumentsAreTolerated) {
    FillAbc();
    list_insert_before(nullptr, &a.links, &d.links);
    list_insert_after(nullptr, &a.links, &d.links);
    list_insert_before(&list, &a.links, nullptr);
    list_insert_after(&list, nullptr, nullptr);
    list_delete(nullptr, &a.links);
    list_free(nullptr, &a.links, Free);
    list_free_all(nullptr, Free);
    list_traverse(nullptr, Visit, 0);
    list_traverse(&list, nullptr, 0);
    list_traverse_backward(nullptr, Visit, 0);
    list_traverse_backward(&list, nullptr, 0);
    EXPECT_EQ(list_search(nullptr, Visit, 'a'), nullptr);
    EXPECT_EQ(list_search(&list, nullptr, 'a'), nullptr);
    EXPECT_EQ(list_search_to(nullptr, &a.links, Visit, 'a'), nullptr);
    EXPECT_EQ(list_search_from(&list, &a.links, nullptr, 'a'), nullptr);
    EXPECT_EQ(list_search_to(&list, &a.links, nullptr, 'a'), nullptr);
    EXPECT_EQ(list_search_from_to(&list, &a.links, &a.links, nullptr, 'a'), nullptr);
    EXPECT_EQ(list_search_backward(nullptr, Visit, 'a'), nullptr);
    EXPECT_EQ(list_search_backward(&list, nullptr, 'a'), nullptr);
    EXPECT_EQ(list_get_element_by_number(nullptr, 1), nullptr);
    EXPECT_EQ(list_isinlist(nullptr, &a.links), 0);
    EXPECT_EQ(Names(), "abc");
    EXPECT_EQ(TakeError(), "");
}

TEST_F(List, MillionElementsAreWalkedWithoutRecursion) {
    std::vector<Item> items(1000000);
    for (Item &item : items) {
        Append(item);
    }
    EXPECT_EQ(list.count, 1000000);
    EXPECT_EQ(list_get_element_by_number(&list, 1000000), &items.back().links);
    list_free_all(&list, Free);
    freed.clear();
    EXPECT_EQ(list.count, 0);
}

} // namespace
