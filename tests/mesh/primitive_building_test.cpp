#include <poly/mesh/mesh_invariants.h>
#include <poly/topology/triangulate_polygon.h>
#include <tests/log_capture.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

namespace {

// The primitives of a mesh, one after another.
struct Primitives {
    Numbers infos;
    Numbers polygons;
    Numbers corners;  // ids

    friend bool operator==(Primitives const& a, Primitives const& b) = default;
};

Primitives read(PolyMesh const& mesh) {
    PolyMeshTopology const& topology = mesh.get_topology();
    Primitives primitives;
    for (unsigned int p = 0; p < mesh.get_primitive_count(); ++p) {
        primitives.infos.push_back(topology.primitive_infos[p] & 63u);
        primitives.polygons.push_back(mesh.get_primitive_polygon_id(p));
        unsigned int const offset = topology.primitive_index_offsets[p];
        for (unsigned int k = 0; k < mesh.get_primitive_edge_count(p); ++k) {
            bool const is_direct = (primitives.infos.back() & 2) != 0;
            primitives.corners.push_back(is_direct ? offset + k
                                                   : topology.triangle_indices[offset + k]);
        }
    }
    return primitives;
}

// Both diagonals, in the words of the definition: q and s lie strictly on two sides of p to r.
float get_side(GMathVec3<float> const& p, GMathVec3<float> const& q, GMathVec3<float> const& r,
               GMathVec3<float> const& s) {
    return gmath_dot(gmath_cross(r - q, s - q), gmath_cross(p - q, s - q));
}

// What the primitives must be, by plain appending, and how many triangles are degenerate.
Primitives build_plainly(Shape const& shape, unsigned int& degenerate_count) {
    Primitives primitives;
    unsigned int first = 0;
    for (unsigned int polygon = 0; polygon < shape.vertex_count.size(); ++polygon) {
        unsigned int const n = shape.vertex_count[polygon];
        auto const point = [&](unsigned int const& k) {
            return shape.positions[shape.vertex_indices[first + k]];
        };
        bool const is_whole =
            n == 3 || (n == 4 && (!shape.check_quads ||
                                  (get_side(point(0), point(1), point(2), point(3)) < 0.0f &&
                                   get_side(point(3), point(0), point(1), point(2)) < 0.0f)));
        Numbers triangles(n > 2 ? 3 * (n - 2) : 0);
        if (is_whole) {
            primitives.infos.push_back(n == 4 ? 63 : 62);
            primitives.polygons.push_back(polygon);
            for (unsigned int k = 0; k < n; ++k) {
                primitives.corners.push_back(first + k);
            }
        } else if (n > 2) {
            unsigned int const written = triangulate_polygon(
                shape.positions.data(), shape.vertex_indices.data() + first, n, triangles.data());
            for (unsigned int t = 0; written < triangles.size() && t < n - 2; ++t) {
                triangles[3 * t] = 0;
                triangles[3 * t + 1] = t + 1;
                triangles[3 * t + 2] = t + 2;
            }
            degenerate_count += (static_cast<unsigned int>(triangles.size()) - written) / 3;
            for (unsigned int t = 0; t < n - 2; ++t) {
                unsigned int info = 0;
                for (unsigned int k = 0; k < 3; ++k) {
                    primitives.corners.push_back(first + triangles[3 * t + k]);
                    info |= triangles[3 * t + (k + 1) % 3] == (triangles[3 * t + k] + 1) % n
                                ? 4u << k
                                : 0;
                }
                primitives.infos.push_back(info);
                primitives.polygons.push_back(polygon);
            }
        }
        first += n;
    }
    return primitives;
}

}  // namespace

