#pragma once

#include <platform/qz_gmath.h>

// The two ray-triangle tests, in floats. Both meet a triangle from either side, and report whatever
// distance comes out: the ray's range is the caller's matter. Deliberate: NaN coordinates pass,
// since every comparison rejects; their distance is NaN, which lies in no range.

// A hit: the weights `u` of corner 1 and `v` of corner 2, and the distance in units of the ray
// direction's length.
struct TriangleHit {
    float u;
    float v;
    float distance;
};

// Four rays side by side, and what they meet: hits as above, for the lanes whose bits are set. All
// steps of a test are taken for all four, in the same order and rounded alike, so that the hits are
// the very ones that the rays have one by one; what a test would not have got to is masked out.
struct RayLanes {
    GMathVec3<GMathFloatLanes> origin;
    GMathVec3<GMathFloatLanes> direction;
};

struct TriangleHitLanes {
    GMathFloatLanes u;
    GMathFloatLanes v;
    GMathFloatLanes distance;
    unsigned int bits;

    TriangleHit get(unsigned int const& lane) const { return {u[lane], v[lane], distance[lane]}; }
};

// Widens the triangle by a float's epsilon in the weights: a ray near a shared edge may meet both
// neighbours, and weights may lie that far outside [0, 1]. Rounding may take more than that:
// a ray may slip between neighbours. What depends on the triangle alone is computed once.
//
// T. Moeller, B. Trumbore, "Fast, minimum storage ray-triangle intersection", Journal of Graphics
// Tools 2(1), 1997.
class TolerantTriangle {
  public:
    TolerantTriangle(GMathVec3<float> const& p0, GMathVec3<float> const& p1,
                     GMathVec3<float> const& p2)
        : m_p0(p0), m_e1(p1 - p0), m_e2(p2 - p0) {}

    // False without a hit; `hit` is then untouched. Only a determinant of exactly zero counts as
    // parallel.
    bool intersect(GMathVec3<float> const& origin, GMathVec3<float> const& direction,
                   TriangleHit& hit) const {
        GMathVec3<float> const p = gmath_cross(direction, m_e2);
        float const determinant = gmath_dot(m_e1, p);
        if (determinant == 0.0f) {
            return false;
        }
        float const inverse = 1.0f / determinant;
        GMathVec3<float> const from_p0 = origin - m_p0;
        float const u = gmath_dot(from_p0, p) * inverse;
        if (u < lowest || u > highest) {
            return false;
        }
        GMathVec3<float> const q = gmath_cross(from_p0, m_e1);
        float const v = gmath_dot(direction, q) * inverse;
        if (v < lowest || u + v > highest) {
            return false;
        }
        hit = {u, v, gmath_dot(m_e2, q) * inverse};
        return true;
    }
    TriangleHitLanes intersect(RayLanes const& rays) const {
        GMathVec3<GMathFloatLanes> const e1 = gmath_spread(m_e1);
        GMathVec3<GMathFloatLanes> const e2 = gmath_spread(m_e2);
        GMathVec3<GMathFloatLanes> const p = gmath_cross(rays.direction, e2);
        GMathFloatLanes const determinant = gmath_dot(e1, p);
        GMathFloatLanes const inverse = 1.0f / determinant;
        GMathVec3<GMathFloatLanes> const from_p0 = rays.origin - gmath_spread(m_p0);
        GMathFloatLanes const u = gmath_dot(from_p0, p) * inverse;
        GMathVec3<GMathFloatLanes> const q = gmath_cross(from_p0, e1);
        GMathFloatLanes const v = gmath_dot(rays.direction, q) * inverse;
        GMathIntLanes const is_missed =
            (determinant == 0.0f) | (u < lowest) | (u > highest) | (v < lowest) | (u + v > highest);
        return {u, v, gmath_dot(e2, q) * inverse, ~gmath_get_bits(is_missed)};
    }

