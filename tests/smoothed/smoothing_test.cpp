#include <poly/smoothed/poly_mesh_smoothed.h>
#include <poly/smoothed/smoothing_triangles.h>
#include <poly/topology/neighbourhood.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace {

constexpr unsigned int none = 0xFFFFFFFFu;

Shape make_cube() {
    return {
        {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}},
        {4, 4, 4, 4, 4, 4},
        {0, 3, 2, 1, 4, 5, 6, 7, 0, 1, 5, 4, 1, 2, 6, 5, 2, 3, 7, 6, 3, 0, 4, 7}};
}

// Twelve sides around the apex, vertex 12; the base, when closed, is one polygon.
Shape make_cone(bool const& is_closed) {
    Shape cone;
    for (unsigned int i = 0; i < 12; ++i) {
        double const angle = i * std::numbers::pi / 6;
        cone.positions.push_back(
            {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)), 0});
        cone.vertex_count.push_back(3);
        cone.vertex_indices.insert(cone.vertex_indices.end(), {i, (i + 1) % 12, 12});
    }
    cone.positions.push_back({0, 0, 1});
    for (unsigned int i = 0; is_closed && i < 12; ++i) {
        cone.vertex_indices.push_back(11 - i);
    }
    if (is_closed) {
        cone.vertex_count.push_back(12);
    }
    return cone;
}

// Two squares in a plane, the second turned over: they run along their edge the same way.
Shape make_turned_pair() {
    return {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, 0}, {2, 1, 0}},
            {4, 4},
            {0, 1, 2, 3, 1, 2, 5, 4}};
}

Shape make_three_on_an_edge() {
    return {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, -1, 0.1f}, {0, 0, 1}},
            {3, 3, 3},
            {0, 1, 2, 1, 0, 3, 0, 1, 4}};
}

struct SmoothingCase {
    char const* name;
    Shape shape;
    double angle;
    unsigned int flat;     // corners
    unsigned int own;      // corners at their vertex normal
    unsigned int made;     // corners at a normal that was made
    unsigned int normals;  // that were made
};

TEST(Smoothing, SortsCornersOfKnownShapes) {
    SmoothingCase const cases[] = {
        {"cube at 0", make_cube(), 0, 24, 0, 0, 0},
        {"cube at 89", make_cube(), 89, 24, 0, 0, 0},
        {"cube at 91", make_cube(), 91, 0, 24, 0, 0},
        {"cube at 180", make_cube(), 180, 0, 24, 0, 0},
        {"square at 180", make_square(), 180, 4, 0, 0, 0},
        {"open cone at 0", make_cone(false), 0, 36, 0, 0, 0},
        {"open cone at 180", make_cone(false), 180, 0, 12, 24, 12},
        {"closed cone at 45", make_cone(true), 45, 12, 12, 24, 12},
        {"closed cone at 180", make_cone(true), 180, 0, 48, 0, 0},
        {"turned pair at 180", make_turned_pair(), 180, 8, 0, 0, 0},
        {"three on an edge at 180", make_three_on_an_edge(), 180, 9, 0, 0, 0},
    };
    for (SmoothingCase const& row : cases) {
        PolyMesh mesh;
        row.shape.set(mesh);
        PolyMeshSmoothed smoothed;
        smoothed.set(mesh, row.angle, none, nullptr);
        PolyMeshNormalMap const& map = *smoothed.get_current_normal_map();
        unsigned int counts[3] = {0, 0, 0};
        for (unsigned int corner = 0; corner < map.polygon_indices.get_count(); ++corner) {
            unsigned int const index = map.polygon_indices[corner];
            bool const is_own = index < mesh.get_vertex_count();
            EXPECT_TRUE(!is_own || index == row.shape.vertex_indices[corner]) << row.name;
            ++counts[index == none ? 0 : is_own ? 1 : 2];
        }
        EXPECT_EQ(counts[0], row.flat) << row.name;
        EXPECT_EQ(counts[1], row.own) << row.name;
        EXPECT_EQ(counts[2], row.made) << row.name;
        EXPECT_EQ(map.normals.get_count(), row.normals) << row.name;
    }
}

