#include <poly/topology/reverse_poly_order.h>

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

namespace {

TEST(ReversePolyOrder, TurnsEachPolygonInPlace) {
    std::vector<unsigned int> const counts = {3, 0, 4, 1, 2, 5};
    std::vector<unsigned int> const expected = {2, 1, 0, 6, 5, 4, 3, 7, 9, 8, 14, 13, 12, 11, 10};
    CoreArray<unsigned int> corners(15);
    std::iota(corners.begin(), corners.end(), 0u);
    reverse_poly_order(counts.data(), 6, corners);
    EXPECT_EQ(std::vector<unsigned int>(corners.begin(), corners.end()), expected);

    CoreArray<unsigned int> const all(CoreBasicArray<unsigned int>(counts.data(), 6));
    reverse_poly_order(all, corners);
    for (unsigned int i = 0; i < 15; ++i) {
        EXPECT_EQ(corners[i], i);
    }
}

}  // namespace
