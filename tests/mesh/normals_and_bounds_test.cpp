#include <poly/mesh/mesh_invariants.h>
#include <poly/mesh/triangle_normals.h>
#include <poly/mesh/vertex_normals.h>
#include <tests/log_capture.h>
#include <tests/same_bits.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace {

using Vec3 = std::array<float, 3>;
using Vec4 = std::array<float, 4>;

constexpr float infinity = std::numeric_limits<float>::infinity();

Vec3 subtract(Vec3 const& a, Vec3 const& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }

float dot(Vec3 const& a, Vec3 const& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Vec3 get_unit(Vec3 const& a) {
    float const length = std::sqrt(dot(a, a));
    return length > 0.0f ? Vec3{a[0] / length, a[1] / length, a[2] / length} : Vec3{};
}

float get_spread(Vec4 const& sum) {
    float const length = std::sqrt(sum[0] * sum[0] + sum[1] * sum[1] + sum[2] * sum[2]);
    float const range = sum[0] + sum[1] + sum[2] - length;
    return range > 1.1920929e-07f ? (sum[3] - length) / range : 0.0f;
}

// Normals and sums from primitives and positions alone.
struct PlainNormals {
    std::vector<Vec3> vertices;
    std::vector<Vec4> groups;
    Vec4 whole{};

    explicit PlainNormals(PolyMesh const& mesh)
        : vertices(mesh.get_vertex_count()), groups(mesh.get_shading_group_names().get_count()) {
        CoreArray<unsigned int> v;
        mesh.get_primitive_indices(v);
        unsigned int next = 0;
        for (unsigned int p = 0; p < mesh.get_primitive_count(); ++p) {
            unsigned int const group = mesh.get_primitive_shading_group_index(p);
            add(mesh, {v[next], v[next + 1], v[next + 2]}, group);
            if (mesh.get_primitive_edge_count(p) == 4) {
                add(mesh, {v[next], v[next + 2], v[next + 3]}, group);
            }
            next += mesh.get_primitive_edge_count(p);
        }
        for (Vec4& group : groups) {
            for (unsigned int i = 0; i < 4; ++i) {
                group[i] *= 0.5f;
                whole[i] += group[i];
            }
            group[3] = get_spread(group);
        }
        whole[3] = get_spread(whole);
    }

    void add(PolyMesh const& mesh, Numbers const& corners, unsigned int const& group) {
        Vec3 points[3];
        for (unsigned int k = 0; k < 3; ++k) {
            GMathVec3<float> const& p = mesh.get_point_cloud()->get_data().positions[corners[k]];
            points[k] = {p.x, p.y, p.z};
        }
        Vec3 const last = subtract(points[0], points[2]);
        Vec3 const first = subtract(points[1], points[0]);
        Vec3 const n{last[1] * first[2] - last[2] * first[1],
                     last[2] * first[0] - last[0] * first[2],
                     last[0] * first[1] - last[1] * first[0]};
        if (group < groups.size() && std::isfinite(std::sqrt(dot(n, n)))) {
            for (unsigned int i = 0; i < 3; ++i) {
                groups[group][i] += std::abs(n[i]);
            }
            groups[group][3] += std::sqrt(dot(n, n));
        }
        Vec3 const unit = get_unit(n);
        for (unsigned int k = 0; k < 3; ++k) {
            Vec3 const in = get_unit(subtract(points[k], points[(k + 2) % 3]));
            Vec3 const out = get_unit(subtract(points[(k + 1) % 3], points[k]));
            for (unsigned int i = 0; i < 3; ++i) {
                double const weighted = static_cast<double>(unit[i]) * (1.0 + double(dot(in, out)));
                vertices[corners[k]][i] += static_cast<float>(weighted);
            }
        }
    }
};

// NaNs count as equal, whatever their bits.
unsigned int bits(float const& value) {
    return std::isnan(value) ? 0x7FC00000u : std::bit_cast<unsigned int>(value);
}

void expect_equal(PolyMeshNormalSum const& sum, Vec4 const& expected) {
    EXPECT_EQ(bits(sum.x), bits(expected[0]));
    EXPECT_EQ(bits(sum.y), bits(expected[1]));
    EXPECT_EQ(bits(sum.z), bits(expected[2]));
    EXPECT_EQ(bits(sum.spread), bits(expected[3]));
}

// What normals are computed of, beside soups.
Shape make_corner() {
    return {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {3, 3}, {0, 1, 2, 0, 2, 3}};
}

}  // namespace

