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
