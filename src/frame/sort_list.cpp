// Insertion sort of lists.
#include <zrclb/list.h>

namespace zr::frame {
namespace {

// What the search for an element's place has to know.
struct Insertion {
    list_element *element;
    list_compare_function compare;
    int stays_in_front; // the answer of compare for which an element stays in front of the new one
};

int GoesBehind(list_element *placed, zr_value value) {
    const auto *insertion = reinterpret_cast<const Insertion *>(value);
    return insertion->compare(placed, insertion->element) != insertion->stays_in_front ? 1 : 0;
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

void sort_list(list_descriptor *list, int mode, list_compare_function compare) noexcept {
    if (list == nullptr || compare == nullptr) {
        return;
    }
    list_descriptor sorted = {0, nullptr, nullptr};
    list_element *element = list->first;
    while (element != nullptr) {
        list_element *next = element->next;
        Insertion insertion = {element, compare, mode == 1 ? 1 : 2};
        list_element *behind = list_search(&sorted, GoesBehind, reinterpret_cast<zr_value>(&insertion));
        if (behind != nullptr) {
            list_insert_before(&sorted, behind, element);
        } else {
            list_insert_after(&sorted, nullptr, element);
        }
        element = next;
    }
    *list = sorted;
}
}