TEST(MeshNormals, AreToTheBitThoseOfAPlainSum) {
    std::vector<Shape> shapes{
        make_triangle(), make_square(), make_folded_quad(), make_corner(), {}};
    for (unsigned int seed = 0; seed < 80; ++seed) {
        shapes.push_back(make_even_soup(seed));
        for (GMathVec3<float>& p : shapes.back().positions) {
            p = p * 0.37f;  // off the grid, so that the order of sums shows
        }
    }
    shapes.push_back(make_soup(1));
    shapes.back().positions[0].x = std::nanf("");
    shapes.back().positions[1].y = infinity;
    shapes.back().positions[2].z = 1e30f;  // finite, but its face normals are not
    for (Shape const& shape : shapes) {
        SCOPED_TRACE(&shape - shapes.data());
        LogCapture const quiet(1);
        PolyMesh mesh;
        shape.set(mesh);
        PlainNormals const expected(mesh);
        expect_equal(mesh.get_geometry().mesh_normal, expected.whole);
        for (unsigned int group = 0; group < expected.groups.size(); ++group) {
            expect_equal(mesh.get_geometry().shading_group_normals[group], expected.groups[group]);
        }
        CoreArray<GMathVec3<float>> sums;
        PolyMeshGeometry again(mesh.get_geometry());
        compute_vertex_normals(mesh.get_topology(), mesh.get_point_cloud()->get_data().positions,
                               sums, again, nullptr);
        GeometryPointCloud cloud(mesh.get_vertex_count());
        cloud.init_normals(sums, false);
        for (unsigned int i = 0; i < expected.vertices.size(); ++i) {
            EXPECT_EQ(bits(sums[i].x), bits(expected.vertices[i][0])) << i;
            EXPECT_EQ(bits(sums[i].y), bits(expected.vertices[i][1])) << i;
            EXPECT_EQ(bits(sums[i].z), bits(expected.vertices[i][2])) << i;
            EXPECT_EQ(mesh.get_point_cloud()->get_data().normals[i], cloud.get_data().normals[i]);
        }
    }
}

TEST(MeshNormals, AreTheSameByEveryProcessor) {
    float const odd[] = {0.0f, -0.0f, 1e-45f, 1e-20f, -1e19f, 3e38f, infinity, std::nanf("")};
    std::mt19937 random(1);
    for (unsigned int round = 0; round < 3000; ++round) {
        std::vector<GMathVec3<float>> points(10);
        for (GMathVec3<float>& p : points) {
            for (float* value : {&p.x, &p.y, &p.z}) {
                *value = random() % 32 == 0 ? odd[random() % std::size(odd)]
                                            : static_cast<float>(random()) / 0x1p31f - 1.0f;
            }
        }
        unsigned int vertices[3 * TriangleNormals::count];
        for (unsigned int& vertex : vertices) {
            vertex = static_cast<unsigned int>(random() % 10);
        }
        TriangleNormals plain, fast;
        compute_triangle_normals(points.data(), vertices, plain);
        get_fastest_triangle_normals()(points.data(), vertices, fast);
        for (unsigned int i = 0; i < sizeof plain / sizeof(float); ++i) {
            ASSERT_EQ(bits((&plain.weighted[0][0][0])[i]), bits((&fast.weighted[0][0][0])[i]))
                << round << " " << i;
        }
    }
}

