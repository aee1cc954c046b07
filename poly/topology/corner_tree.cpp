#include <poly/topology/corner_tree.h>

#include <algorithm>
#include <bit>
#include <cassert>
#include <limits>

namespace {

constexpr unsigned int fan_out = lane_group_size;

// A search starts at all nodes of the top level: up to this many of them need no level above.
constexpr unsigned int max_top_count = 4;

// Enough to tell all levels of nodes apart.
constexpr unsigned int level_bits = 4;

constexpr PlanePoint free_slot = {std::numeric_limits<float>::quiet_NaN(),
                                  std::numeric_limits<float>::quiet_NaN()};

constexpr std::size_t get_group_count(std::size_t const& count,
                                      unsigned int const& group_size = fan_out) {
    return (count + group_size - 1) / group_size;
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

}  // namespace

std::size_t CornerTree::get_scratch_size(std::size_t const& count) {
    std::size_t const leaf_count = get_group_count(count, leaf_size);
    std::size_t const slot_count = leaf_count * leaf_size;
    std::size_t const node_count = get_node_count(leaf_count);
    return ScratchBlock::get_size<Leaf>(leaf_count) +
           ScratchBlock::get_size<unsigned int>(slot_count) +
           ScratchBlock::get_size<unsigned int>(count) +
           ScratchBlock::get_size<unsigned char>(leaf_count) +
           ScratchBlock::get_size<CornerBoxes>(node_count) +
           ScratchBlock::get_size<unsigned char>(node_count) + get_returned_size(count);
}

void CornerTree::build(PlanePoint const* points, unsigned int const* indices,
                       unsigned int const& count, ScratchBlock& scratch) {
    m_points = points;
    m_count = count;
    std::size_t const leaf_count = get_group_count(m_count, leaf_size);
    std::size_t const node_count = get_node_count(leaf_count);
    m_leaves = scratch.take<Leaf>(leaf_count);
    m_uses = scratch.take<unsigned int>(leaf_count * leaf_size);
    m_slots = scratch.take<unsigned int>(m_count);
    m_leaf_sizes = scratch.take<unsigned char>(leaf_count);
    m_nodes = scratch.take<CornerBoxes>(node_count);
    m_node_sizes = scratch.take<unsigned char>(node_count);
    PlacedCorner* const placed = scratch.take<PlacedCorner>(2ull * m_count);
    unsigned int const placed_count = place_corners(placed);
    order_along_curve(m_points, indices, placed, placed + m_count, placed_count);
    fill_slots(placed, placed_count, indices);
    fill_nodes();
    scratch.give_back(placed, 2ull * m_count);
}

// Lists the corners that can block an ear, and returns how many there are.
unsigned int CornerTree::place_corners(PlacedCorner* placed) {
    CoordinateRange range;
    unsigned int placed_count = 0;
    for (unsigned int i = 0; i < m_count; ++i) {
        PlanePoint const& p = m_points[i];
        range.include(p);
        m_slots[i] = no_slot;
        if (is_finite(p)) {
            placed[placed_count++] = {0, i};
        }
    }
    m_is_roomy = range.is_roomy();
    return placed_count;
}

void CornerTree::fill_slots(PlacedCorner const* placed, unsigned int const& placed_count,
                            unsigned int const* indices) {
    unsigned int count = 0;
    for (unsigned int i = 0; i < placed_count; ++i) {
        unsigned int const corner = placed[i].corner;
        if (i == 0 || indices[corner] != indices[placed[i - 1].corner]) {
            set_slot_point(count, m_points[corner]);
            m_uses[count] = 0;
            ++count;
        }
        m_slots[corner] = count - 1;
        ++m_uses[count - 1];
    }
    m_slot_count = count;
    for (unsigned int slot = count; slot % leaf_size != 0; ++slot) {
        set_slot_point(slot, free_slot);
    }
    m_leaf_count = static_cast<unsigned int>(get_group_count(count, leaf_size));
    for (unsigned int leaf = 0; leaf < m_leaf_count; ++leaf) {
        m_leaf_sizes[leaf] =
            static_cast<unsigned char>(std::min(count - leaf * leaf_size, leaf_size));
    }
}

void CornerTree::fill_nodes() {
    unsigned int child_count = m_leaf_count;
    unsigned int begin = 0;
    while (child_count > max_top_count || m_level_count == 0) {
        assert(m_level_count < max_level_count);
        m_level_begins[m_level_count] = begin;
        fill_node_level(m_level_count, child_count);
        child_count = static_cast<unsigned int>(get_group_count(child_count));
        begin += child_count;
        ++m_level_count;
    }
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
            unsigned int const end = std::min(m_slot_count - child * leaf_size, leaf_size);
            for (unsigned int j = 0; j < end; ++j) {
                boxes.include(k, get_slot_point(child * leaf_size + j));
            }
        } else {
            CornerBoxes const& inner = m_nodes[m_level_begins[level - 1] + child];
            for (unsigned int j = 0; j < fan_out; ++j) {
                boxes.include(k, inner, j);
            }
        }
    }
    unsigned char* const sizes = m_node_sizes + m_level_begins[level];
    for (unsigned int node = 0; node < node_count; ++node) {
        sizes[node] = static_cast<unsigned char>(std::min(child_count - node * fan_out, fan_out));
    }
}

