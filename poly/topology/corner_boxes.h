#pragma once

#include <poly/topology/ear_triangle.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

// A corner that is not finite blocks no ear. A NaN fails all tests. At an infinite x, a side whose
// dy is not negative has the test value `something - infinity`, or NaN, and fails; no ear has three
// sides of negative dy. The same holds for y and positive dx.
inline bool is_finite(PlanePoint const& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

// Tells whether no coordinate of some points is so large that the tests could overflow on them: up
// to this limit differences stay up to 2e18, products up to 4e36 and their differences up to 8e36.
class CoordinateRange {
  public:
    void include(PlanePoint const& p) {
        // A NaN is passed over.
        m_largest = std::max(std::max(m_largest, std::fabs(p.x)), std::fabs(p.y));
    }
    bool is_roomy() const { return m_largest <= limit; }

  private:
    static constexpr float limit = 1e18f;

    float m_largest = 0.0f;
};

// The bounding boxes of eight sets of points. A NaN is passed over.
struct CornerBoxes {
    enum Row { MIN_X, MAX_X, MIN_Y, MAX_Y };

    float bounds[4][lane_group_size];

    // An empty box passes neither test below.
    void clear(unsigned int const& k) {
        bounds[MIN_X][k] = std::numeric_limits<float>::infinity();
        bounds[MAX_X][k] = -std::numeric_limits<float>::infinity();
        bounds[MIN_Y][k] = std::numeric_limits<float>::infinity();
        bounds[MAX_Y][k] = -std::numeric_limits<float>::infinity();
    }

    void include(unsigned int const& k, PlanePoint const& p) {
        bounds[MIN_X][k] = std::min(bounds[MIN_X][k], p.x);
        bounds[MAX_X][k] = std::max(bounds[MAX_X][k], p.x);
        bounds[MIN_Y][k] = std::min(bounds[MIN_Y][k], p.y);
        bounds[MAX_Y][k] = std::max(bounds[MAX_Y][k], p.y);
    }

    // Takes in box `j` of `other`, which may be empty.
    void include(unsigned int const& k, CornerBoxes const& other, unsigned int const& j) {
        bounds[MIN_X][k] = std::min(bounds[MIN_X][k], other.bounds[MIN_X][j]);
        bounds[MAX_X][k] = std::max(bounds[MAX_X][k], other.bounds[MAX_X][j]);
        bounds[MIN_Y][k] = std::min(bounds[MIN_Y][k], other.bounds[MIN_Y][j]);
        bounds[MAX_Y][k] = std::max(bounds[MAX_Y][k], other.bounds[MAX_Y][j]);
    }
};

// Bit k: a point of box k, of finite points, may be inside all three sides of the ear.
//
// Exact, without a margin: float subtraction, multiplication by a constant and comparison are
// monotone, rounding and overflow included, so the test of a side taken at the box's corner that
// favours it most holds if it holds anywhere in the box. If it is NaN there, it holds nowhere:
// - infinity - infinity: a first product of -infinity, or a second of infinity, fails all points,
//   and these products are at their best;
// - 0 * infinity, dx or dy being the infinity: at the other points of the box the product is the
//   infinity that fails, at those of the same coordinate NaN;
// - infinity * 0, the side beginning at infinity: all points fail.
// What is left is infinity * 0 from a difference that overflowed: see make_ear_for_boxes.
inline unsigned int find_entered_boxes(EarTriangle const& ear, CornerBoxes const& boxes) {
    auto const is_negative = [](float const& value) {
        return std::bit_cast<unsigned int>(value) >> 31;
    };
    auto const is_entered = [&](EarEdge const& edge, unsigned int const& first) {
        // Where dx or dy is zero, either bound will do.
        float const* const x = boxes.bounds[CornerBoxes::MIN_X + is_negative(edge.dy)];
        float const* const y = boxes.bounds[CornerBoxes::MAX_Y - is_negative(edge.dx)];
        return edge.is_inside(x + first, y + first);
    };
    auto const find_four = [&](unsigned int const& first) {
        return gmath_get_bits(is_entered(ear.ca, first) & is_entered(ear.ab, first) &
                              is_entered(ear.bc, first));
    };
    return find_four(0) | find_four(4) << 4;
}

// The ear whose sides the tests of boxes take where coordinates are not roomy. In a side without dx
// (or dy), the difference that it is multiplied by may overflow at one point of the box and give
// NaN, and at another give 0; to begin at 0 gives 0 at all. A side that begins at infinity or NaN
// stays, and fails all.
inline EarTriangle make_ear_for_boxes(EarTriangle const& ear) {
    EarTriangle result = ear;
    for (EarEdge* const edge : {&result.ab, &result.bc, &result.ca}) {
        edge->x *= edge->dy == 0.0f ? 0.0f : 1.0f;
        edge->y *= edge->dx == 0.0f ? 0.0f : 1.0f;
    }
    return result;
}

// The part of the plane outside of which no point can block the ear: its box, grown by a margin
// that covers the rounding of the three tests. Unlimited where the ear is too thin for that.
//
// With e the distance of a point from the box, in units of the box's sides X and Y, one of the
// point's barycentric weights is at most -e / 2, so one of the tests has a true value of at most
// -e * area. The tests round by less than 8.1 * 2^-24 * X * Y * (1 + e). So the point fails where
// e / (1 + e) exceeds 16.2 * 2^-24 * X * Y / (2 * area), for which a margin of 1.2e-6 * X * Y /
// (2 * area) is enough as long as it is not above 0.12, that is, for 2 * area > 1e-5 * X * Y; the
// area itself, rounded by less than 8.1 * 2^-24 * X * Y, is then known to a twentieth, which is
// allowed for. Most ears are fatter and do without the division. The least area keeps underflow out
// of the reckoning. A bound that is rounded lies beyond the same floats as the true one.
class EarReach {
  public:
    // Unlimited unless the points that may block the ear have a roomy range.
    EarReach(PlanePoint const& a, PlanePoint const& b, PlanePoint const& c, bool const& is_roomy) {
        float const low_x = std::min(std::min(a.x, b.x), c.x);
        float const low_y = std::min(std::min(a.y, b.y), c.y);
        float const high_x = std::max(std::max(a.x, b.x), c.x);
        float const high_y = std::max(std::max(a.y, b.y), c.y);
        float const width = high_x - low_x;
        float const height = high_y - low_y;
        float const box_area = width * height;
        float const double_area = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
        if (is_roomy && double_area > 1e-5f * box_area && double_area > 1e-30f) {
            float const margin =
                double_area > 1e-3f * box_area ? 1.2e-3f : 1.2e-6f * box_area / double_area;
            m_min_x = low_x - margin * width;
            m_max_x = high_x + margin * width;
            m_min_y = low_y - margin * height;
            m_max_y = high_y + margin * height;
        }
    }

    // Bit k: box k comes within reach.
    unsigned int find_met_boxes(CornerBoxes const& boxes) const {
        return find_four(boxes, 0) | find_four(boxes, 4) << 4;
    }

    // Bit k: the point (x[k], y[k]) is within reach.
    unsigned int find_met_points(float const* x, float const* y) const {
        return find_four_points(x, y) | find_four_points(x + 4, y + 4) << 4;
    }

  private:
    unsigned int find_four_points(float const* x, float const* y) const {
        return gmath_get_bits((gmath_lanes(x) <= m_max_x) & (gmath_lanes(x) >= m_min_x) &
                              (gmath_lanes(y) <= m_max_y) & (gmath_lanes(y) >= m_min_y));
    }

    unsigned int find_four(CornerBoxes const& boxes, unsigned int const& first) const {
        auto const load = [&](CornerBoxes::Row const& row) {
            return gmath_lanes(boxes.bounds[row] + first);
        };
        return gmath_get_bits(
            (load(CornerBoxes::MIN_X) <= m_max_x) & (load(CornerBoxes::MAX_X) >= m_min_x) &
            (load(CornerBoxes::MIN_Y) <= m_max_y) & (load(CornerBoxes::MAX_Y) >= m_min_y));
    }

    float m_min_x = std::numeric_limits<float>::lowest();
    float m_max_x = std::numeric_limits<float>::max();
    float m_min_y = std::numeric_limits<float>::lowest();
    float m_max_y = std::numeric_limits<float>::max();
};
