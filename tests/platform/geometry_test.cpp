#include <platform/qz_geometry.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

using Vec = GMathVec3<float>;
using Values = std::vector<Vec>;

constexpr double largest = 1.7976931348623157e308;
constexpr double nan_distance = std::numeric_limits<double>::quiet_NaN();

CoreBasicArray<Vec> view(Values const& values) {
    return {values.data(), static_cast<unsigned int>(values.size())};
}

// Two primitives, one in a box and one without extent.
class Boxes : public GeometryObject {
  public:
    GeometryObject* get_copy() const override { return new Boxes(*this); }
    GMathBbox3<double> get_bbox() const override { return {{-1, 0, 2}, {1, 3, 2}}; }
    CoreArray<CoreString> const& get_shading_group_names() const override { return m_names; }
    unsigned int get_primitive_count() const override { return 2; }
    unsigned int get_primitive_edge_count(unsigned int const&) const override { return 3; }
    unsigned int get_primitive_shading_group_index(unsigned int const& p) const override {
        return p;
    }
    using GeometryObject::compute_primitive_bbox;
    void compute_primitive_bbox(CtxEval const&, unsigned int const& primitive,
                                GMathBbox3<double>& bbox) const override {
        bbox = primitive == 0 ? get_bbox() : GMathBbox3<double>::get_inverted();
    }
    void compute_fragment_sample(CtxEval const&, GeometryFragment const&,
                                 GeometrySample&) const override {}
    using GeometryObject::intersect_primitive;
    void intersect_primitive(CtxEval const&, unsigned int const&,
                             GeometryRaytraceCtx&) const override {}

  private:
    CoreArray<CoreString> m_names;
};

}  // namespace

TEST(GeometryCompressedVertices, StaysWithinHalfAStepOfItsValues) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> in_box(-3.0f, 5.0f);
    Values values{{0, -3, 7}, {1, 5, 7}};  // x from 0 to 1, z without extent
    for (int i = 0; i < 1000; ++i) {
        values.push_back({in_box(random) / 8 + 0.375f, in_box(random), 7});
    }
    GeometryCompressedVertices vertices;
    vertices.copy_from(view(values), true);
    EXPECT_TRUE(vertices.is_compressed());
    EXPECT_EQ(vertices.get(0), Vec(0, -3, 7));
    EXPECT_EQ(vertices.get(1), Vec(1, 5, 7));
    for (unsigned int i = 0; i < values.size(); ++i) {
        EXPECT_NEAR(vertices.get(i).x, values[i].x, 0.501f / 65535.0f);
        EXPECT_NEAR(vertices.get(i).y, values[i].y, 0.501f * 8.0f / 65535.0f);
        EXPECT_EQ(vertices.get(i).z, 7.0f);
    }
    EXPECT_EQ(vertices.get_memory_size(), 16 + 28 + 6 * values.size() + 24);
    Vec a, b, c;
    vertices.get(1, 1002, 0xFFFFFFFF, a, b, c);
    EXPECT_EQ(a, Vec(1, 5, 7));
    EXPECT_EQ(b, Vec(0, 0, 0));
    EXPECT_EQ(c, Vec(0, 0, 0));
    vertices.copy_from(view(values), false);
    EXPECT_EQ(vertices.get(500), values[500]);
    EXPECT_EQ(vertices.get_memory_size(), 28 + 12 * values.size() + 16);
}

TEST(GeometryCompressedVertices, MovesWhatLiesOutsideOfItsBox) {
    constexpr float big = std::numeric_limits<float>::max();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    struct Row {
        GMathBbox3<float> box;
        Vec value;
        Vec expected;
    };
    GMathBbox3<float> const unit({0, 0, 0}, {1, 1, 1});
    Row const rows[] = {
        {unit, {-2, 3, 0.5f}, {0, 1, 32768 * (1.0f / 65535.0f)}},
        {unit, {std::nanf(""), infinity, -infinity}, {0, 1, 0}},
        {{{0.1f, 1, 2}, {0.1f, 0, 3}}, {5, 5, 5}, {0.1f, 0, 3}},  // inverted in y alone
        {{{-big, 0, 0}, {big, 1, 1}}, {-big, 0, 0}, {-big, 0, 0}},
    };
    for (Row const& row : rows) {
        GeometryCompressedVertices vertices;
        vertices.copy_from(view({row.value}), row.box, true);
        EXPECT_EQ(vertices.get(0), row.expected);
    }
}

