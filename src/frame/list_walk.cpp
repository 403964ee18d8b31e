// Searching and walking lists through callbacks. Each walk reads the neighbour's link before it calls back, so that the
// callback may free the element at hand.
#include <zrclb/list.h>

namespace zr::frame {
namespace {

constexpr int search_hit = 1;

} // namespace
} // namespace zr::frame

using zr::frame::search_hit;

extern "C" {

list_element *list_search(list_descriptor *list, list_search_function fn, zr_value value) noexcept {
    return list != nullptr ? list_search_from(list, list->first, fn, value) : nullptr;
}

list_element *list_search_from(list_descriptor *list, list_element *from, list_search_function fn,
                               zr_value value) noexcept {
    return list_search_from_to(list, from, nullptr, fn, value);
}

list_element *list_search_to(list_descriptor *list, list_element *to, list_search_function fn,
                             zr_value value) noexcept {
    return list != nullptr ? list_search_from_to(list, list->first, to, fn, value) : nullptr;
}

list_element *list_search_from_to(list_descriptor *, list_element *from, list_element *to, list_search_function fn,
                                  zr_value value) noexcept {
    list_element *element = fn != nullptr ? from : nullptr;
    while (element != nullptr) {
        list_element *next = element != to ? element->next : nullptr;
        if (fn(element, value) == search_hit) {
            return element;
        }
        element = next;
    }
    return nullptr;
}

list_element *list_search_backward(list_descriptor *list, list_search_function fn, zr_value value) noexcept {
    list_element *element = list != nullptr && fn != nullptr ? list->last : nullptr;
    while (element != nullptr) {
        list_element *previous = element->prev;
        if (fn(element, value) == search_hit) {
            return element;
        }
        element = previous;
    }
    return nullptr;
}

void list_traverse(list_descriptor *list, list_traverse_function fn, zr_value value) noexcept {
    list_element *element = list != nullptr && fn != nullptr ? list->first : nullptr;
    while (element != nullptr) {
        list_element *next = element->next;
        fn(element, value);
        element = next;
    }
}

void list_traverse_backward(list_descriptor *list, list_traverse_function fn, zr_value value) noexcept {
    list_element *element = list != nullptr && fn != nullptr ? list->last : nullptr;
    while (element != nullptr) {
        list_element *previous = element->prev;
        fn(element, value);
        element = previous;
    }
}
}
