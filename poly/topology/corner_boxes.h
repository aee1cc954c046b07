#pragma once

#include <poly/topology/ear_triangle.h>

#include <algorithm>
#include <cmath>
#include <limits>

// A corner that is not finite blocks no ear. A NaN fails all tests. At an infinite x, a side whose
// dy is not negative has the test value `something - infinity`, or NaN, and fails; no ear has three
// sides of negative dy. The same holds for y and positive dx.
inline bool is_finite(PlanePoint const& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

// The bounding boxes of eight sets of finite points.
struct CornerBoxes {
    float min_x[lane_group_size];
    float max_x[lane_group_size];
    float min_y[lane_group_size];
    float max_y[lane_group_size];

    // An empty box passes neither test below.
    void clear(unsigned int const& k) {
        min_x[k] = std::numeric_limits<float>::infinity();
        max_x[k] = -std::numeric_limits<float>::infinity();
        min_y[k] = std::numeric_limits<float>::infinity();
        max_y[k] = -std::numeric_limits<float>::infinity();
    }

    void include(unsigned int const& k, PlanePoint const& p) {
        min_x[k] = std::min(min_x[k], p.x);
        max_x[k] = std::max(max_x[k], p.x);
        min_y[k] = std::min(min_y[k], p.y);
        max_y[k] = std::max(max_y[k], p.y);
    }

    // Takes in box `j` of `other`, which may be empty.
    void include(unsigned int const& k, CornerBoxes const& other, unsigned int const& j) {
        min_x[k] = std::min(min_x[k], other.min_x[j]);
        max_x[k] = std::max(max_x[k], other.max_x[j]);
        min_y[k] = std::min(min_y[k], other.min_y[j]);
        max_y[k] = std::max(max_y[k], other.max_y[j]);
    }
};

// One side of an ear, asked of boxes: may a point of the box be inside?
//
// Exact, without a margin and for any floats: subtraction, multiplication by a constant and
// comparison are monotone, rounding and overflow included, so the test taken at the box's corner
// that favours it most holds if it holds anywhere in the box. If it is NaN there, it holds nowhere:
// - infinity - infinity: a first product of -infinity, or a second of infinity, fails all points,
//   and these products are at their best;
// - 0 * infinity, dx or dy being the infinity: at the other points of the box the product is the
//   infinity that fails, at those of the same coordinate NaN;
// - infinity * 0, the difference having overflowed or holding an infinite coordinate: all points
//   fail if the side begins at infinity. Otherwise others may have a product of 0; it is replaced
//   by a 0 for all.
class BoxEdge {
  public:
    explicit BoxEdge(EarEdge const& edge)
        : m_x(edge.dy == 0.0f ? edge.x * 0.0f : edge.x),
          m_y(edge.dx == 0.0f ? edge.y * 0.0f : edge.y),
          m_dx(edge.dx),
          m_dy(edge.dy),
          m_best_x(edge.dy >= 0.0f ? &CornerBoxes::min_x : &CornerBoxes::max_x),
          m_best_y(edge.dx >= 0.0f ? &CornerBoxes::max_y : &CornerBoxes::min_y) {}

    // Of four boxes.
    auto is_entered(CornerBoxes const& boxes, unsigned int const& first) const {
        FloatLanes const x(boxes.*m_best_x + first);
        FloatLanes const y(boxes.*m_best_y + first);
        return (y - FloatLanes(m_y)) * FloatLanes(m_dx) -
                   (x - FloatLanes(m_x)) * FloatLanes(m_dy) >=
               FloatLanes(0.0f);
    }

  private:
    float m_x;
    float m_y;
    float m_dx;
    float m_dy;
    float const (CornerBoxes::*m_best_x)[lane_group_size];
    float const (CornerBoxes::*m_best_y)[lane_group_size];
};

// Finds the boxes of which a point may be inside all three sides of an ear.
class BoxTriangle {
  public:
    explicit BoxTriangle(EarTriangle const& ear) : m_ca(ear.ca), m_ab(ear.ab), m_bc(ear.bc) {}

    // Bit k: box k is one of them.
    unsigned int find_entered(CornerBoxes const& boxes) const {
        return find_four(boxes, 0) | find_four(boxes, 4) << 4;
    }

  private:
    unsigned int find_four(CornerBoxes const& boxes, unsigned int const& first) const {
        return (m_ca.is_entered(boxes, first) & m_ab.is_entered(boxes, first) &
                m_bc.is_entered(boxes, first))
            .get_bits();
    }

    BoxEdge m_ca;
    BoxEdge m_ab;
    BoxEdge m_bc;
};

// The part of the plane outside of which no point can block the ear: its box, grown by a margin
// that covers the rounding of the three tests. Unlimited where the ear is too thin for that.
//
// With e the distance of a point from the box, in units of the box's sides X and Y, one of the
// point's barycentric weights is at most -e / 2, so one of the tests has a true value of at most
// -e * area. The tests round by less than 8.1 * 2^-24 * X * Y * (1 + e). So the point fails where
// e / (1 + e) exceeds 16.2 * 2^-24 * X * Y / (2 * area), for which the margin below is enough as
// long as it is not above 0.12, that is, for 2 * area > 1e-5 * X * Y. The least area keeps
// underflow out of the reckoning. Overflow of products and of their difference cannot turn a value
// below zero into one above, that of the coordinates' differences could.
class EarReach {
  public:
    // No difference of coordinates up to this magnitude overflows.
    static constexpr float coordinate_limit = std::numeric_limits<float>::max() / 2;

    // Unlimited.
    EarReach() = default;
    // Of an ear among points of which no coordinate but NaN is beyond the limit.
    EarReach(PlanePoint const& a, PlanePoint const& b, PlanePoint const& c) {
        float const low_x = std::min(std::min(a.x, b.x), c.x);
        float const low_y = std::min(std::min(a.y, b.y), c.y);
        float const high_x = std::max(std::max(a.x, b.x), c.x);
        float const high_y = std::max(std::max(a.y, b.y), c.y);
        double const box_area = difference(high_x, low_x) * difference(high_y, low_y);
        double const double_area = difference(b.x, a.x) * difference(c.y, a.y) -
                                   difference(b.y, a.y) * difference(c.x, a.x);
        if (double_area > 1e-5 * box_area && double_area > 1e-30) {
            float const margin = static_cast<float>(1.2e-6 * box_area / double_area);
            m_min_x = low_x - margin * (high_x - low_x);
            m_max_x = high_x + margin * (high_x - low_x);
            m_min_y = low_y - margin * (high_y - low_y);
            m_max_y = high_y + margin * (high_y - low_y);
        }
    }

    // Bit k: box k comes within reach.
    unsigned int find_met_boxes(CornerBoxes const& boxes) const {
        return find_four(boxes, 0) | find_four(boxes, 4) << 4;
    }

  private:
    static double difference(float const& a, float const& b) {
        return static_cast<double>(a) - static_cast<double>(b);
    }

    unsigned int find_four(CornerBoxes const& boxes, unsigned int const& first) const {
        return ((FloatLanes(m_max_x) >= FloatLanes(boxes.min_x + first)) &
                (FloatLanes(boxes.max_x + first) >= FloatLanes(m_min_x)) &
                (FloatLanes(m_max_y) >= FloatLanes(boxes.min_y + first)) &
                (FloatLanes(boxes.max_y + first) >= FloatLanes(m_min_y)))
            .get_bits();
    }

    float m_min_x = std::numeric_limits<float>::lowest();
    float m_max_x = std::numeric_limits<float>::max();
    float m_min_y = std::numeric_limits<float>::lowest();
    float m_max_y = std::numeric_limits<float>::max();
};