  private:
    static constexpr float lowest = -GMath<float>::s_epsilon;
    static constexpr float highest = 1.0f + GMath<float>::s_epsilon;

    GMathVec3<float> m_p0;
    GMathVec3<float> m_e1;
    GMathVec3<float> m_e2;
};

// Asks on which side of each edge's line the ray passes, without any tolerance. Neighbours compute
// the same number for a shared edge, up to its sign, so that a ray through it meets at least one of
// them; a ray exactly through it meets both, each with a weight of exactly zero. Everything is
// relative to the ray's origin, so nothing can be computed ahead.
//
// Pluecker coordinates, after K. Shoemake, "Pluecker coordinate tutorial", Ray Tracing News 11(1),
// 1998.
class ExactTriangle {
  public:
    ExactTriangle(GMathVec3<float> const& p0, GMathVec3<float> const& p1,
                  GMathVec3<float> const& p2)
        : m_p0(p0), m_p1(p1), m_p2(p2) {}

    // False without a hit; `hit` is then untouched. Only a denominator of exactly zero counts as
    // parallel.
    bool intersect(GMathVec3<float> const& origin, GMathVec3<float> const& direction,
                   TriangleHit& hit) const {
        GMathVec3<float> const r0 = m_p0 - origin;
        GMathVec3<float> const r1 = m_p1 - origin;
        GMathVec3<float> const r2 = m_p2 - origin;
        GMathVec3<float> const e0 = r0 - r1;
        GMathVec3<float> const e1 = r1 - r2;
        GMathVec3<float> const e2 = r2 - r0;
        GMathVec3<float> const normal = gmath_cross(e0, e2) * 2.0f;
        float const denominator = gmath_dot(normal, direction);
        if (denominator == 0.0f) {
            return false;
        }
        float const inverse = 1.0f / denominator;
        float const u = gmath_dot(gmath_cross(r2 + r0, e2), direction) * inverse;
        float const v = gmath_dot(gmath_cross(r0 + r1, e0), direction) * inverse;
        float const w = gmath_dot(gmath_cross(r1 + r2, e1), direction) * inverse;
        if (u < 0.0f || v < 0.0f || w < 0.0f) {
            return false;
        }
        hit = {u, v, gmath_dot(normal, r0) * inverse};
        return true;
    }
    TriangleHitLanes intersect(RayLanes const& rays) const {
        GMathVec3<GMathFloatLanes> const& direction = rays.direction;
        GMathVec3<GMathFloatLanes> const r0 = gmath_spread(m_p0) - rays.origin;
        GMathVec3<GMathFloatLanes> const r1 = gmath_spread(m_p1) - rays.origin;
        GMathVec3<GMathFloatLanes> const r2 = gmath_spread(m_p2) - rays.origin;
        GMathVec3<GMathFloatLanes> const e0 = r0 - r1;
        GMathVec3<GMathFloatLanes> const e1 = r1 - r2;
        GMathVec3<GMathFloatLanes> const e2 = r2 - r0;
        GMathVec3<GMathFloatLanes> const normal = gmath_cross(e0, e2) * gmath_spread(2.0f);
        GMathFloatLanes const denominator = gmath_dot(normal, direction);
        GMathFloatLanes const inverse = 1.0f / denominator;
        GMathFloatLanes const u = gmath_dot(gmath_cross(r2 + r0, e2), direction) * inverse;
        GMathFloatLanes const v = gmath_dot(gmath_cross(r0 + r1, e0), direction) * inverse;
        GMathFloatLanes const w = gmath_dot(gmath_cross(r1 + r2, e1), direction) * inverse;
        GMathIntLanes const is_missed =
            (denominator == 0.0f) | (u < 0.0f) | (v < 0.0f) | (w < 0.0f);
        return {u, v, gmath_dot(normal, r0) * inverse, ~gmath_get_bits(is_missed)};
    }

  private:
    GMathVec3<float> m_p0;
    GMathVec3<float> m_p1;
    GMathVec3<float> m_p2;
};
