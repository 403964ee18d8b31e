// Sorting of arrays.
#include <zrclb/sort.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(Sort, LongsAscendSigned) {
    zr_long vector[] = {3, -1, 2147483647, 0, -2147483647 - 1, 3};
    sort_lvector(vector, 6);
    EXPECT_EQ(std::vector<zr_long>(vector, vector + 6),
              (std::vector<zr_long>{-2147483647 - 1, -1, 0, 3, 3, 2147483647}));
}

TEST(Sort, DoublesAscend) {
    double vector[] = {0.5, -infinity, 1e300, -0.5, infinity, 0.25};
    sort_dvector(vector, 6);
    EXPECT_EQ(std::vector<double>(vector, vector + 6),
              (std::vector<double>{-infinity, -0.5, 0.25, 0.5, 1e300, infinity}));
}

TEST(Sort, OnlyCountElementsAreTouched) {
    zr_long vector[] = {3, 2, 1};
    sort_lvector(vector, 2);
    EXPECT_EQ(vector[0], 2);
    EXPECT_EQ(vector[1], 3);
    EXPECT_EQ(vector[2], 1);
    sort_lvector(vector, 0);
    sort_lvector(vector, 1);
    EXPECT_EQ(vector[0], 2);
    double doubles[] = {2, 1};
    sort_dvector(doubles, 0);
    sort_dvector(doubles, 1);
    EXPECT_EQ(doubles[0], 2);
}

TEST(Sort, NanLosesNoElement) {
    std::vector<double> vector;
    for (int i = 0; i < 1000; ++i) {
        vector.push_back(i % 3 == 0 ? nan_value : (i * 37) % 101);
    }
    auto others = vector;
    sort_dvector(vector.data(), 1000);
    EXPECT_EQ(std::count_if(vector.begin(), vector.end(), [](double v) { return std::isnan(v); }), 334);
    auto sum = [](const std::vector<double> &values) {
        double total = 0;
        for (double value : values) {
            total += std::isnan(value) ? 0 : value;
        }
        return total;
    };
    EXPECT_EQ(sum(vector), sum(others));
}

TEST(Sort, LongIndexPointsToAscendingValues) {
    zr_long vector[] = {3, 1, 2};
    zr_long *index[3];
    sort_lvector_by_index(vector, index, 3);
    EXPECT_EQ(index[0], vector + 1);
    EXPECT_EQ(index[1], vector + 2);
    EXPECT_EQ(index[2], vector + 0);
    EXPECT_EQ(vector[0], 3);
    EXPECT_EQ(vector[1], 1);
    EXPECT_EQ(vector[2], 2);
}

TEST(Sort, DoubleIndexPointsToAscendingValues) {
    double vector[] = {0.3, -0.1, 0.2};
    double *index[3];
    sort_dvector_by_index(vector, index, 3);
    EXPECT_EQ(index[0], vector + 1);
    EXPECT_EQ(index[1], vector + 2);
    EXPECT_EQ(index[2], vector + 0);
    EXPECT_EQ(vector[0], 0.3);
    EXPECT_EQ(vector[1], -0.1);
    EXPECT_EQ(vector[2], 0.2);
}

TEST(Sort, DoubleIndexWithNanHoldsEveryAddressOnce) {
    std::vector<double> vector(100, nan_value);
    vector[50] = 1;
    vector[10] = 2;
    std::vector<double *> index(100);
    sort_dvector_by_index(vector.data(), index.data(), 100);
    std::sort(index.begin(), index.end());
    for (std::size_t i = 0; i < 100; ++i) {
        EXPECT_EQ(index[i], vector.data() + i);
    }
}

TEST(Sort, IndexWithoutACountIsLeftAlone) {
    zr_long vector[] = {1};
    zr_long *index[] = {nullptr};
    sort_lvector_by_index(vector, index, 0);
    sort_lvector_by_index(vector, index, -1);
    EXPECT_EQ(index[0], nullptr);
    double doubles[] = {1};
    double *places[] = {nullptr};
    sort_dvector_by_index(doubles, places, 0);
    sort_dvector_by_index(doubles, places, -1);
    EXPECT_EQ(places[0], nullptr);
}

struct Pair {
    char tag[3];
    int key;
};

int Descending(const void *a, const void *b) {
    return static_cast<const Pair *>(b)->key - static_cast<const Pair *>(a)->key;
}

TEST(Sort, QuickMovesWholeElementsByTheCallersOrder) {
    Pair pairs[] = {{"a", 1}, {"b", 3}, {"c", 2}};
    sort_quick(pairs, 0, sizeof(Pair), Descending);
    EXPECT_STREQ(pairs[0].tag, "a");
    sort_quick(pairs, 3, sizeof(Pair), Descending);
    EXPECT_STREQ(pairs[0].tag, "b");
    EXPECT_STREQ(pairs[1].tag, "c");
    EXPECT_STREQ(pairs[2].tag, "a");
}

TEST(Sort, NullIsTolerated) {
    sort_lvector(nullptr, 3);
    sort_dvector(nullptr, 3);
    zr_long value = 1;
    zr_long *place = &value;
    double real = 1;
    double *real_place = &real;
    sort_lvector_by_index(nullptr, &place, 1);
    sort_lvector_by_index(&value, nullptr, 1);
    sort_dvector_by_index(nullptr, &real_place, 1);
    sort_dvector_by_index(&real, nullptr, 1);
    sort_quick(nullptr, 2, 4, Descending);
    Pair pairs[] = {{"a", 1}, {"b", 3}};
    sort_quick(pairs, 2, sizeof(Pair), nullptr);
    sort_quick(pairs, 2, 0, Descending);
    EXPECT_STREQ(pairs[0].tag, "a");
}

TEST(Sort, ManyElements) {
    std::vector<zr_long> vector;
    for (zr_long i = 0; i < 100000; ++i) {
        vector.push_back((i * 7919) % 100003 - 50000);
    }
    auto expected = vector;
    std::sort(expected.begin(), expected.end());
    sort_lvector(vector.data(), 100000);
    EXPECT_EQ(vector, expected);
}

} // namespace
