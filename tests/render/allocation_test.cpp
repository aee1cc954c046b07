#include <poly/property/poly_mesh_property.h>
#include <poly/smoothed/poly_mesh_smoothed.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>

namespace {
std::atomic<unsigned int> allocation_count{0};
}  // namespace

// All memory of the program comes through here, that of libraries too, which must see it.
#pragma GCC visibility push(default)
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the system has no names
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);

void* malloc(std::size_t size) noexcept {
    ++allocation_count;
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) noexcept {
    ++allocation_count;
    return __libc_calloc(count, size);
}
void* realloc(void* block, std::size_t size) noexcept {
    ++allocation_count;
    return __libc_realloc(block, size);
}
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
#pragma GCC visibility pop

namespace {

void ask(GeometryObject const& geometry, PolyMeshProperty const& property, double const& time) {
    CtxEval const ctx;
    GMathBbox3<double> box = geometry.get_bbox_at(ctx, time);
    GMathVec3<double> uvw, ds, dt;
    GMathVec4<float> color;
    GeometrySample sample;
    double value;
    for (unsigned int p = 0; p < geometry.get_primitive_count(); ++p) {
        geometry.compute_primitive_bbox(ctx, p, box);
        geometry.compute_primitive_bbox_at(ctx, p, time, box);
        geometry.estimate_primitive_area(ctx, p, GMathMatrix4x4<double>::get_identity());
        GeometryRay rays[8];
        GeometryHit hits[8];
        for (GeometryRay& ray : rays) {
            ray.ray = GMathBasicRay({0.5, 0.25, 3}, {0, 0, -1});
            ray.time = time;
        }
        for (auto const mode :
             {GeometryRaytraceCtx::TEST_TOLERANT, GeometryRaytraceCtx::TEST_EXACT}) {
            GeometryRaytraceCtx packet(rays, hits, 8);
            packet.test_mode = mode;
            packet.is_motion_blurred = true;
            geometry.intersect_primitive(ctx, p, packet);
        }
        GeometryFrustumCtx frustum;
        geometry.intersect_primitive(ctx, p, frustum);
        GeometryFragment const fragment{0xFFFFFFFFu, p, 0.25, 0.5, time, 0.5};
        geometry.compute_fragment_sample(ctx, fragment, sample);
        geometry.compute_fragment_uvw(ctx, fragment, 0, uvw, ds, dt);
        geometry.compute_edge_uvw(ctx, p, 0, 0, 0.5, uvw);
        geometry.compute_fragment_color(ctx, fragment, 0, color);
        property.evaluate(ctx, fragment, &value, nullptr, nullptr, nullptr, 1);
    }
}

TEST(RenderQueries, AllocateNothing) {
    PolyMesh mesh;
    make_soup(2).set(mesh);  // in motion by velocities
    PolyMeshSmoothed smoothed;
    smoothed.set(mesh, 40, 0xFFFFFFFFu, nullptr);
    PolyMeshProperty property(mesh, PolyMeshProperty::TYPE_VERTEX, ResourceProperty::TYPE_FLOAT, 1,
                              mesh.get_vertex_count(), 0, "p", GMathTimeSampling(0.0), true);
    property.init(0,
                  new ResourceProperty(ResourceProperty::TYPE_FLOAT, 1, mesh.get_vertex_count()));
    unsigned int const before = allocation_count;
    EXPECT_GT(before, 0u);
    for (double const time : {0.0, 0.5}) {
        ask(mesh, property, time);
        ask(smoothed, property, time);
    }
    EXPECT_EQ(allocation_count, before);
}

}  // namespace
