#include <poly/render/area_estimate.h>
#include <poly/render/vertex_fetch.h>

#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using Box = GMathBbox3<double>;
using Matrix = GMathMatrix4x4<double>;
float const nan = std::numeric_limits<float>::quiet_NaN();

TEST(PrimitiveBounds, FollowTimeAndPassOverWhatIsNoNumber) {
    Shape shape = make_square();
    shape.velocities.assign(4, {0, 0, 2});
    shape.velocities[0].x = nan;
    PolyMesh mesh;
    shape.set(mesh);
    CtxEval const ctx;
    Box const at_rest({0, 0, 0}, {1, 1, 0});
    EXPECT_EQ(mesh.get_shading_group_bbox(0), at_rest);
    EXPECT_EQ(mesh.get_bbox_at(ctx, 1e-8), at_rest);
    EXPECT_EQ(mesh.get_bbox_at(ctx, -3), Box({0, 0, -6}, {1, 1, -6}));
    Box box;
    mesh.compute_primitive_bbox(ctx, 0, box);
    EXPECT_EQ(box, at_rest);
    mesh.compute_primitive_bbox_at(ctx, 0, -3, box);
    EXPECT_TRUE(std::isnan(box.minimum.x));  // a first corner stays, whatever it is
    EXPECT_EQ(box.maximum.y, 1.0);
    shape.velocities.assign(4, {0, nan, 0});
    shape.velocities[0] = {0, 0, 4};
    shape.set(mesh);
    mesh.compute_primitive_bbox_at(ctx, 0, 1e-9,
                                   box);  // later corners count where they are numbers
    EXPECT_EQ(box, Box({0, 0, 0}, {1, 0, double(4e-9f)}));
    shape.velocities[0].x = std::numeric_limits<float>::infinity();
    shape.set(mesh);
    EXPECT_EQ(mesh.get_bbox_at(ctx, 1e-7), Box(GMathBbox3<float>::get_inverted()));
}

// At time 0 the points are at rest.
struct WavingProvider : GeometrySampleProvider {
    Points rest;
    void fill_sample(GMathTimeSampling const&, unsigned int const& sample,
                     GMathVec3<float>* positions) override {
        for (GMathVec3<float> const& p : rest) {
            float const f = 0.37f * (static_cast<float>(sample) - 1);
            *positions++ = p + GMathVec3<float>(p.y, -p.x, p.x * p.y * f) * f;
        }
    }
};

bool is_within(Box const& box, GMathVec3<float> const& position) {
    Box grown = box;
    grown.extend(GMathVec3<double>(position));
    return grown == box;
}

// Whatever moves the corners, rays see them within the bounds of the same time.
TEST(PrimitiveBounds, HoldTheCornersThatRaysSee) {
    std::vector<double> const samples{-1, 0, 1.5};
    for (unsigned int seed = 0; seed < 12; ++seed) {
        SCOPED_TRACE(seed);
        Shape shape = make_soup(seed);
        bool const is_deforming = seed % 2 == 1;
        std::vector<std::vector<double>> const shutters{{0}, {-1, 1.5}, {-0.7, -0.1, 0.2, 0.9}};
        PolyMesh mesh;
        shape.set(mesh);
        if (is_deforming) {
            auto const provider = std::make_shared<WavingProvider>();
            provider->rest = shape.positions;
            GeometryPointCloud cloud(*mesh.get_point_cloud(), true);
            cloud.set_deformation(GMathTimeSampling(view(samples)), provider);
            ASSERT_TRUE(mesh.set_point_cloud(cloud, nullptr));
        }
        CtxShader const shader{CtxMotionBlur(GMathTimeSampling(view(shutters[seed / 2 % 3])))};
        CtxEval const ctx(&shader);
        for (int i = 0; i < 33; ++i) {
            double const time = (i - 16) * 0.0625;
            GeometryPositionArray positions;
            compute_position_blend(mesh.get_point_cloud()->get_data(), time,
                                   get_shutter_sampling(ctx), positions);
            for (unsigned int primitive = 0; primitive < mesh.get_primitive_count(); ++primitive) {
                GMathVec3<float> corners[4];
                unsigned int const count =
                    fetch_corner_positions(mesh.get_topology(), primitive, positions, corners);
                Box box;
                mesh.compute_primitive_bbox_at(ctx, primitive, time, box);
                for (unsigned int k = 0; k < count; ++k) {
                    EXPECT_TRUE(is_within(box, corners[k]));
                    // With a shutter around it, time 0 is between two samples and not at rest.
                    EXPECT_TRUE(i == 16 || is_within(mesh.get_bbox_at(ctx, time), corners[k]));
                }
            }
        }
    }
}

TEST(AreaEstimate, CountsScaleAlone) {
    PolyMesh flat, folded;
    make_square().set(flat);
    make_folded_quad().set(folded);
    CtxEval const ctx;
    double const folded_area = (1 + std::sqrt(3)) / 2;
    double const c = 0.6, s = 0.8;
    struct Case {
        char const* name;
        Matrix matrix;
        double flat_area, folded_ratio;
    };
    for (Case const& row : {
             Case{"moved", {{1, 0, 0, 9, 0, 1, 0, 9, 0, 0, 1, 9, 0, 0, 0, 1}}, 1, 1},
             {"turned", {{c, 0, s, 0, 0, 1, 0, 0, -s, 0, c, 0, 0, 0, 0, 1}}, 1, 1},
             {"mirrored", {{-2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1}}, 4, 4},
             {"sheared", {{1, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}}, 1, 1},
             {"zero", {}, 0, 0},
         }) {
        SCOPED_TRACE(row.name);
        EXPECT_NEAR(flat.estimate_area(ctx, row.matrix), row.flat_area, 1e-6);
        EXPECT_NEAR(flat.estimate_primitive_area(ctx, 0, row.matrix), row.flat_area, 1e-12);
        double const estimate = folded.estimate_shading_group_area(ctx, 0, row.matrix);
        EXPECT_NEAR(estimate, folded_area * row.folded_ratio, 1e-5);
    }
    Matrix const uneven{{2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 5, 0, 0, 0, 0, 1}};
    EXPECT_NEAR(folded.estimate_primitive_area(ctx, 0, uneven), 3 + std::sqrt(361) / 2, 1e-12);
}

TEST(DecomposeMatrix, RecomposesToTheMatrix) {
    for (unsigned int seed = 0; seed < 200; ++seed) {
        std::mt19937 generator(seed);
        Matrix m = Matrix::get_identity();
        for (unsigned int i = 0; i < 12; ++i) {
            m.entries[i] = std::uniform_real_distribution<double>(-9, 9)(generator);
        }
        MatrixDecomposition const d = decompose_matrix(m);
        GMathVec3<double> const columns[4] = {
            d.axis_x * d.scale.x, (d.axis_x * d.shear.x + d.axis_y) * d.scale.y,
            ((d.axis_x * d.shear.y + d.axis_y * d.shear.z) + d.axis_z) * d.scale.z, d.translation};
        for (unsigned int i = 0; i < 12; ++i) {
            EXPECT_NEAR(columns[i % 4][i / 4], m.entries[i], 1e-9) << seed;
        }
        EXPECT_NEAR(gmath_dot(d.axis_x, gmath_cross(d.axis_y, d.axis_z)), 1, 1e-12) << seed;
    }
    EXPECT_EQ(decompose_matrix({{3, 0, 3, 0, 4, 0, 4}}).scale, GMathVec3<double>(5, 0, 0));
    EXPECT_EQ(decompose_matrix({{double(nan)}}).scale, GMathVec3<double>(0, 0, 0));
}

}  // namespace
