#include <poly/topology/corner_tree.h>

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstdint>
#include <utility>

namespace {

constexpr unsigned int fan_out = lane_group_size;

// A search starts at all nodes of the top level: up to this many of them need no level above.
constexpr unsigned int max_top_count = 4;

// Enough to tell all levels of nodes apart.
constexpr unsigned int level_bits = 4;

constexpr float free_slot = std::numeric_limits<float>::quiet_NaN();

// Cells of the curve along the longer side of all corners' box.
constexpr float last_cell = 65535.0f;
constexpr unsigned int key_digit_count = 4;
constexpr unsigned int key_digit_bits = 8;
constexpr unsigned int key_digit_range = 1u << key_digit_bits;

struct KeyedCorner {
    std::uint32_t key;
    unsigned int corner;
};

constexpr std::size_t get_group_count(std::size_t const& count) {
    return (count + fan_out - 1) / fan_out;
}

std::size_t get_node_count(std::size_t const& leaf_count) {
    std::size_t level = get_group_count(leaf_count);
    std::size_t total = level;
    while (level > max_top_count) {
        level = get_group_count(level);
        total += level;
    }
    return total;
}

// Moves the 16 low bits of `v` apart, with a zero between each two.
std::uint32_t spread_bits(std::uint32_t const& v) {
    std::uint32_t bits = (v | v << 8) & 0x00FF00FFu;
    bits = (bits | bits << 4) & 0x0F0F0F0Fu;
    bits = (bits | bits << 2) & 0x33333333u;
    return (bits | bits << 1) & 0x55555555u;
}

// Numbers the cells of a square grid over all points along a Z-shaped curve.
class CurveGrid {
  public:
    CurveGrid(PlanePoint const* points, unsigned int const& count) : m_low(points[0]) {
        PlanePoint high = points[0];
        for (unsigned int i = 1; i < count; ++i) {
            m_low = {std::min(m_low.x, points[i].x), std::min(m_low.y, points[i].y)};
            high = {std::max(high.x, points[i].x), std::max(high.y, points[i].y)};
        }
        float const extent = std::max(high.x - m_low.x, high.y - m_low.y);
        // Below this the scale could overflow; one cell then takes all.
        m_scale = extent > 1e-30f ? last_cell / extent : 0.0f;
    }

    std::uint32_t get_key(PlanePoint const& p) const {
        return spread_bits(get_cell(p.x - m_low.x)) | spread_bits(get_cell(p.y - m_low.y)) << 1;
    }

  private:
    std::uint32_t get_cell(float const& offset) const {
        return static_cast<std::uint32_t>(std::min(offset * m_scale, last_cell));
    }

    PlanePoint m_low;
    float m_scale;
};

unsigned int get_digit(std::uint32_t const& key, unsigned int const& digit) {
    return key >> (key_digit_bits * digit) & (key_digit_range - 1);
}

// Sorts by key, keeping the order of equal keys; `spare` is room for as many. Returns the one of
// the two arrays that holds the result.
KeyedCorner* sort_by_key(KeyedCorner* keyed, KeyedCorner* spare, unsigned int const& count) {
    unsigned int begins[key_digit_count][key_digit_range] = {};
    for (unsigned int i = 0; i < count; ++i) {
        for (unsigned int digit = 0; digit < key_digit_count; ++digit) {
            ++begins[digit][get_digit(keyed[i].key, digit)];
        }
    }
    for (unsigned int digit = 0; digit < key_digit_count; ++digit) {
        unsigned int sum = 0;
        for (unsigned int& begin : begins[digit]) {
            sum += std::exchange(begin, sum);
        }
        for (unsigned int i = 0; i < count; ++i) {
            spare[begins[digit][get_digit(keyed[i].key, digit)]++] = keyed[i];
        }
        std::swap(keyed, spare);
    }
    return keyed;
}

}  // namespace

