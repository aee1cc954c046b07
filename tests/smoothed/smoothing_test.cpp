#include <poly/maps/extra_normals.h>
#include <poly/smoothed/poly_mesh_smoothed.h>
#include <poly/smoothed/smoothing_triangles.h>
#include <poly/topology/neighbourhood.h>
#include <tests/log_capture.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>

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

// Triangles and quads over a grid, some turned over or left out, now and then one in the air.
Shape make_terrain(unsigned int const& seed) {
    std::mt19937 generator(seed);
    auto const random = [&] { return static_cast<unsigned int>(generator()); };
    Shape shape;
    shape.check_quads = seed % 2 == 0;
    for (unsigned int i = 0; i < 49; ++i) {
        float const height = static_cast<float>(random() % 9) * (seed % 3 == 0 ? 0.0f : 0.1f);
        unsigned int const row = i / 7;
        shape.positions.push_back({static_cast<float>(i % 7), static_cast<float>(row), height});
    }
    if (seed % 5 == 0) {
        shape.positions[24].z = std::nanf("");
        shape.positions[40] = shape.positions[41];
    }
    for (unsigned int i = 0; i < 42; ++i) {
        Numbers polygons[2] = {{i, i + 1, i + 8, i + 7}, {i, i + 8, i + 7}};
        if (bool const is_split = random() % 3 == 0; is_split) {
            polygons[0].pop_back();
        } else {
            polygons[1].clear();
        }
        for (Numbers& polygon : polygons) {
            unsigned int const kind = random() % 16;
            if (kind == 0) {
                std::reverse(polygon.begin(), polygon.end());
            }
            if (i % 7 != 6 && kind != 1 && !polygon.empty()) {
                polygon.back() = kind == 2 ? random() % 49 : polygon.back();
                shape.vertex_count.push_back(static_cast<unsigned int>(polygon.size()));
                shape.vertex_indices.insert(shape.vertex_indices.end(), polygon.begin(),
                                            polygon.end());
            }
        }
    }
    return shape;
}

// Builds the normals by their definition, one step after the other.
struct PlainSmoothing {
    enum Edge { UNDECIDED, SMOOTH, HARD };

    PolyMesh const& mesh;
    PolyMeshTopology const& t = mesh.get_topology();
    GeometryPointCloudData const& data = mesh.get_point_cloud()->get_data();
    Numbers ids = {}, hard = {}, results = {};
    std::vector<Edge> edges = {};
    std::vector<GMathVec3<float>> faces = {}, points = {};
    CoreArray<unsigned int> vertices = {}, neighbours = {};
    std::vector<GMathShortNormal> normals = {};

    void add(Numbers const& triangle, std::vector<bool> const& is_inside) {
        for (unsigned int k = 0; k < 3; ++k) {
            ids.push_back(triangle[k]);
            edges.push_back(is_inside[k] ? SMOOTH : UNDECIDED);
            vertices.append(t.polygon_vertex_indices[triangle[k]]);
            points.push_back(data.positions[vertices[vertices.get_count() - 1]]);
        }
        GMathVec3<float> const* const p = &points[points.size() - 3];
        faces.push_back(gmath_unit(gmath_cross(p[1] - p[0], p[2] - p[0])));
    }

    GMathVec3<float> get_weighted(unsigned int const& c) const {
        double const cosine = gmath_dot(gmath_unit(points[get_next_corner(c)] - points[c]),
                                        gmath_unit(points[get_previous_corner(c)] - points[c]));
        return GMathVec3<float>(GMathVec3<double>(faces[c / 3]) * (1.0 - cosine));
    }