TEST(PrimitiveBuilding, CutsWhatIsNoConvexQuad) {
    Points const dart{{0, 0, 0}, {2, 0, 0}, {0.5f, 0.5f, 0}, {0, 2, 0}};
    Points const twin_corners{{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    Points const pentagon{{0, 0, 0}, {2, 0, 0}, {3, 1, 0}, {1, 3, 0}, {-1, 1, 0}};
    struct Row {
        char const* name;
        Shape shape;
        Primitives expected;
        unsigned int degenerate_count = 0;
    };
    Numbers const all{0, 1, 2, 3};
    Row const rows[] = {
        {"square", make_square(), {{63}, {0}, all}},
        {"bent square", make_folded_quad(), {{63}, {0}, all}},
        {"dart", {dart, {4}, all}, {{12, 20}, {0, 0}, {0, 1, 2, 3, 0, 2}}},
        {"dart kept", {dart, {4}, all, {}, {}, {}, {}, {}, {"all"}, false}, {{63}, {0}, all}},
        {"coincident corners", {twin_corners, {4}, all}, {{12, 24}, {0, 0}, {0, 1, 2, 0, 2, 3}}, 2},
        {"pentagon",
         {pentagon, {5}, {0, 1, 2, 3, 4}},
         {{12, 12, 4}, {0, 0, 0}, {0, 1, 2, 3, 4, 0, 2, 3, 0}}},
        {"two corners between triangles",
         {dart, {3, 2, 3}, {0, 1, 2, 0, 1, 2, 3, 0}},
         {{62, 62}, {0, 2}, {0, 1, 2, 5, 6, 7}}},
        {"no corners", {dart, {0, 1, 2}, {0, 1, 2}}, {}},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture capture(4);
        PolyMesh mesh;
        row.shape.set(mesh);
        Primitives const primitives = read(mesh);
        EXPECT_EQ(primitives.infos, row.expected.infos);
        EXPECT_EQ(primitives.corners, row.expected.corners);
        EXPECT_EQ(primitives.polygons, row.expected.polygons);
        EXPECT_EQ(find_broken_invariant(mesh), "");
        EXPECT_EQ(capture.take(), row.degenerate_count == 0
                                      ? ""
                                      : "4 PolyMesh: the triangulation has detected 2 degenerated "
                                        "triangle(s).\n");
    }
}

TEST(PrimitiveBuilding, AgreesWithPlainAppending) {
    unsigned int cut_count = 0;
    unsigned int fan_count = 0;
    unsigned int quad_count = 0;
    for (unsigned int seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        Shape const shape = make_soup(seed);
        LogCapture capture(4);
        PolyMesh mesh;
        AppProgressBar bar("soup");
        shape.set(mesh, seed % 3 == 0 ? &bar : nullptr);
        unsigned int degenerate_count = 0;
        Primitives const expected = build_plainly(shape, degenerate_count);
        ASSERT_TRUE(read(mesh) == expected);
        ASSERT_EQ(find_broken_invariant(mesh), "");
        std::string const name = seed % 3 == 0 ? "soup" : "PolyMesh";
        ASSERT_EQ(capture.take(), degenerate_count == 0
                                      ? ""
                                      : "4 " + name + ": the triangulation has detected " +
                                            std::to_string(degenerate_count) +
                                            " degenerated triangle(s).\n");
        cut_count += mesh.get_topology().triangle_indices.get_count() / 3;
        fan_count += degenerate_count;
        quad_count += mesh.get_topology().quad_count;
    }
    EXPECT_GT(cut_count, 10000u);
    EXPECT_GT(fan_count, 1000u);
    EXPECT_GT(quad_count, 200u);
}

TEST(PrimitiveBuilding, GivesTheVerticesOfAllPrimitives) {
    PolyMesh mesh;
    make_row().set(mesh);
    CoreArray<unsigned int> vertices(3);
    mesh.get_primitive_indices(vertices);
    EXPECT_EQ(Numbers(vertices.begin(), vertices.end()),
              Numbers({0, 1, 2, 1, 3, 4, 2, 3, 5, 6, 7, 4, 3, 6, 7, 3}));
    EXPECT_EQ(mesh.get_primitive_index_count(), 16u);
    EXPECT_EQ(mesh.get_polygon_index_count(), 12u);
}
