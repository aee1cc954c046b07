#pragma once

#include <platform/qz_core.h>
#include <platform/qz_geometry/geometry_descriptor.h>
#include <platform/qz_gmath.h>

class CtxEval;

// One ray of a packet: distances are in units of the direction's length.
struct GeometryRay {
    GMathBasicRay ray;
    double time = 0.0;
    double minimum_distance = 0.0;
    double maximum_distance = 1.7976931348623157e308;  // the largest finite double
};

// Where a ray met a primitive; a primitive of 0xFFFFFFFF means that it met none.
struct GeometryHit {
    unsigned int ray_index = 0;
    unsigned int primitive_index = 0xFFFFFFFFu;
    double s = 0.0;
    double t = 0.0;
    double distance = 0.0;
};

// A packet of rays and what they hit. Plain data: each render thread makes its own, on the stack if
// it likes. With KEEP_NEAREST and KEEP_ANY nothing is allocated.
class GeometryRaytraceCtx {
  public:
    enum TestMode {
        TEST_TOLERANT = 0,  // edges are a little wider than they are
        TEST_EXACT = 1,     // edges have no tolerance
    };
    enum KeepMode {
        KEEP_NEAREST,  // hits[ray]: the nearest; of equal ones the first pushed
        KEEP_ANY,      // hits[ray]: the first pushed
        KEEP_ALL,      // all_hits: every one, in the order pushed
    };

    // `rays` has `ray_count` entries. So has `hits`, unless all hits are kept; its entries must be
    // as new (or hold hits that a nearer one may replace). Neither is owned.
    GeometryRaytraceCtx(GeometryRay const* rays, GeometryHit* hits, unsigned int const& ray_count)
        : m_rays(rays), m_hits(hits), m_last_active(static_cast<int>(ray_count) - 1) {}

    TestMode test_mode = TEST_TOLERANT;
    KeepMode keep_mode = KEEP_NEAREST;
    bool is_motion_blurred = false;  // false: everything is met at rest
    CoreArray<GeometryHit> all_hits;

    // The rays that are traced, first and last included; none when first > last.
    void set_active_range(int const& first, int const& last) {
        m_first_active = first;
        m_last_active = last;
    }
    int const& get_first_active() const { return m_first_active; }
    int const& get_last_active() const { return m_last_active; }
    GeometryRay const& get_ray(unsigned int const& ray) const { return m_rays[ray]; }
    GMathBasicRay const& get_basic_ray(unsigned int const& ray) const { return m_rays[ray].ray; }
    double const& get_time(unsigned int const& ray) const { return m_rays[ray].time; }

    // Offers a hit at parameters (s, t, r). True when it lies within the ray's distances, both ends
    // included, and is kept; a NaN distance never is. The reserved arguments are 0, 0xFFFFFFFF or
    // null.
    bool push_intersection(CtxEval const& /*ctx*/, unsigned int const& ray,
                           unsigned int const& primitive, double const& s, double const& t,
                           double const& /*r*/, unsigned int const& /*instance*/,
                           double const& /*reserved*/, double const& /*reserved*/,
                           double const& /*reserved*/, double const& distance,
                           double const& /*exit_distance*/, GeometryMediumDescriptor const&,
                           GeometryCustomData*) {
        return keep(ray, primitive, s, t, distance);
    }
    bool push_intersection(CtxEval const& /*ctx*/, unsigned int const& ray,
                           unsigned int const& primitive, double const& s, double const& t,
                           double const& /*r*/, double const& distance,
                           double const& /*exit_distance*/, GeometryMediumDescriptor const&,
                           GeometryCustomData*) {
        return keep(ray, primitive, s, t, distance);
    }

  private:
    bool keep(unsigned int const& ray, unsigned int const& primitive, double const& s,
              double const& t, double const& distance) {
        GeometryRay const& limits = m_rays[ray];
        if (!(distance >= limits.minimum_distance && distance <= limits.maximum_distance)) {
            return false;
        }
        if (keep_mode == KEEP_ALL) {
            all_hits.append({ray, primitive, s, t, distance});
            return true;
        }
        GeometryHit& held = m_hits[ray];
        if (held.primitive_index != 0xFFFFFFFFu &&
            (keep_mode == KEEP_ANY || !(distance < held.distance))) {
            return false;
        }
        held = {ray, primitive, s, t, distance};
        return true;
    }

    GeometryRay const* m_rays;
    GeometryHit* m_hits;
    int m_first_active = 0;
    int m_last_active;
};
