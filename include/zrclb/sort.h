/* Sorting of arrays. C17 and C++20.
 *
 * The order is ascending; elements that are equal may change places. A null array, and a count below 1, do nothing.
 * A vector of doubles with a NaN in it ends in no particular order, and loses no element.
 * Threads: the functions touch only their arguments.
 */
#ifndef ZRCLB_SORT_H
#define ZRCLB_SORT_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Compares two elements: below, equal to or above 0. Must be a consistent order. */
typedef int (*sort_compare_function)(const void *a, const void *b);

/* Sorts vector[0..count-1] in place. */
ZR_API void sort_lvector(zr_long *vector, unsigned int count) ZR_NOEXCEPT;
ZR_API void sort_dvector(double *vector, unsigned int count) ZR_NOEXCEPT;

/* Fills index[0..count-1] with the addresses of the elements of vector[0..count-1], and sorts these by what they point
   to: *index[0] is the smallest value. vector stays as it is. */
ZR_API void sort_lvector_by_index(zr_long *vector, zr_long **index, int count) ZR_NOEXCEPT;
ZR_API void sort_dvector_by_index(double *vector, double **index, int count) ZR_NOEXCEPT;

/* Sorts count elements of size bytes from base on by compare. */
ZR_API void sort_quick(void *base, unsigned int count, unsigned int size, sort_compare_function compare) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
