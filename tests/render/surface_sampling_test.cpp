#include <poly/render/surface_sampling.h>

#include <tests/shapes.h>

#include <gtest/gtest.h>

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
        EXPECT_EQ(Vec(weights.w[0], weights.w[1], weights.w[2]), c.weights);
        EXPECT_EQ(compute_property_weights(c.is_quad, c.s, c.t).w[0], c.property_w0);
    }
}

TEST(SurfaceSampling, MeetsCornersAndTheFold) {
    PolyMesh mesh;
    make_folded_quad().set(mesh);
    struct Case {
        double s, t;
        Vec position, ds, dt;
    };
    for (Case const& c : {
             Case{0, 0, {0, 0, 0}, {1, 0, 0}, {0, 1, 0}},
             {1, 0, {1, 0, 1}, {1, 0, 1}, {0, 1, -1}},
             {1, 1, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}},
             {0, 1, {0, 1, 0}, {1, 0, 0}, {0, 1, 0}},
             {0.25, 0.25, {0.25f, 0.25f, 0}, {1, 0, 0}, {0, 1, 0}},
             {0.75, 0.5, {0.75f, 0.5f, 0.25f}, {1, 0, 1}, {0, 1, -1}},
         }) {
        SCOPED_TRACE(testing::Message() << c.s << ' ' << c.t);
        GeometrySample sample;
        mesh.compute_fragment_sample(CtxEval(), {.primitive_index = 0, .s = c.s, .t = c.t}, sample);
        EXPECT_EQ(sample.get_position(), c.position);
        EXPECT_EQ(sample.get_position_ds(), c.ds);
        EXPECT_EQ(sample.get_position_dt(), c.dt);
        // The diagonal stays straight, since the fold is symmetric to it.
        EXPECT_EQ(sample.get_smooth_position() == c.position, c.s != 0.75);
    }
}

TEST(SurfaceSampling, CurvesBetweenTangentPlanes) {
    SurfacePlace place{};
    place.weights = compute_sampling_weights(false, 0.5, 0);
    place.positions[1] = {1, 0, 0};
    place.positions[2] = {0, 1, 0};
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
        fill_surface_sample(place, c.normals, sample);
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

// In a row of polygons every corner has its own value, but for one without and one past the end.
TEST(MapSampling, MeetsTheValuesOfCorners) {
    Shape shape = make_row();
    GeometryUvMap& uv_map = shape.uv_maps.emplace_back();
    GeometryColorMap& color_map = shape.color_maps.emplace_back();
    for (unsigned int corner = 0; corner < 12; ++corner) {
        uv_map.values.append({float(corner + 1), 0, 0});
        uv_map.indices.append(corner == 1 ? CoreIndexArray::absent : corner);
        color_map.values.append({0, 0, 0, static_cast<unsigned char>(10 * (corner + 1))});
        color_map.indices.append(corner == 1 ? 12 : corner);
    }
    PolyMesh mesh;
    mesh.set_uv_map_compression_mode(PolyMeshTopology::COMPRESSION_NONE);
    shape.set(mesh);
    auto const get_value = [](unsigned int id) { return id == 1 ? 0.0f : float(id + 1); };

    CtxEval const ctx;
    ASSERT_EQ(mesh.get_primitive_count(), 5u);
    for (unsigned int primitive = 0; primitive < 5; ++primitive) {
        unsigned int ids[4];
        unsigned int const n = get_primitive_corner_ids(mesh.get_topology(), primitive, ids);
        for (unsigned int k = 0; k < n; ++k) {
            double const s = k == 1 || (k == 2 && n == 4);
            double const t = k >= 2;
            float const value = get_value(ids[k]), next = get_value(ids[(k + 1) % n]);
            GMathVec3<double> uvw, ds, dt;
            mesh.compute_fragment_uvw(ctx, {.primitive_index = primitive, .s = s, .t = t}, 0, uvw,
                                      ds, dt);
            EXPECT_EQ(uvw.x, value);
            GMathVec4<float> color;
            mesh.compute_fragment_color(ctx, {.primitive_index = primitive, .s = s, .t = t}, 0,
                                        color);
            EXPECT_EQ(color.w, value * 10 * 0.003921569f);
            // Edge numbers go round; the start is weighted in floats, the end in doubles.
            mesh.compute_edge_uvw(ctx, primitive, k + n, 0, 0.1, uvw);
            EXPECT_EQ(uvw.x, next * 0.1 + double(value * 0.9f));
        }
    }
}

}  // namespace