TEST(GeometryRaytraceCtx, KeepsHitsByItsMode) {
    GeometryRay ray;
    ray.minimum_distance = 1.0;
    ray.maximum_distance = 8.0;
    double const distances[] = {nan_distance, 0.99, 8.0, 5.0, 5.0, 1.0, 3.0, 8.01, largest};
    struct Row {
        GeometryRaytraceCtx::KeepMode mode;
        unsigned int primitive;  // the one kept in the end: its place among the distances
        unsigned int kept_count;
    };
    Row const rows[] = {{GeometryRaytraceCtx::KEEP_NEAREST, 5, 3},
                        {GeometryRaytraceCtx::KEEP_ANY, 2, 1},
                        {GeometryRaytraceCtx::KEEP_ALL, 0xFFFFFFFF, 5}};
    for (Row const& row : rows) {
        GeometryHit hit;
        GeometryRaytraceCtx rays(&ray, &hit, 1);
        rays.keep_mode = row.mode;
        unsigned int kept_count = 0;
        for (unsigned int i = 0; i < 9; ++i) {
            kept_count += rays.push_intersection(CtxEval(), 0, i, 0, 0, 0, distances[i], 0,
                                                 GeometryMediumDescriptor(), nullptr)
                              ? 1
                              : 0;
        }
        EXPECT_EQ(kept_count, row.kept_count);
        EXPECT_EQ(hit.primitive_index, row.primitive);
        EXPECT_EQ(rays.all_hits.get_count(), row.primitive == 0xFFFFFFFF ? 5u : 0u);
    }
    EXPECT_EQ(GeometryRaytraceCtx(nullptr, nullptr, 0).get_last_active(), -1);
}

TEST(GeometrySample, OffersUnitNormalsAndMotion) {
    GeometrySample sample;
    sample.init_surface({1, 2, 3}, {2, 0, 0}, {0, 3, 0}, {1, 1, 1}, {2, 2, 2});
    EXPECT_EQ(sample.get_geometric_normal(), Vec(0, 0, 1));
    EXPECT_EQ(sample.get_shading_normal(), Vec(0, 0, 1));
    EXPECT_EQ(sample.get_motion_vector(), Vec(0, 0, 0));
    sample.set_smoothing({1, 2, 4}, {0, 0, 0}, {3, 3, 3}, {4, 4, 4});
    EXPECT_EQ(sample.get_shading_normal(), Vec(0, 0, 1));  // a zero normal shades flat
    sample.set_smoothing({1, 2, 4}, {-5, 0, 0}, {3, 3, 3}, {4, 4, 4});
    EXPECT_EQ(sample.get_shading_normal(), Vec(-1, 0, 0));
    sample.set_geometric_position_dt({2, 2, 2});
    EXPECT_EQ(sample.get_motion_vector(), Vec(1, 0, -1));
    sample.init_point({1, 1, 1});
    EXPECT_EQ(sample.get_shading_normal(), Vec(0, 0, 0));  // nothing of the surface is left
    EXPECT_FALSE(sample.has_motion());
}

TEST(GeometryFrustumPlane, HasItsBorderInside) {
    GeometryFrustumPlane const plane{{0, 0, 2}, -4};
    EXPECT_TRUE(plane.is_inside({9, 9, 2}));
    EXPECT_FALSE(plane.is_inside({0, 0, std::nextafter(2.0, 0.0)}));
    EXPECT_FALSE(plane.is_inside({0, 0, nan_distance}));
}

TEST(GeometryObject, FallsBackToWhatSuitsPlainGeometry) {
    Boxes const boxes;
    CtxEval const ctx;
    GMathLinearSpace3<double> const turned{{0, 1, 0}, {-1, 0, 0}, {0, 0, 2}};
    GMathBbox3<double> box;
    boxes.GeometryObject::compute_primitive_bbox(ctx, 0, turned, box);
    EXPECT_EQ(box, GMathBbox3<double>({-3, -1, 4}, {0, 1, 4}));
    boxes.compute_primitive_bbox_at(ctx, 0, 0.5, box);
    EXPECT_EQ(box, boxes.get_bbox());
    boxes.compute_primitive_bbox_at(ctx, 1, 0.5, turned, box);
    EXPECT_EQ(box, GMathBbox3<double>::get_inverted());
    GeometryFrustumCtx frustum;
    boxes.intersect_primitive(ctx, 0, frustum);
    EXPECT_TRUE(frustum.is_rejected);
}
