#include <poly/topology/corner_tree.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

namespace {

// A blocker by definition: inside the ear, and a vertex that is none of the ear's.
bool is_plain_blocker(std::vector<PlanePoint> const& points,
                      std::vector<unsigned int> const& vertices, unsigned int const& i,
                      unsigned int const (&ear)[3]) {
    for (unsigned int const corner : ear) {
        if (vertices[i] == vertices[corner]) {
            return false;
        }
    }
    return EarTriangle(points[ear[0]], points[ear[1]], points[ear[2]]).contains(points[i]);
}

// Each row's points are drawn from its scales and from a coarse grid.
TEST(CornerTree, FindsABlockerWhereThereIsOne) {
    constexpr float huge = std::numeric_limits<float>::max();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<float> const rows[] = {
        {1},
        {1, 1e-3f, 1e-6f},
        {1, 1e-30f, 1e-42f},
        {1e30f},
        {huge, -huge},
        {huge, -huge, huge / 2, 1e38f, 1e30f, 1, 0},
        {1, -1, huge, -huge, infinity, -infinity},
        {1, infinity, nan},
        {nan, infinity},
    };
    unsigned int found = 0;
    unsigned int not_found = 0;
    for (unsigned int seed = 0; seed < 1800; ++seed) {
        std::mt19937 engine(seed);
        auto const below = [&engine](std::size_t const& end) {
            return static_cast<unsigned int>(engine() % end);
        };
        std::vector<float> const& scales = rows[seed % std::size(rows)];
        unsigned int const count = 1 + below(400);
        unsigned int const steps = 1 + below(40);
        auto const draw = [&] {
            return float(below(steps + 1)) / float(steps) * scales[below(scales.size())];
        };
        std::vector<PlanePoint> points;
        std::vector<unsigned int> vertices;
        for (unsigned int i = 0; i < count; ++i) {
            bool const is_repeated = i != 0 && below(8) == 0;
            unsigned int const source = is_repeated ? below(i) : i;
            points.push_back(is_repeated ? points[source] : PlanePoint{draw(), draw()});
            vertices.push_back(is_repeated ? vertices[source] : 1000 + i);
        }
        ScratchBlock scratch(CornerTree::get_scratch_size(count));
        CornerTree tree;
        tree.build(points.data(), vertices.data(), count, scratch);
        std::vector<unsigned int> left(count);
        std::iota(left.begin(), left.end(), 0u);
        for (; left.size() > 3; left.pop_back()) {
            std::swap(left[below(left.size())], left.back());
            unsigned int ear[3];
            for (unsigned int& corner : ear) {
                corner = left[below(left.size())];
            }
            auto const is_blocker = [&](unsigned int const& i) {
                return is_plain_blocker(points, vertices, i, ear);
            };
            bool const is_blocked = std::any_of(left.begin(), left.end(), is_blocker);
            unsigned int const slot = tree.find_blocker(ear[0], ear[1], ear[2]);
            ASSERT_EQ(slot != CornerTree::no_slot, is_blocked) << "seed " << seed;
            if (is_blocked) {
                ASSERT_TRUE(tree.is_blocker(slot, ear[0], ear[1], ear[2])) << "seed " << seed;
            }
            ++(is_blocked ? found : not_found);
            tree.remove(left.back());
        }
    }
    EXPECT_GT(found, 10000u);
    EXPECT_GT(not_found, 10000u);
}

}  // namespace
