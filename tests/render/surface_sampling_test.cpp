#include <poly/render/surface_sampling.h>

#include <tests/plain_place.h>
#include <tests/same_bits.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace {

using Vec = GMathVec3<float>;

TEST(SurfaceWeights, SplitAndRound) {
    double const tiny = 0x1p-40;  // lost when it is added to 0.5 in floats
    struct Case {
        bool is_quad;
        double s, t;
        int triangle;
        Vec weights;
        float property_w0;
    };
    for (Case const& c : {
             Case{false, 0.7, 0.2, 0, {0x1.99999cp-4f, 0.7f, 0.2f}, 0x1.99999cp-4f},
             {true, 0.5, 0.5, 2, {0.5f, 0.5f, 0}, 0.5f},
             {true, 0.5 + tiny, 0.5, 1, {0.5f, float(tiny), 0.5f}, 0.5f},
             {true, 0.5, 0.5 + tiny, 2, {0.5f, 0.5f, float(tiny)}, 0.5f},
             {true, 0.7, 0.1, 1, {0x1.333334p-2f, 0.6f, 0.1f}, 0x1.333332p-2f},
         }) {
        SCOPED_TRACE(testing::Message() << c.is_quad << ' ' << c.s << ' ' << c.t);
        SurfaceWeights const weights = compute_sampling_weights(c.is_quad, c.s, c.t);
        EXPECT_EQ(weights.triangle - surface_triangles, c.triangle);
        EXPECT_EQ(Vec(weights.w0, weights.w1, weights.w2), c.weights);
        EXPECT_EQ(compute_property_weights(c.is_quad, c.s, c.t).w0, c.property_w0);
    }
}

TEST(SurfaceSampling, CurvesBetweenTangentPlanes) {
    SurfacePlace place{};
    place.weights = compute_sampling_weights(false, 0.5, 0);
    place.positions[1] = GMathFloatLanes{1, 0, 0};
    place.positions[2] = GMathFloatLanes{0, 1, 0};
    struct Case {
        Vec normals[3];
        Vec position, normal;
    };
    for (Case const& c : {
             Case{{{-1, 0, 1}, {1, 0, 1}, {0, 0, 1}}, {0.5f, 0, 0.25f}, {0, 0, 1}},
             {{{0, 0, 1}, {0, 0, -1}, {0, 0, 1}}, {0.5f, 0, 0}, {0, 0, 0}},
             {{{0, 0, 0}, {1, 0, 1}, {0, 0, 1}}, {0.625f, 0, 0.125f}, {0.5f, 0, 0.5f}},
         }) {
        GeometrySample sample;
        GMathFloatLanes const normals[3] = {gmath_lanes(c.normals[0]), gmath_lanes(c.normals[1]),
                                            gmath_lanes(c.normals[2])};
        fill_surface_sample(place, normals, sample);
        EXPECT_EQ(sample.get_smooth_position(), c.position);
        EXPECT_EQ(sample.get_normal(), c.normal);
        EXPECT_EQ(sample.get_normal_ds(), c.normals[1] - c.normals[0]);
    }
}

TEST(SurfaceSampling, MovesPastThresholds) {
    Shape shape = make_triangle();
    shape.velocities.assign(3, {0, 0, 1});
    PolyMesh mesh;
    shape.set(mesh);
    struct Case {
        double time, time_step;
        float z;
        bool has_motion;
        float later[2];  // z of a surface, of a point
    };
    for (Case const& c : {
             Case{5e-9, 1e-8, 0, false, {0, 0}},
             {5e-9, 2e-8, 0, true, {2e-8f, 2.5e-8f}},  // a surface steps on from 0, a point does
                                                       // not
             {2e-8, 2e-8, 2e-8f, true, {4e-8f, 4e-8f}},
             {-0.5, 0.25, -0.5f, true, {-0.25f, -0.25f}},
         }) {
        SCOPED_TRACE(testing::Message() << c.time << ' ' << c.time_step);
        for (unsigned int const primitive : {0u, 1u}) {  // past the last, the point is sampled
            GeometrySample sample;
            mesh.compute_fragment_sample(CtxEval(), {0, primitive, 0, 0, c.time, c.time_step},
                                         sample);
            EXPECT_EQ(sample.get_kind() == GeometrySample::KIND_POINT, primitive == 1);
            EXPECT_EQ(sample.get_position(), Vec(0, 0, c.z));
            EXPECT_EQ(sample.get_shading_normal(), Vec(0, 0, 1));
            EXPECT_EQ(sample.has_motion(), c.has_motion);
            EXPECT_EQ(sample.get_geometric_position_dt().z, c.later[primitive]);
        }
    }
    GeometrySample sample;
    sample.init_point({1, 2, 3});
    mesh.compute_fragment_sample(CtxEval(), {3, 1, 0, 0, 0, 0}, sample);
    EXPECT_EQ(sample.get_kind(), GeometrySample::KIND_NONE);
}

