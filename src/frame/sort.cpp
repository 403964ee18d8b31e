// Sorting of arrays, over the standard quicksort.
#include <zrclb/sort.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zr::frame {
namespace {

template <typename T>
int Compare(T a, T b) {
    if (a > b) {
        return 1;
    }
    return a < b ? -1 : 0;
}

template <typename T>
int CompareValues(const void *a, const void *b) {
    return Compare(*static_cast<const T *>(a), *static_cast<const T *>(b));
}

template <typename T>
int ComparePointed(const void *a, const void *b) {
    return Compare(**static_cast<T *const *>(a), **static_cast<T *const *>(b));
}

template <typename T>
void FillIndex(T *vector, T **index, int count) {
    for (int i = 0; i < count; ++i) {
        index[i] = vector + i;
    }
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

void sort_lvector(zr_long *vector, unsigned int count) noexcept {
    sort_quick(vector, count, sizeof *vector, CompareValues<zr_long>);
}

// A NaN compares equal to all others, which is no order, and the standard quicksort may run astray with such a comparison.
// So they go to the end first.
void sort_dvector(double *vector, unsigned int count) noexcept {
    if (vector == nullptr) {
        return;
    }
    double *end = std::partition(vector, vector + count, [](double value) { return !std::isnan(value); });
    sort_quick(vector, static_cast<unsigned>(end - vector), sizeof *vector, CompareValues<double>);
}

void sort_lvector_by_index(zr_long *vector, zr_long **index, int count) noexcept {
    if (vector == nullptr || index == nullptr || count < 1) {
        return;
    }
    FillIndex(vector, index, count);
    sort_quick(index, static_cast<unsigned>(count), sizeof *index, ComparePointed<zr_long>);
}

void sort_dvector_by_index(double *vector, double **index, int count) noexcept {
    if (vector == nullptr || index == nullptr || count < 1) {
        return;
    }
    FillIndex(vector, index, count);
    double **end = std::partition(index, index + count, [](const double *value) { return !std::isnan(*value); });
    sort_quick(index, static_cast<unsigned>(end - index), sizeof *index, ComparePointed<double>);
}

void sort_quick(void *base, unsigned int count, unsigned int size, sort_compare_function compare) noexcept {
    if (base != nullptr && count > 1 && size > 0 && compare != nullptr) {
        std::qsort(base, count, size, compare);
    }
}
}
