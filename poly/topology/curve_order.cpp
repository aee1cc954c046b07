#include <poly/topology/curve_order.h>

#include <algorithm>
#include <utility>

namespace {

// Cells of the curve along the longer side of all corners' box.
constexpr double last_cell = 65535.0;

constexpr unsigned int key_digit_count = 4;
constexpr unsigned int key_digit_bits = 8;
constexpr unsigned int key_digit_range = 1u << key_digit_bits;

// Fewer corners than this are sorted by comparisons.
constexpr unsigned int least_digit_sorted_count = 512;

// A cell with more corners than this is divided further.
constexpr unsigned int max_cell_count = lane_group_size;

// Moves the 16 low bits of `v` apart, with a zero between each two.
std::uint32_t spread_bits(std::uint32_t const& v) {
    std::uint32_t bits = (v | v << 8) & 0x00FF00FFu;
    bits = (bits | bits << 4) & 0x0F0F0F0Fu;
    bits = (bits | bits << 2) & 0x33333333u;
    return (bits | bits << 1) & 0x55555555u;
}

// Numbers the cells of a square grid over some corners along a Z-shaped curve. In double, in which
// no difference or quotient of floats overflows.
class CurveGrid {
  public:
    CurveGrid(PlanePoint const* points, PlacedCorner const* corners, unsigned int const& count) {
        PlanePoint low = points[corners[0].corner];
        PlanePoint high = low;
        for (unsigned int i = 1; i < count; ++i) {
            PlanePoint const& p = points[corners[i].corner];
            low = {std::min(low.x, p.x), std::min(low.y, p.y)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y)};
        }
        m_low_x = static_cast<double>(low.x);
        m_low_y = static_cast<double>(low.y);
        m_extent =
            std::max(static_cast<double>(high.x) - m_low_x, static_cast<double>(high.y) - m_low_y);
        m_scale = last_cell / m_extent;
    }

    // Otherwise there are at least two cells with corners in them.
    bool is_point() const { return m_extent == 0.0; }

    std::uint32_t get_key(PlanePoint const& p) const {
        return spread_bits(get_cell(static_cast<double>(p.x) - m_low_x)) |
               spread_bits(get_cell(static_cast<double>(p.y) - m_low_y)) << 1;
    }

  private:
    std::uint32_t get_cell(double const& offset) const {
        return static_cast<std::uint32_t>(std::min(offset * m_scale, last_cell));
    }

    double m_low_x;
    double m_low_y;
    double m_extent;
    double m_scale;
};

unsigned int get_digit(std::uint32_t const& key, unsigned int const& digit) {
    return key >> (key_digit_bits * digit) & (key_digit_range - 1);
}

// An even number of passes, so that the result is where the input was.
void sort_by_digits(PlacedCorner* corners, PlacedCorner* spare, unsigned int const& count) {
    static_assert(key_digit_count % 2 == 0);
    unsigned int begins[key_digit_count][key_digit_range] = {};
    for (unsigned int i = 0; i < count; ++i) {
        for (unsigned int digit = 0; digit < key_digit_count; ++digit) {
            ++begins[digit][get_digit(corners[i].key, digit)];
        }
    }
    for (unsigned int digit = 0; digit < key_digit_count; ++digit) {
        unsigned int sum = 0;
        for (unsigned int& begin : begins[digit]) {
            sum += std::exchange(begin, sum);
        }
        for (unsigned int i = 0; i < count; ++i) {
            spare[begins[digit][get_digit(corners[i].key, digit)]++] = corners[i];
        }
        std::swap(corners, spare);
    }
}

void sort_by_key(PlacedCorner* corners, PlacedCorner* spare, unsigned int const& count) {
    if (count >= least_digit_sorted_count) {
        sort_by_digits(corners, spare, count);
        return;
    }
    std::sort(corners, corners + count, [](PlacedCorner const& a, PlacedCorner const& b) {
        return a.key != b.key ? a.key < b.key : a.corner < b.corner;
    });
}

void sort_by_vertex(unsigned int const* indices, PlacedCorner* corners, unsigned int const& count) {
    std::sort(corners, corners + count, [indices](PlacedCorner const& a, PlacedCorner const& b) {
        return indices[a.corner] < indices[b.corner];
    });
}

}  // namespace

void order_along_curve(PlanePoint const* points, unsigned int const* indices, PlacedCorner* corners,
                       PlacedCorner* spare, unsigned int const& count) {
    unsigned int const corner_count = count;
    if (corner_count == 0) {
        return;
    }
    CurveGrid const grid(points, corners, corner_count);
    if (grid.is_point()) {
        sort_by_vertex(indices, corners, corner_count);
        return;
    }
    for (unsigned int i = 0; i < corner_count; ++i) {
        corners[i].key = grid.get_key(points[corners[i].corner]);
    }
    sort_by_key(corners, spare, corner_count);
    unsigned int end = 0;
    for (unsigned int begin = 0; begin < corner_count; begin = end) {
        end = begin + 1;
        while (end < corner_count && corners[end].key == corners[begin].key) {
            ++end;
        }
        // A cell is 65535 times smaller than the grid: floats allow 18 such steps.
        if (end - begin > max_cell_count) {
            order_along_curve(points, indices, corners + begin, spare, end - begin);
        } else if (end - begin > 1) {
            sort_by_vertex(indices, corners + begin, end - begin);
        }
    }
}
