#pragma once

#include <platform/qz_gmath.h>
#include <poly/topology/ear_triangle.h>

#include <cmath>

// The plane of a polygon, with its first corner as the origin: axis t runs along the first edge (in
// general) and b across it, so that the polygon is counter-clockwise about its normal. All in
// double from differences of the float positions. A polygon without area, or whose first edge has
// no length, has a zero axis, which lays its corners onto a line or a point. Inline as a whole: for
// a polygon of five corners this is half of the work.
class PolygonFrame {
  public:
    // The polygon's corner i is at positions[indices[i]]; `count` is at least 2.
    PolygonFrame(GMathVec3<float> const* positions, unsigned int const* indices,
                 unsigned int const& count) {
        GMathVec3<float> const origin = positions[indices[0]];
        Vec const first = get_offset(positions[indices[1]], origin);
        Vec const normal = normalise(sum_normal(positions, indices, count, origin, first));
        Vec direction = normalise(first);
        // Deliberate: one-sided, a direction against the normal is taken.
        for (unsigned int k = 2; k < count && gmath_dot(direction, normal) > normal_cosine_limit;
             ++k) {
            direction = normalise(get_offset(positions[indices[k]], origin));
        }
        m_origin = Vec(origin);
        m_b = gmath_cross(normal, direction);
        m_inverse_b_length = compute_inverse_length(m_b);
        m_t = normalise(gmath_cross(m_b, normal));
    }

    // Widened first, then subtracted: not the difference that the normal is summed from.
    PlanePoint project(GMathVec3<float> const& position) const {
        Vec const d = Vec(position) - m_origin;
        double const v = gmath_dot(d, m_b) * m_inverse_b_length;
        return {static_cast<float>(gmath_dot(d, m_t)), static_cast<float>(v)};
    }

  private:
    using Vec = GMathVec3<double>;

    // A length not above this counts as none; NaN does too.
    static constexpr double least_length = 1e-8;

    // A direction that has more than this in common with the normal cannot be laid into the plane.
    static constexpr double normal_cosine_limit = 0.9999;

    // Subtracted in float, then widened.
    static Vec get_offset(GMathVec3<float> const& p, GMathVec3<float> const& origin) {
        return Vec(p - origin);
    }

    // 1 / |a|, or 0 for a vector without length.
    static double compute_inverse_length(Vec const& a) {
        double const length = std::sqrt(gmath_dot(a, a));
        return length > least_length ? 1.0 / length : 0.0;
    }

    // Not the product with the factor above: that would keep the NaN of a vector without length.
    static Vec normalise(Vec const& a) {
        double const length = std::sqrt(gmath_dot(a, a));
        return length > least_length ? a * (1.0 / length) : Vec(0.0, 0.0, 0.0);
    }

    // The sum of the cross products of neighbouring corners' offsets from `origin`, in order.
    static Vec sum_normal(GMathVec3<float> const* positions, unsigned int const* indices,
                          unsigned int const& count, GMathVec3<float> const& origin,
                          Vec const& first) {
        Vec previous = first;
        Vec sum(0.0, 0.0, 0.0);
        for (unsigned int k = 2; k < count; ++k) {
            Vec const current = get_offset(positions[indices[k]], origin);
            sum += gmath_cross(previous, current);
            previous = current;
        }
        return sum;
    }

    Vec m_origin;
    Vec m_t;
    Vec m_b;
    double m_inverse_b_length;
};