void check_sample(PolyMesh const& mesh, GeometryFragment const& fragment, PlainPlace const& place) {
    PolyMeshTopology const& topology = mesh.get_topology();
    GeometryPointCloudData const& data = mesh.get_point_cloud()->get_data();
    Vec x[3], n[3], dropped[3];
    for (unsigned int k = 0; k < 3; ++k) {
        x[k] = data.positions[topology.polygon_vertex_indices[place.ids[k]]];
        n[k] = data.normals[topology.polygon_vertex_indices[place.ids[k]]].decode();
    }
    auto const [position, ds, dt] = place.interpolate(x);
    auto const [normal, normal_ds, normal_dt] = place.interpolate(n);
    for (unsigned int k = 0; k < 3; ++k) {
        float const square = gmath_dot(n[k], n[k]);
        dropped[k] = square == 0.0f ? position
                                    : position + n[k] * (gmath_dot(n[k], x[k] - position) / square);
    }
    GeometrySample sample;
    mesh.compute_fragment_sample(CtxEval(), fragment, sample);
    EXPECT_TRUE(have_same_bits(sample.get_position(), position));
    EXPECT_TRUE(have_same_bits(sample.get_position_ds(), ds));
    EXPECT_TRUE(have_same_bits(sample.get_position_dt(), dt));
    EXPECT_TRUE(have_same_bits(sample.get_smooth_position(), place.interpolate(dropped)[0]));
    EXPECT_TRUE(have_same_bits(sample.get_normal(), normal));
    EXPECT_TRUE(have_same_bits(sample.get_normal_ds(), normal_ds));
    EXPECT_TRUE(have_same_bits(sample.get_normal_dt(), normal_dt));
}

void check_maps(PolyMesh const& mesh, GeometryFragment const& fragment, PlainPlace const& place) {
    PolyMeshUvMap const& uv_map = mesh.get_topology().uv_maps[0];
    PolyMeshColorMap const& color_map = mesh.get_topology().color_maps[0];
    Vec uvs[3];
    float channels[4][3] = {};
    for (unsigned int k = 0; k < 3; ++k) {
        uvs[k] = uv_map.values.get((*uv_map.polygon_indices)[place.ids[k]]);
        unsigned int const value = (*color_map.polygon_indices)[place.ids[k]];
        if (value < color_map.values.get_count()) {
            GMathVec4<unsigned char> const& color = color_map.values[value];
            unsigned char const bytes[4] = {color.x, color.y, color.z, color.w};
            for (unsigned int c = 0; c < 4; ++c) {
                channels[c][k] = float(bytes[c]) * 0.003921569f;
            }
        }
    }
    std::array<GMathVec3<double>, 3> uvw;
    mesh.compute_fragment_uvw(CtxEval(), fragment, 0, uvw[0], uvw[1], uvw[2]);
    std::array<Vec, 3> const expected = place.interpolate(uvs);
    for (unsigned int k = 0; k < 3; ++k) {
        EXPECT_TRUE(have_same_bits(uvw[k], GMathVec3<double>(expected[k])));
    }
    GMathVec4<float> color;
    mesh.compute_fragment_color(CtxEval(), fragment, 0, color);
    auto const get_channel = [&](unsigned int c) { return place.interpolate(channels[c])[0]; };
    EXPECT_TRUE(have_same_bits(
        color, GMathVec4<float>(get_channel(0), get_channel(1), get_channel(2), get_channel(3))));

    // Edge numbers go round; the start is weighted in floats, the end in doubles.
    unsigned int ids[4];
    unsigned int const n =
        get_primitive_corner_ids(mesh.get_topology(), fragment.primitive_index, ids);
    for (unsigned int edge = 0; edge < n; ++edge) {
        Vec const from = uv_map.values.get((*uv_map.polygon_indices)[ids[edge]]);
        Vec const to = uv_map.values.get((*uv_map.polygon_indices)[ids[(edge + 1) % n]]);
        mesh.compute_edge_uvw(CtxEval(), fragment.primitive_index, edge + n, 0, 0.1, uvw[0]);
        GMathVec3<double> const at_a_tenth =
            GMathVec3<double>(from * 0.9f) + GMathVec3<double>(to) * 0.1;
        EXPECT_TRUE(have_same_bits(uvw[0], at_a_tenth));
    }
}

TEST(SurfaceSampling, GivesWhatTheDefinitionSays) {
    unsigned int uniform_count = 0;
    for (unsigned int seed = 0; seed < 12; ++seed) {
        SCOPED_TRACE(seed);
        PolyMesh mesh;
        make_even_soup(seed).set(mesh);
        uniform_count += mesh.get_topology().uniform_corner_count != 0;
        std::mt19937 random(seed);
        for (unsigned int i = 0; i < 300; ++i) {
            auto const get_number = [&] {
                return i % 5 == 0 ? double(random() % 5) / 4.0 : double(random()) * 0x1p-32;
            };
            GeometryFragment fragment{.s = get_number(), .t = get_number()};
            fragment.primitive_index =
                static_cast<unsigned int>(random() % mesh.get_primitive_count());
            PlainPlace const place(mesh.get_topology(), fragment.primitive_index, fragment.s,
                                   fragment.t);
            check_sample(mesh, fragment, place);
            check_maps(mesh, fragment, place);
        }
    }
    EXPECT_EQ(uniform_count, 6u);
}

}  // namespace
