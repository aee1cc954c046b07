#include <poly/topology/neighbourhood.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr unsigned int none = 0xFFFFFFFFu;

template <typename T>
std::vector<T> to_vector(CoreArray<T> const& array) {
    return std::vector<T>(array.begin(), array.end());
}

Numbers find_neighbours(Numbers const& vertices, unsigned int const& face_size,
                        AppProgressBar* const progress = nullptr) {
    CoreArray<unsigned int> neighbours(5);
    (face_size == 3 ? compute_triangles_neighbourhood
                    : compute_quads_neighbourhood)(neighbours, view(vertices), 2000, progress);
    return to_vector(neighbours);
}

struct PolygonLinks {
    Numbers polygons;
    Numbers edges;
    std::vector<unsigned char> manifold;

    bool operator==(PolygonLinks const&) const = default;
};

Numbers get_offsets(Numbers const& sizes) {
    Numbers offsets;
    unsigned int sum = 0;
    for (unsigned int const size : sizes) {
        offsets.push_back(sum);
        sum += size;
    }
    return offsets;
}

PolygonLinks find_polygon_links(Numbers const& vertices, Numbers const& sizes) {
    CoreArray<unsigned int> polygons;
    CoreArray<unsigned int> edges;
    CoreArray<unsigned char> manifold;
    compute_polygons_neighbourhood(polygons, edges, manifold, view(vertices), view(sizes),
                                   view(get_offsets(sizes)), 2000, nullptr);
    return {to_vector(polygons), to_vector(edges), to_vector(manifold)};
}

TEST(Neighbourhood, KnownTriangles) {
    struct Row {
        char const* name;
        Numbers vertices;
        Numbers expected;
    };
    Row const rows[] = {
        {"no faces", {}, {}},
        {"two that share an edge", {0, 1, 2, 2, 1, 3}, {none, 3, none, 1, none, none}},
        {"the same, wound against each other", {0, 1, 2, 1, 2, 3}, {none, 3, none, 1, none, none}},
        {"a ring of three on one edge",
         {0, 1, 2, 1, 0, 3, 0, 1, 4},
         {6, none, none, 0, none, none, 3, none, none}},
        {"a collapsed edge", {0, 0, 1}, {none, 2, 1}},
        {"an invalid corner", {0, 1, none, 1, 0, 2}, {none, none, none, none, none, none}},
        {"an incomplete face", {0, 1, 2, 1, 0}, {none, none, none, none, none}},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(find_neighbours(row.vertices, 3), row.expected) << row.name;
    }
}

TEST(Neighbourhood, ManifoldEdgesOfPolygons) {
    Numbers const vertices = {0, 1, 2, 3, 1, 0, 4, 2, 3, 5, 3, 2, 6};
    std::vector<unsigned char> const opposite = {1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0};
    // Edge 2-3 is there three times, edge 0-1 twice and in opposite directions.
    EXPECT_EQ(find_polygon_links(vertices, {4, 3, 3, 3}).manifold, opposite);
}

// By the definition: looks through all earlier edges, those of the opposite direction first.
PolygonLinks link_plainly(Numbers const& vertices, Numbers const& sizes) {
    struct Edge {
        unsigned int a, b, polygon, k, slot;
    };
    std::vector<Edge> listed;
    std::size_t const n = vertices.size();
    PolygonLinks links = {Numbers(n, none), Numbers(n, none), std::vector<unsigned char>(n, 0)};
    Numbers const offsets = get_offsets(sizes);
    for (unsigned int p = 0; p < sizes.size(); ++p) {
        unsigned int const* const v = vertices.data() + offsets[p];
        for (unsigned int k = 0; k < sizes[p] && std::count(v, v + sizes[p], none) == 0; ++k) {
            Edge const e = {v[k], v[(k + 1) % sizes[p]], p, k, offsets[p] + k};
            auto const find = [&](unsigned int const& a, unsigned int const& b) {
                return std::find_if(listed.begin(), listed.end(),
                                    [&](Edge const& f) { return f.a == a && f.b == b; });
            };
            auto const opposite = find(e.b, e.a);
            auto const f = opposite != listed.end() ? opposite : find(e.a, e.b);
            if (e.a == e.b) {
                continue;
            }
            if (f == listed.end()) {
                listed.push_back(e);
                continue;
            }
            unsigned int const s = f->slot;
            if (links.polygons[s] == none) {
                links.polygons[e.slot] = f->polygon;
                links.edges[e.slot] = f->k;
                links.manifold[e.slot] = links.manifold[s] = opposite != listed.end() ? 1 : 0;
            } else {
                links.polygons[e.slot] = links.polygons[s];
                links.edges[e.slot] = links.edges[s];
                links.manifold[offsets[links.polygons[s]] + links.edges[s]] = 0;
                links.manifold[s] = 0;
            }
            links.polygons[s] = p;
            links.edges[s] = k;
        }
    }
    return links;
}

// Soups with many edges on one vertex pair, collapsed edges and invalid corners; in the last ones
// some vertices have hundreds of edges, or all have dozens.
TEST(Neighbourhood, EqualsThePlainDefinition) {
    for (unsigned int seed = 0; seed < 1500; ++seed) {
        std::mt19937 random(seed);
        bool const is_dense = seed >= 1498;
        bool const has_hubs = seed >= 1490 && !is_dense;
        unsigned int const vertex_count = is_dense ? 100 : has_hubs ? 1000 : 2 + seed % 30;
        unsigned int const face_size = 3 + seed % 2;
        Numbers sizes(is_dense ? 4000 : has_hubs ? 900 : seed % 40);
        Numbers vertices;
        for (unsigned int& size : sizes) {
            size = seed % 3 == 0 ? static_cast<unsigned int>(random() % 7) : face_size;
            for (unsigned int k = 0; k < size; ++k) {
                bool const is_hub = has_hubs && random() % 2 == 0;
                unsigned int const hubs[] = {3, 40, vertex_count - 1};
                unsigned int const any = static_cast<unsigned int>(random() % vertex_count);
                vertices.push_back(is_hub ? hubs[any % 3] : random() % 40 == 0 ? none : any);
            }
        }
        PolygonLinks const expected = link_plainly(vertices, sizes);
        ASSERT_EQ(find_polygon_links(vertices, sizes), expected) << "seed " << seed;
        if (seed % 3 != 0) {
            Numbers slots = expected.polygons;
            for (unsigned int i = 0; i < slots.size(); ++i) {
                slots[i] = slots[i] == none ? none : slots[i] * face_size + expected.edges[i];
            }
            ASSERT_EQ(find_neighbours(vertices, face_size), slots) << "seed " << seed;
        }
    }
}

TEST(Neighbourhood, StepsOnceAFace) {
    AppProgressBar bar("bar");
    bar.start();
    bar.begin_task("faces", 1.0f, false);
    find_neighbours({0, 1, 2, none, 1, 2}, 3, &bar);
    EXPECT_EQ(bar.get_value(), 1.0);
}

}  // namespace
