#include <tools/qzpoly/check/mesh_faults.h>
#include <tools/qzpoly/models/radix_order.h>

#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <random>
#include <set>

namespace {

TEST(RadixOrder, IsStable) {
    for (unsigned int seed = 0; seed < 20; ++seed) {
        std::mt19937 random(seed);
        std::vector<unsigned int> keys(seed * 50);
        for (unsigned int& key : keys) {
            key = static_cast<unsigned int>(random() >> random() % 32);
        }
        std::vector<unsigned int> order(keys.size());
        std::iota(order.begin(), order.end(), 0);
        std::vector<unsigned int> expected = order;
        order_by_key(order, [&](unsigned int const& i) { return keys[i]; });
        std::stable_sort(
            expected.begin(), expected.end(),
            [&](unsigned int const& a, unsigned int const& b) { return keys[a] < keys[b]; });
        EXPECT_EQ(order, expected) << seed;
    }
}

// Few vertices, at fewer places, so that all kinds of faults come up.
Shape make_faulty(unsigned int const& seed) {
    std::mt19937 random(seed);
    Shape shape;
    unsigned int const vertex_count = 5 + seed % 7;
    for (unsigned int i = 0; i < vertex_count; ++i) {
        shape.positions.emplace_back(float(random() % 2), float(random() % 3),
                                     float(random() % 2) * -0.0f);
    }
    for (unsigned int i = 0; i < 1 + seed % 9; ++i) {
        shape.vertex_count.push_back(3 + random() % 4);
        for (unsigned int k = 0; k < shape.vertex_count.back(); ++k) {
            shape.vertex_indices.push_back(static_cast<unsigned int>(random() % vertex_count));
        }
    }
    return shape;
}

using Counts = std::array<unsigned int, 4>;
constexpr ToolFaultKind edge_kinds[] = {ToolFaultKind::BORDER_EDGE, ToolFaultKind::WINDING,
                                        ToolFaultKind::NON_MANIFOLD_EDGE,
                                        ToolFaultKind::DUPLICATE_EDGE};

// By the definitions, in maps.
Counts count_plainly(Shape const& mesh) {
    using Ends = std::pair<unsigned int, unsigned int>;
    using Place = std::array<float, 3>;
    std::map<Ends, std::vector<unsigned int>> starts;  // of the sides of each edge
    unsigned int begin = 0;
    for (unsigned int const count : mesh.vertex_count) {
        for (unsigned int k = 0; k < count; ++k) {
            unsigned int const a = mesh.vertex_indices[begin + k];
            unsigned int const b = mesh.vertex_indices[begin + (k + 1) % count];
            if (a != b) {
                starts[std::minmax(a, b)].push_back(a);
            }
        }
        begin += count;
    }
    auto const get_place = [&](unsigned int const& vertex) {
        GMathVec3<float> const& p = mesh.positions[vertex];
        return Place{p.x, p.y, p.z};
    };
    std::map<std::set<Place>, unsigned int> places;
    for (auto const& edge : starts) {
        ++places[{get_place(edge.first.first), get_place(edge.first.second)}];
    }
    Counts counts{};
    for (auto const& [ends, sides] : starts) {
        counts[0] += sides.size() == 1 ? 1 : 0;
        counts[1] += sides.size() == 2 && sides[0] == sides[1] ? 1 : 0;
        counts[2] += sides.size() > 2 ? 1 : 0;
        std::set<Place> const place = {get_place(ends.first), get_place(ends.second)};
        counts[3] += place.size() == 2 && places[place] > 1 ? 1 : 0;
    }
    return counts;
}

TEST(EdgeFaults, AreThoseOfThePlainCount) {
    Counts reached{};
    for (unsigned int seed = 0; seed < 400; ++seed) {
        Shape const shape = make_faulty(seed);
        PolyMesh mesh;
        shape.set(mesh);
        ToolFaults const faults = find_faults(mesh, {}, 2);
        Counts const expected = count_plainly(shape);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ToolFaults::Row const& row = faults.get_row(edge_kinds[i]);
            EXPECT_EQ(row.count, expected[i]) << seed << " " << get_meaning(edge_kinds[i]).name;
            EXPECT_EQ(row.places.size(), std::min(expected[i], 2u));
            reached[i] += expected[i];
        }
    }
    EXPECT_GT(*std::min_element(reached.begin(), reached.end()), 200u);
}

}  // namespace