std::size_t CornerTree::get_scratch_size(std::size_t const& count) {
    std::size_t const leaf_count = get_group_count(count);
    std::size_t const slot_count = leaf_count * fan_out;
    std::size_t const node_count = get_node_count(leaf_count);
    return 2 * ScratchBlock::get_size<float>(slot_count) +
           ScratchBlock::get_size<unsigned int>(slot_count) +
           ScratchBlock::get_size<unsigned int>(count) +
           ScratchBlock::get_size<unsigned char>(leaf_count) +
           ScratchBlock::get_size<CornerBoxes>(node_count) +
           ScratchBlock::get_size<unsigned char>(node_count) +
           2 * ScratchBlock::get_size<KeyedCorner>(count);
}

void CornerTree::build(PlanePoint const* points, unsigned int const* indices,
                       unsigned int const& count, ScratchBlock& scratch) {
    m_points = points;
    m_indices = indices;
    m_count = count;
    std::size_t const leaf_count = get_group_count(count);
    std::size_t const node_count = get_node_count(leaf_count);
    m_leaf_count = static_cast<unsigned int>(leaf_count);
    m_x = scratch.take<float>(leaf_count * fan_out);
    m_y = scratch.take<float>(leaf_count * fan_out);
    m_corners = scratch.take<unsigned int>(leaf_count * fan_out);
    m_slots = scratch.take<unsigned int>(count);
    m_leaf_sizes = scratch.take<unsigned char>(leaf_count);
    m_nodes = scratch.take<CornerBoxes>(node_count);
    m_node_sizes = scratch.take<unsigned char>(node_count);
    sort_corners(scratch);
    fill_leaves();
    fill_nodes();
}

void CornerTree::sort_corners(ScratchBlock& scratch) {
    KeyedCorner* const keyed = scratch.take<KeyedCorner>(m_count);
    KeyedCorner* const spare = scratch.take<KeyedCorner>(m_count);
    CurveGrid const grid(m_points, m_count);
    for (unsigned int i = 0; i < m_count; ++i) {
        keyed[i] = {grid.get_key(m_points[i]), i};
    }
    KeyedCorner const* const sorted = sort_by_key(keyed, spare, m_count);
    for (unsigned int slot = 0; slot < m_count; ++slot) {
        m_corners[slot] = sorted[slot].corner;
        m_slots[sorted[slot].corner] = slot;
    }
}

void CornerTree::fill_leaves() {
    for (unsigned int slot = 0; slot < m_count; ++slot) {
        PlanePoint const& p = m_points[m_corners[slot]];
        m_x[slot] = p.x;
        m_y[slot] = p.y;
    }
    for (unsigned int slot = m_count; slot % fan_out != 0; ++slot) {
        m_x[slot] = free_slot;
        m_y[slot] = free_slot;
        m_corners[slot] = no_corner;
    }
    std::fill_n(m_leaf_sizes, m_leaf_count, static_cast<unsigned char>(fan_out));
    m_leaf_sizes[m_leaf_count - 1] =
        static_cast<unsigned char>(m_count - (m_leaf_count - 1) * fan_out);
}

void CornerTree::fill_nodes() {
    unsigned int child_count = m_leaf_count;
    unsigned int begin = 0;
    m_level_count = 0;
    do {
        assert(m_level_count < max_level_count);
        m_level_begins[m_level_count] = begin;
        fill_node_level(m_level_count, child_count);
        child_count = static_cast<unsigned int>(get_group_count(child_count));
        begin += child_count;
        ++m_level_count;
    } while (child_count > max_top_count);
    m_top_count = child_count;
}

