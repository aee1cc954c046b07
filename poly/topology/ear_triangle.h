#pragma once

#include <platform/qz_gmath.h>

// The two questions that ear clipping asks, in the one order of float operations that decides which
// triangles come out. Corners a, b, c follow one another; the ear is cut off at b.

struct PlanePoint {
    float x;
    float y;
};

// A corner number that no polygon has.
constexpr unsigned int no_corner = 0xFFFFFFFFu;

// Tests on many points or boxes take them in groups of this many.
constexpr unsigned int lane_group_size = 8;

// Below zero where a, b, c turn left. A NaN compares false with everything: such a corner is not
// turned down for its orientation.
inline float compute_ear_orientation(PlanePoint const& a, PlanePoint const& b,
                                     PlanePoint const& c) {
    return b.x * (a.y - c.y) + a.x * (c.y - b.y) + c.x * (b.y - a.y);
}

// One side of the ear, and what lies to its left or on it.
struct EarEdge {
    float x;
    float y;
    float dx;
    float dy;

    EarEdge(PlanePoint const& from, PlanePoint const& to)
        : x(from.x), y(from.y), dx(to.x - from.x), dy(to.y - from.y) {}

    bool is_inside(PlanePoint const& p) const { return (p.y - y) * dx - (p.x - x) * dy >= 0.0f; }

    // The same for four points.
    GMathIntLanes is_inside(float const* px, float const* py) const {
        return (gmath_lanes(py) - y) * dx - (gmath_lanes(px) - x) * dy >= 0.0f;
    }
};

// A point blocks the ear when it is inside all three sides. The order in which the sides are asked
// is free; ca goes first, because it alone turns down what lies beyond the cut.
struct EarTriangle {
    EarEdge ab;
    EarEdge bc;
    EarEdge ca;

    EarTriangle(PlanePoint const& a, PlanePoint const& b, PlanePoint const& c)
        : ab(a, b), bc(b, c), ca(c, a) {}

    bool contains(PlanePoint const& p) const {
        return ca.is_inside(p) && ab.is_inside(p) && bc.is_inside(p);
    }
};
