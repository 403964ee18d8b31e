// Doubly linked lists of the caller's own records.
#include <zrclb/list.h>

#include <zrclb/report.h>

namespace zr::frame {
namespace {

void InsertFront(list_descriptor *list, list_element *element) {
    element->prev = nullptr;
    element->next = list->first;
    if (list->first != nullptr) {
        list->first->prev = element;
    } else {
        list->last = element;
    }
    list->first = element;
    ++list->count;
}

void InsertEnd(list_descriptor *list, list_element *element) {
    element->next = nullptr;
    element->prev = list->last;
    if (list->last != nullptr) {
        list->last->next = element;
    } else {
        list->first = element;
    }
    list->last = element;
    ++list->count;
}

// Links `element` between two neighbours.
void InsertBetween(list_descriptor *list, list_element *before, list_element *behind, list_element *element) {
    element->prev = before;
    element->next = behind;
    before->next = element;
    behind->prev = element;
    ++list->count;
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

void list_init(list_descriptor *list) noexcept {
    if (list == nullptr) {
        // The name in the text is the one that callers know from their logs.
        zr_error("list_open: invalid listdescriptor", nullptr, nullptr, "List", __LINE__);
        return;
    }
    *list = {0, nullptr, nullptr};
}

void list_insert_before(list_descriptor *list, list_element *reference, list_element *element) noexcept {
    if (list == nullptr || element == nullptr) {
        return;
    }
    if (reference == nullptr || (reference->prev == nullptr && reference == list->first)) {
        InsertFront(list, element);
    } else if (reference->prev != nullptr) {
        InsertBetween(list, reference->prev, reference, element);
    } else {
        zr_error("list_insert_before: list is not in order", nullptr, nullptr, "List", __LINE__);
    }
}

void list_insert_after(list_descriptor *list, list_element *reference, list_element *element) noexcept {
    if (list == nullptr || element == nullptr) {
        return;
    }
    if (reference == nullptr || (reference->next == nullptr && reference == list->last)) {
        InsertEnd(list, element);
    } else if (reference->next != nullptr) {
        InsertBetween(list, reference, reference->next, element);
    } else {
        zr_error("list_insert_after: list is not in order", nullptr, nullptr, "List", __LINE__);
    }
}

void list_delete(list_descriptor *list, list_element *element) noexcept {
    if (list == nullptr || element == nullptr) {
        return;
    }
    --list->count;
    if (element->prev != nullptr) {
        element->prev->next = element->next;
    } else {
        list->first = element->next;
    }
    if (element->next != nullptr) {
        element->next->prev = element->prev;
    } else {
        list->last = element->prev;
    }
}

void list_free(list_descriptor *list, list_element *element, list_free_function fn) noexcept {
    if (list == nullptr || element == nullptr) {
        return;
    }
    list_delete(list, element);
    if (fn != nullptr) {
        fn(element);
    }
}

void list_free_all(list_descriptor *list, list_free_function fn) noexcept {
    if (list == nullptr) {
        return;
    }
    list_element *element = fn != nullptr ? list->first : nullptr;
    while (element != nullptr) {
        list_element *next = element->next;
        fn(element);
        element = next;
    }
    *list = {0, nullptr, nullptr};
}

list_element *list_next_elem(list_element *element) noexcept {
    return element != nullptr ? element->next : nullptr;
}

list_element *list_prev_elem(list_element *element) noexcept {
    return element != nullptr ? element->prev : nullptr;
}

list_element *list_get_element_by_number(list_descriptor *list, zr_long number) noexcept {
    list_element *element = list != nullptr ? list->first : nullptr;
    for (zr_long i = 1; i < number && element != nullptr; ++i) {
        element = element->next;
    }
    return element;
}

int list_isinlist(list_descriptor *list, list_element *element) noexcept {
    if (list == nullptr || element == nullptr) {
        return 0;
    }
    list_element *place = list->first;
    while (place != nullptr && place != element) {
        place = place->next;
    }
    return place != nullptr ? 1 : 0;
}
}