void CornerTree::fill_node_level(unsigned int const& level, unsigned int const& child_count) {
    unsigned int const node_count = static_cast<unsigned int>(get_group_count(child_count));
    CornerBoxes* const nodes = m_nodes + m_level_begins[level];
    for (unsigned int child = 0; child < node_count * fan_out; ++child) {
        CornerBoxes& boxes = nodes[child / fan_out];
        unsigned int const k = child % fan_out;
        boxes.clear(k);
        if (child >= child_count) {
            continue;
        }
        if (level == 0) {
            unsigned int const end = std::min(m_count - child * fan_out, fan_out);
            for (unsigned int j = 0; j < end; ++j) {
                boxes.include(k, {m_x[child * fan_out + j], m_y[child * fan_out + j]});
            }
        } else {
            CornerBoxes const& inner = m_nodes[m_level_begins[level - 1] + child];
            for (unsigned int j = 0; j < fan_out; ++j) {
                boxes.include(k, inner, j);
            }
        }
    }
    unsigned char* const sizes = m_node_sizes + m_level_begins[level];
    std::fill_n(sizes, node_count, static_cast<unsigned char>(fan_out));
    sizes[node_count - 1] = static_cast<unsigned char>(child_count - (node_count - 1) * fan_out);
}

void CornerTree::remove(unsigned int const& corner) {
    unsigned int const slot = m_slots[corner];
    m_x[slot] = free_slot;
    unsigned int child = slot / fan_out;
    if (--m_leaf_sizes[child] != 0) {
        return;
    }
    for (unsigned int level = 0; level < m_level_count; ++level) {
        unsigned int const node = m_level_begins[level] + child / fan_out;
        m_nodes[node].clear(child % fan_out);
        if (--m_node_sizes[node] != 0) {
            return;
        }
        child /= fan_out;
    }
}

struct CornerTree::Ear {
    EarTriangle triangle;
    EarReach reach;
    unsigned int vertices[3];

    bool has_vertex(unsigned int const& vertex) const {
        return vertex == vertices[0] || vertex == vertices[1] || vertex == vertices[2];
    }

    unsigned int find_boxes(CornerBoxes const& boxes) const {
        unsigned int const met = reach.find_met_boxes(boxes);
        // A single box is entered at once: looking into it costs no more than the finer test.
        return (met & (met - 1)) == 0 ? met : met & find_entered_boxes(triangle, boxes);
    }
};

unsigned int CornerTree::find_blocker(unsigned int const& a, unsigned int const& b,
                                      unsigned int const& c) const {
    Ear const ear = {EarTriangle(m_points[a], m_points[b], m_points[c]),
                     EarReach(m_points[a], m_points[b], m_points[c]),
                     {m_indices[a], m_indices[b], m_indices[c]}};
    // Nodes to look into, each one word: its number within its level, then its level. Two words
    // written one after the other and read back at once would stall.
    unsigned int pending[max_level_count * fan_out + max_top_count];
    unsigned int pending_count = 0;
    for (unsigned int node = 0; node < m_top_count; ++node) {
        pending[pending_count++] = node << level_bits | (m_level_count - 1);
    }
    while (pending_count != 0) {
        unsigned int const entry = pending[--pending_count];
        unsigned int const level = entry & ((1u << level_bits) - 1);
        unsigned int const node = entry >> level_bits;
        unsigned int boxes = ear.find_boxes(m_nodes[m_level_begins[level] + node]);
        for (; boxes != 0; boxes &= boxes - 1) {
            unsigned int const child =
                node * fan_out + static_cast<unsigned int>(std::countr_zero(boxes));
            if (level != 0) {
                pending[pending_count++] = child << level_bits | (level - 1);
                continue;
            }
            unsigned int const blocker = find_in_leaf(ear, child);
            if (blocker != no_corner) {
                return blocker;
            }
        }
    }
    return no_corner;
}

unsigned int CornerTree::find_in_leaf(Ear const& ear, unsigned int const& leaf) const {
    unsigned int const first = leaf * fan_out;
    unsigned int hits = ear.triangle.find_contained(m_x + first, m_y + first);
    for (; hits != 0; hits &= hits - 1) {
        unsigned int const corner =
            m_corners[first + static_cast<unsigned int>(std::countr_zero(hits))];
        if (!ear.has_vertex(m_indices[corner])) {
            return corner;
        }
    }
    return no_corner;
}
