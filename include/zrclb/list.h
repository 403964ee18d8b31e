/* Doubly linked lists of the caller's own records. C17 and C++20.
 *
 * 1. A record that goes into a list begins with the two fields of list_element. The list allocates and frees nothing;
 *    records stay the caller's and must live while they are in it. A record is in one list at a time.
 * 2. An empty list has count 0 and both ends null; first->prev and last->next are null.
 * 3. Walks read the neighbour's link before they call back: the callback may unlink or free the element at hand, no
 *    other.
 * 4. Where no null is spoken of, a null list or callback does nothing and gives null or 0.
 * 5. Reports are errors and carry the tag "List".
 * 6. Threads: a list belongs to one thread at a time.
 */
#ifndef ZRCLB_LIST_H
#define ZRCLB_LIST_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The first two fields of every record in a list. */
typedef struct list_element {
    struct list_element *prev; /* the element before, null at the start */
    struct list_element *next; /* the element behind, null at the end */
} list_element;

typedef struct list_descriptor {
    zr_long count;       /* number of elements */
    list_element *first; /* null in an empty list */
    list_element *last;
} list_descriptor;

/* Looks at element; exactly 1 is a hit, any other result goes on. value is the one given to the search. */
typedef int (*list_search_function)(list_element *element, zr_value value);

/* Visits element; the result is ignored. */
typedef int (*list_traverse_function)(list_element *element, zr_value value);

/* Frees element; the result is ignored. */
typedef int (*list_free_function)(list_element *element);

/* 1 if a goes before b, 2 for the opposite, 0 for equal. */
typedef int (*list_compare_function)(list_element *a, list_element *b);

/* Makes list an empty list. Null list: reports "list_open: invalid listdescriptor". */
ZR_API void list_init(list_descriptor *list) ZR_NOEXCEPT;

/* Inserts element before reference, or at the front for null. A reference without a predecessor that isn't the first element
   reports "list_insert_before: list is not in order" and changes nothing. Constant time. */
ZR_API void list_insert_before(list_descriptor *list, list_element *reference, list_element *element) ZR_NOEXCEPT;

/* Inserts element behind reference, or at the end for null. A reference without a successor that isn't the last element
   reports "list_insert_after: list is not in order" and changes nothing. Constant time. */
ZR_API void list_insert_after(list_descriptor *list, list_element *reference, list_element *element) ZR_NOEXCEPT;

/* Takes element out of list, without a check that it is there; its own links stay. Null element: nothing. Constant
   time. */
ZR_API void list_delete(list_descriptor *list, list_element *element) ZR_NOEXCEPT;

/* list_delete, then calls fn, if any, with element. */
ZR_API void list_free(list_descriptor *list, list_element *element, list_free_function fn) ZR_NOEXCEPT;

/* Calls fn, if any, with each element from the first, then makes list empty. */
ZR_API void list_free_all(list_descriptor *list, list_free_function fn) ZR_NOEXCEPT;

/* The first element, from the first to the last, that fn answers with 1, or null. */
ZR_API list_element *list_search(list_descriptor *list, list_search_function fn, zr_value value) ZR_NOEXCEPT;

/* The same from the element from on, which may be null; list is not looked at. */
ZR_API list_element *list_search_from(list_descriptor *list, list_element *from, list_search_function fn,
                                      zr_value value) ZR_NOEXCEPT;

/* The same from the first element up to and including the element to. */
ZR_API list_element *list_search_to(list_descriptor *list, list_element *to, list_search_function fn,
                                    zr_value value) ZR_NOEXCEPT;

/* The same from the element from up to and including the element to, or to the end if to does not come. */
ZR_API list_element *list_search_from_to(list_descriptor *list, list_element *from, list_element *to,
                                         list_search_function fn, zr_value value) ZR_NOEXCEPT;

/* The first element, from the last to the first, that fn answers with 1, or null. */
ZR_API list_element *list_search_backward(list_descriptor *list, list_search_function fn, zr_value value) ZR_NOEXCEPT;

/* Calls fn with every element, from the first to the last. */
ZR_API void list_traverse(list_descriptor *list, list_traverse_function fn, zr_value value) ZR_NOEXCEPT;

/* Calls fn with every element, from the last to the first. */
ZR_API void list_traverse_backward(list_descriptor *list, list_traverse_function fn, zr_value value) ZR_NOEXCEPT;

/* The element of that number, counted from 1; the first for numbers below 1, null behind the end. */
ZR_API list_element *list_get_element_by_number(list_descriptor *list, zr_long number) ZR_NOEXCEPT;

/* The element behind or before element; null at the end, and for null. */
ZR_API list_element *list_next_elem(list_element *element) ZR_NOEXCEPT;
ZR_API list_element *list_prev_elem(list_element *element) ZR_NOEXCEPT;

/* 1 if this very element is in list, else 0. */
ZR_API int list_isinlist(list_descriptor *list, list_element *element) ZR_NOEXCEPT;

/* Sorts list by insertion, quadratic: ascending for mode 1, descending for every other, if compare answers as its type
   says. Elements that compare equal end up in the reverse of their order. compare must not change the list. */
ZR_API void sort_list(list_descriptor *list, int mode, list_compare_function compare) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