TEST(MeshNormals, SumUpAreasAndTheirSpread) {
    PolyMesh mesh;
    make_square().set(mesh);
    expect_equal(mesh.get_geometry().mesh_normal, {0, 0, 1, 0});
    make_corner().set(mesh);  // two faces at a right angle
    expect_equal(mesh.get_geometry().mesh_normal, {0.5f, 0, 0.5f, 1});
}

TEST(MeshBounds, GrowByOnePointAfterTheOther) {
    LogCapture const quiet(1);
    for (unsigned int seed = 0; seed < 100; ++seed) {
        Shape shape = make_soup(seed);
        for (GMathVec3<float>& p : shape.positions) {
            p = p * (seed % 3 == 0 ? -0.0f : 1.0f);  // zeros of either sign: the first one stays
        }
        if (seed % 4 != 0) {
            shape.positions[seed % 12].y = seed % 2 == 0 ? infinity : std::nanf("");
        }
        PolyMesh mesh;
        shape.set(mesh);
        std::vector<GMathBbox3<float>> boxes(4, GMathBbox3<float>::get_inverted());
        auto const extend = [&](unsigned int const& box, GMathVec3<float> const& p) {
            if (gmath_isfinite(p)) {
                boxes[box].extend(p);
            }
        };
        unsigned int corner = 0;
        for (unsigned int polygon = 0; polygon < shape.groups.size(); ++polygon) {
            for (unsigned int k = 0; k < shape.vertex_count[polygon]; ++k) {
                extend(shape.groups[polygon], shape.positions[shape.vertex_indices[corner++]]);
            }
        }
        boxes[3] = GMathBbox3<float>::get_inverted();  // group 3 has no name
        for (GMathVec3<float> const& p : shape.positions) {
            extend(3, p);
        }
        PolyMeshGeometry const& geometry = mesh.get_geometry();
        for (unsigned int i = 0; i < 4; ++i) {
            GMathBbox3<float> const& box =
                i < 3 ? geometry.shading_group_bbox[i] : geometry.mesh_bbox;
            EXPECT_TRUE(have_same_bits(box, boxes[i])) << seed << " " << i;
        }
    }
}

TEST(MeshBounds, LeaveOutVerticesThatAreNotFinite) {
    Shape shape = make_row();
    shape.groups = {0, 1, 3};
    shape.names = {"a", "b", "unused"};
    shape.positions[0] = {std::nanf(""), 0, 30};
    shape.positions[1].z = -infinity;
    shape.positions[2].y = infinity;
    LogCapture capture(2);
    PolyMesh mesh;
    shape.set(mesh);
    EXPECT_EQ(capture.take(), "2 PolyMesh: vertex 0 is not valid: (nan, 0, 30)\n"
                              "2 PolyMesh: vertex 1 is not valid: (1, 0, -inf)\n"
                              "2 PolyMesh: vertex 2 is not valid: (1, inf, 0)\n");
    using Box = GMathBbox3<float>;
    PolyMeshGeometry const& geometry = mesh.get_geometry();
    EXPECT_EQ(geometry.mesh_bbox, Box({2, 0, 0}, {4, 2, 0}));
    EXPECT_EQ(geometry.shading_group_bbox[0], Box::get_inverted());  // all its vertices are invalid
    EXPECT_EQ(geometry.shading_group_bbox[1], Box({2, 0, 0}, {2, 1, 0}));
    EXPECT_EQ(geometry.shading_group_bbox[2], Box::get_inverted());
    EXPECT_EQ(find_broken_invariant(mesh), "");

    // Without vertices only x and y return to zero.
    make_folded_quad().set(mesh);
    GMathBbox3<double> box;
    mesh.compute_primitive_bbox(CtxEval(), 0, {{0, 1, 0}, {-1, 0, 0}, {0, 0, 2}}, box);
    EXPECT_EQ(box, GMathBbox3<double>({-1, 0, 0}, {0, 1, 2}));  // a quarter turn
    Shape().set(mesh);
    EXPECT_EQ(geometry.mesh_bbox, Box({0, 0, 0}, {0, 0, 1}));
    EXPECT_EQ(geometry.shading_group_bbox[0], Box::get_zero());
}