unsigned int CornerTree::remove(unsigned int const& corner) {
    unsigned int const slot = m_slots[corner];
    if (slot == no_slot || --m_uses[slot] != 0) {
        return no_slot;
    }
    set_slot_point(slot, free_slot);
    unsigned int child = slot / leaf_size;
    if (--m_leaf_sizes[child] != 0) {
        return slot;
    }
    for (unsigned int level = 0; level < m_level_count; ++level) {
        unsigned int const node = m_level_begins[level] + child / fan_out;
        m_nodes[node].clear(child % fan_out);
        if (--m_node_sizes[node] != 0) {
            break;
        }
        child /= fan_out;
    }
    return slot;
}

class CornerTree::Ear {
  public:
    Ear(CornerTree const& tree, unsigned int const& a, unsigned int const& b, unsigned int const& c)
        : m_triangle(tree.m_points[a], tree.m_points[b], tree.m_points[c]),
          m_reach(tree.m_points[a], tree.m_points[b], tree.m_points[c], tree.m_is_roomy),
          m_is_roomy(tree.m_is_roomy),
          m_slots{tree.m_slots[a], tree.m_slots[b], tree.m_slots[c]} {}

    unsigned int find_boxes(CornerBoxes const& boxes) const {
        unsigned int const met = m_reach.find_met_boxes(boxes);
        // A single box is entered at once: looking into it costs no more than the finer test.
        if ((met & (met - 1)) == 0) {
            return met;
        }
        return met & (m_is_roomy ? find_entered_boxes(m_triangle, boxes)
                                 : find_entered_boxes(make_ear_for_boxes(m_triangle), boxes));
    }

    // The places in a leaf, as bits, of vertices within reach that are not the ear's own.
    unsigned int find_met_places(unsigned int const& leaf, float const* x, float const* y) const {
        unsigned int own = 0;
        for (unsigned int const slot : m_slots) {
            own |= slot / leaf_size == leaf ? 1u << (slot % leaf_size) : 0u;
        }
        unsigned int met = 0;
        for (unsigned int k = 0; k < leaf_size; k += lane_group_size) {
            met |= m_reach.find_met_points(x + k, y + k) << k;
        }
        return met & ~own;
    }

    bool contains(PlanePoint const& p) const { return m_triangle.contains(p); }

  private:
    EarTriangle m_triangle;
    EarReach m_reach;
    bool m_is_roomy;
    unsigned int m_slots[3];  // of its own vertices
};

unsigned int CornerTree::find_blocker(unsigned int const& a, unsigned int const& b,
                                      unsigned int const& c) const {
    Ear const ear(*this, a, b, c);
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
            if (blocker != no_slot) {
                return blocker;
            }
        }
    }
    return no_slot;
}

unsigned int CornerTree::find_in_leaf(Ear const& ear, unsigned int const& leaf) const {
    unsigned int const first = leaf * leaf_size;
    unsigned int places = ear.find_met_places(leaf, m_leaves[leaf].x, m_leaves[leaf].y);
    for (; places != 0; places &= places - 1) {
        unsigned int const slot = first + static_cast<unsigned int>(std::countr_zero(places));
        if (ear.contains(get_slot_point(slot))) {
            return slot;
        }
    }
    return no_slot;
}

bool CornerTree::is_blocker(unsigned int const& slot, unsigned int const& a, unsigned int const& b,
                            unsigned int const& c) const {
    return slot != m_slots[a] && slot != m_slots[b] && slot != m_slots[c] &&
           EarTriangle(m_points[a], m_points[b], m_points[c]).contains(get_slot_point(slot));
}

PlanePoint CornerTree::get_slot_point(unsigned int const& slot) const {
    Leaf const& leaf = m_leaves[slot / leaf_size];
    return {leaf.x[slot % leaf_size], leaf.y[slot % leaf_size]};
}

void CornerTree::set_slot_point(unsigned int const& slot, PlanePoint const& p) {
    Leaf& leaf = m_leaves[slot / leaf_size];
    leaf.x[slot % leaf_size] = p.x;
    leaf.y[slot % leaf_size] = p.y;
}