    void build(double const& angle) {
        for (unsigned int p = 0; p < t.primitive_infos.get_count(); ++p) {
            unsigned int const info = t.primitive_infos[p], o = t.primitive_index_offsets[p];
            CoreIndexArray const& cut = t.triangle_indices;
            if ((info & 1) != 0) {
                add({o, o + 1, o + 2}, {false, false, true});
                add({o, o + 2, o + 3}, {true, false, false});
            } else if ((info & 2) != 0) {
                add({o, o + 1, o + 2}, {false, false, false});
            } else {
                add({cut[o], cut[o + 1], cut[o + 2]},
                    {(info & 4) == 0, (info & 8) == 0, (info & 16) == 0});
            }
        }
        compute_triangles_neighbourhood(neighbours, vertices, data.point_count, nullptr);
        for (unsigned int e = 0; e < edges.size(); ++e) {
            unsigned int const f = neighbours[e];
            if (f == none || neighbours[f] != e) {
                edges[e] = HARD;
                hard.push_back(e);
            } else if (edges[e] == UNDECIDED) {
                double const cosine = gmath_dot(faces[e / 3], faces[f / 3]);
                bool const is_smooth =
                    vertices[e] != vertices[f] &&
                    std::min(cosine, 1.0) > std::cos(angle * 0.01745329251993889);
                edges[e] = edges[f] = is_smooth ? SMOOTH : HARD;
                if (!is_smooth) {
                    hard.insert(hard.end(), {e, f});
                }
            }
        }
        results.assign(vertices.begin(), vertices.end());
        for (unsigned int const first : hard) {
            add_fan(first);
        }
    }

    void add_fan(unsigned int const& first) {
        if (edges[get_previous_corner(first)] == HARD) {
            results[first] = none;
            return;
        }
        Numbers fan{first};
        GMathVec3<float> sum = get_weighted(first);
        while (edges[get_previous_corner(fan.back())] != HARD) {
            fan.push_back(neighbours[get_previous_corner(fan.back())]);
            sum += get_weighted(fan.back());
        }
        GMathShortNormal const normal = GMathShortNormal::encode(gmath_unit(sum));
        bool is_needed = false;
        for (unsigned int const c : fan) {
            bool const is_flat = is_same_normal(GMathShortNormal::encode(faces[c / 3]), normal);
            results[c] = is_flat ? none : data.point_count + unsigned(normals.size());
            is_needed |= !is_flat;
        }
        if (is_needed) {
            normals.push_back(normal);
        }
    }
};

// Returns how many normals were made.
unsigned int check_plainly(PolyMesh const& mesh, double const& angle) {
    PolyMeshSmoothed smoothed;
    smoothed.set(mesh, angle, none, nullptr);
    PolyMeshNormalMap const& map = *smoothed.get_current_normal_map();
    PlainSmoothing plain{mesh};
    plain.build(angle);
    EXPECT_TRUE(std::ranges::equal(map.normals, plain.normals)) << angle;
    Numbers expected(mesh.get_polygon_index_count(), none);
    for (unsigned int c = 0; c < plain.ids.size(); ++c) {
        expected[plain.ids[c]] = plain.results[c];
    }
    for (unsigned int corner = 0; corner < expected.size(); ++corner) {
        EXPECT_EQ(map.polygon_indices[corner], expected[corner]) << corner << " at " << angle;
    }
    return map.normals.get_count();
}

TEST(Smoothing, BuildsWhatTheDefinitionSays) {
    LogCapture const quiet(1);
    unsigned int normal_count = 0;
    for (unsigned int seed = 0; seed < 120; ++seed) {
        SCOPED_TRACE(seed);
        PolyMesh mesh;
        (seed % 4 == 0 ? make_even_soup(seed) : make_terrain(seed)).set(mesh);
        for (unsigned int i = 0; i < seed % 3; ++i) {
            mesh.set_primitive_edge_visibility(i * 5 % mesh.get_primitive_count(), i, false);
        }
        for (double const angle : {0.0, 6.0, 15.0, 60.0, 120.0, 180.0}) {
            normal_count += check_plainly(mesh, angle);
        }
    }
    EXPECT_GT(normal_count, 3000u);
}

TEST(Smoothing, BuildsTheSameOnRealModels) {
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
            EXPECT_GT(check_plainly(mesh, angle), 0u);
        }
    }
}

}  // namespace