// By symmetry, a vertex on the rim has the mean of the normals of its two sides.
TEST(Smoothing, WeighsTheSidesOfAFan) {
    PolyMesh mesh;
    make_cone(false).set(mesh);
    PolyMeshSmoothed smoothed;
    smoothed.set(mesh, 180, none, nullptr);
    CoreArray<GMathVec3<float>> normals;
    CoreArray<unsigned int> indices;
    ASSERT_TRUE(smoothed.get_polygon_normal_map_data(0, normals, indices));
    GMathVec3<float> const normal = normals[indices[0]];
    EXPECT_NEAR(normal.y, 0, 1e-4);
    EXPECT_NEAR(gmath_length(normal), 1, 1e-4);
    EXPECT_NEAR(std::atan2(normal.z, normal.x), std::atan(std::cos(std::numbers::pi / 12)), 0.02);
    EXPECT_EQ(smoothed.get_normal_map_name(0), CoreString("smoothing_angle=180"));
}

// What must hold of any mesh at any angle.
void check_laws(PolyMesh const& mesh, double const& angle) {
    PolyMeshSmoothed smoothed;
    smoothed.set(mesh, angle, none, nullptr);
    PolyMeshNormalMap const& map = *smoothed.get_current_normal_map();
    GeometryPointCloudData const& data = mesh.get_point_cloud()->get_data();
    for (GMathShortNormal const& normal : map.normals) {
        float const length = gmath_length(normal.decode());
        EXPECT_TRUE(length == 0.0f || std::fabs(length - 1.0f) < 1e-4f);
    }
    SmoothingTriangles const triangles(mesh.get_topology());
    CoreArray<unsigned int> neighbours;
    compute_triangles_neighbourhood(neighbours, triangles.vertices, data.point_count, nullptr);
    auto const get_normal = [&](unsigned int const& t) {
        GMathVec3<float> const* const p = data.positions.get_data();
        unsigned int const* const v = triangles.vertices.get_data() + 3 * t;
        return gmath_unit(gmath_cross(p[v[1]] - p[v[0]], p[v[2]] - p[v[0]]));
    };
    double const limit = std::cos(angle * std::numbers::pi / 180);
    unsigned int smooth_edges = 0;
    for (unsigned int e = 0; e < triangles.vertices.get_count(); ++e) {
        unsigned int const f = neighbours[e];
        if (f == none || neighbours[f] != e || triangles.vertices[e] == triangles.vertices[f] ||
            gmath_dot(get_normal(e / 3), get_normal(f / 3)) < limit + 1e-6) {
            continue;
        }
        ++smooth_edges;
        // The corners at the start of e, one on each side: of one vertex, and of one normal unless
        // it is the one of their face.
        unsigned int const a = map.polygon_indices[triangles.corner_ids[e]];
        unsigned int const b = map.polygon_indices[triangles.corner_ids[get_next_corner(f)]];
        EXPECT_TRUE(a == b || a == none || b == none) << "edge " << e << " at " << angle;
        EXPECT_TRUE(a == none || a >= data.point_count || a == triangles.vertices[e]);
    }
    EXPECT_GT(smooth_edges, 0u);
}

TEST(Smoothing, ObeysItsLawsOnRealModels) {
    char const* const models = std::getenv("QZ_POLY_MODELS");
    if (!models) {
        GTEST_SKIP() << "QZ_POLY_MODELS is not set";
    }
    for (char const* const name : {"/obj/c3d-fandisk.obj", "/obj/c3d-suzanne.obj",
                                   "/obj/c3d-teapot.obj", "/lwo/bil-lwo2-ngon2.lwo"}) {
        AppProgressBar progress("build");
        PolyMesh mesh;
        ASSERT_TRUE(
            mesh.import_from_file(CoreString(models).append(name), "", 0, nullptr, &progress));
        for (double const angle : {10.0, 30.0, 80.0}) {
            SCOPED_TRACE(name);
            check_laws(mesh, angle);
        }
    }
}

}  // namespace
