#pragma once

#include <poly/topology/ear_triangle.h>

#include <algorithm>
#include <limits>

// Coordinates up to this magnitude cannot overflow in the ear tests: differences stay below 2e18,
// products below 4e36 and their differences below 8e36. Boxes may be used on no others.
constexpr float box_coordinate_limit = 1e18f;

inline bool is_box_coordinate(PlanePoint const& p) {
    // A NaN fails.
    return p.x >= -box_coordinate_limit && p.x <= box_coordinate_limit &&
           p.y >= -box_coordinate_limit && p.y <= box_coordinate_limit;
}

// The bounding boxes of eight sets of points.
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

// Bit k: a point of box k may be inside all three sides of the ear.
// Exact, without a margin: float subtraction, multiplication by a constant and comparison are
// monotone, rounding included, so the test of a side taken at the box's corner that favours it most
// holds if it holds anywhere in the box.
inline unsigned int find_entered_boxes(EarTriangle const& ear, CornerBoxes const& boxes) {
    auto const is_entered = [&boxes](EarEdge const& edge, unsigned int const& first) {
        float const* const x = edge.dy >= 0.0f ? boxes.min_x : boxes.max_x;
        float const* const y = edge.dx >= 0.0f ? boxes.max_y : boxes.min_y;
        return edge.is_inside(x + first, y + first);
    };
    auto const find_four = [&](unsigned int const& first) {
        return (is_entered(ear.ca, first) & is_entered(ear.ab, first) & is_entered(ear.bc, first))
            .get_bits();
    };
    return find_four(0) | find_four(4) << 4;
}

// The part of the plane outside of which no point can block the ear: its box, grown by a margin
// that covers the rounding of the three tests. Unlimited where the ear is too thin for that.
//
// With e the distance of a point from the box, in units of the box's sides X and Y, one of the
// point's barycentric weights is at most -e / 2, so one of the tests has a true value of at most
// -e * area. The tests round by less than 8.1 * 2^-24 * X * Y * (1 + e). So the point fails where
// e / (1 + e) exceeds 16.2 * 2^-24 * X * Y / (2 * area), for which the margin below is enough as
// long as it is not above 0.12, that is, for 2 * area > 1e-5 * X * Y. The least area keeps
// underflow out of the reckoning.
class EarReach {
  public:
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
