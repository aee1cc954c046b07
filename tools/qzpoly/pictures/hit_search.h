#pragma once

#include <tools/qzpoly/terminal/messages.h>

#include <platform/qz_geometry.h>

#include <memory>
#include <vector>

// How rays meet a geometry.
struct ToolSearchSettings {
    GeometryRaytraceCtx::TestMode test_mode = GeometryRaytraceCtx::TEST_TOLERANT;
    // Shutter times, evenly spaced, at which the geometry is bounded; none: it is met at rest.
    std::vector<double> times;
};

// Finds what a ray meets. Which of several hits at one distance is told does not depend on the kind
// of search: it is the one with the lowest primitive number. Primitives whose bounds at some
// shutter time cannot be drawn (extent.h) are never met. Any number of threads may search at once.
class ToolHitSearch {
  public:
    virtual ~ToolHitSearch() = default;

    // The nearest hit within the ray's distances; false, and `hit` untouched, without one.
    virtual bool find_nearest(CtxEval const& ctx, GeometryRay const& ray,
                              GeometryHit& hit) const = 0;
    // Whether there is a hit within the ray's distances.
    virtual bool is_blocked(CtxEval const& ctx, GeometryRay const& ray) const = 0;
    // Replaces `primitives` by all that the ray may meet, and some that it passes by.
    virtual void list_candidates(GeometryRay const& ray,
                                 std::vector<unsigned int>& primitives) const = 0;
};

// Tests one primitive. `hit` is the nearest so far: replaced, with true, by one that is nearer, or
// as near and of a lower number.
bool find_nearer(GeometryObject const& geometry, ToolSearchSettings const& settings,
                 CtxEval const& ctx, unsigned int const& primitive, GeometryRay const& ray,
                 GeometryHit& hit);
// Whether the ray meets this primitive.
bool is_met(GeometryObject const& geometry, ToolSearchSettings const& settings, CtxEval const& ctx,
            unsigned int const& primitive, GeometryRay const& ray);
// Whether the primitive's bounds can be drawn at all shutter times.
bool is_searched(GeometryObject const& geometry, ToolSearchSettings const& settings,
                 CtxEval const& ctx, unsigned int const& primitive);

// Searches refer to `geometry`, which must outlive them unchanged. `ctx` has the shutter.

// Asks every primitive for every ray.
std::unique_ptr<ToolHitSearch> make_plain_search(GeometryObject const& geometry, CtxEval const& ctx,
                                                 ToolSearchSettings const& settings);
// Asks those whose boxes the ray passes through. Null after the reason has been shown.
std::unique_ptr<ToolHitSearch> make_embree_search(GeometryObject const& geometry,
                                                  CtxEval const& ctx,
                                                  ToolSearchSettings const& settings,
                                                  unsigned int const& thread_count,
                                                  ToolMessages& messages);
