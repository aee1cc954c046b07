#pragma once

#include <poly/topology/corner_boxes.h>
#include <poly/topology/curve_order.h>
#include <poly/topology/scratch_block.h>

// Finds a vertex that blocks an ear among many in about the time that the few near the ear take.
//
// Vertices are laid out along a curve through the plane; sixteen that follow one another make a
// leaf, eight leaves or nodes a node, which holds their boxes. A search leaves out boxes that the
// ear's own tests prove free of blockers (corner_boxes.h), and asks those tests of the vertices in
// the rest. Each has one slot however many corners it has, so that at most three are in an ear and
// yet no blockers, being its own.
class CornerTree {
  public:
    // What find_blocker and remove return for none.
    static constexpr unsigned int no_slot = 0xFFFFFFFFu;

    // Bytes that build takes from its scratch block, and those of them that it gives back.
    static std::size_t get_scratch_size(std::size_t const& count);
    static std::size_t get_returned_size(std::size_t const& count) {
        return ScratchBlock::get_size<PlacedCorner>(2 * count);
    }

    // A tree of the vertices of all `count` corners, corner i being `points[i]` and the vertex
    // `indices[i]`; slots are below `count`. `points` and `scratch` outlive the tree.
    void build(PlanePoint const* points, unsigned int const* indices, unsigned int const& count,
               ScratchBlock& scratch);

    // Takes a corner out, once. Returns the slot of its vertex if this was the last corner in it.
    unsigned int remove(unsigned int const& corner);

    // The slot of one of the vertices in the tree that lie in the ear (a, b, c) and are none of its
    // own three; no_slot if there is none.
    unsigned int find_blocker(unsigned int const& a, unsigned int const& b,
                              unsigned int const& c) const;

    // Whether the vertex of `slot`, which is still in the tree, is such a one.
    bool is_blocker(unsigned int const& slot, unsigned int const& a, unsigned int const& b,
                    unsigned int const& c) const;

  private:
    class Ear;

    static constexpr unsigned int leaf_size = 2 * lane_group_size;

    // NaN in free slots, which no ear contains.
    struct Leaf {
        float x[leaf_size];
        float y[leaf_size];
    };

    unsigned int place_corners(PlacedCorner* placed);
    void fill_slots(PlacedCorner const* placed, unsigned int const& placed_count,
                    unsigned int const* indices);
    void fill_nodes();
    void fill_node_level(unsigned int const& level, unsigned int const& child_count);
    unsigned int find_in_leaf(Ear const& ear, unsigned int const& leaf) const;
    PlanePoint get_slot_point(unsigned int const& slot) const;
    void set_slot_point(unsigned int const& slot, PlanePoint const& p);

    // Leaves for 2^32 corners need this many levels of nodes, the highest of two.
    static constexpr unsigned int max_level_count = 9;

    PlanePoint const* m_points = nullptr;
    unsigned int m_count = 0;
    bool m_is_roomy = true;  // see CoordinateRange

    // A slot is a vertex' place along the curve; the last leaf is filled up.
    Leaf* m_leaves = nullptr;
    unsigned int* m_uses = nullptr;   // by slot: corners left
    unsigned int* m_slots = nullptr;  // by corner; no_slot if it is not finite
    unsigned int m_slot_count = 0;

    unsigned char* m_leaf_sizes = nullptr;  // vertices left in each leaf
    unsigned int m_leaf_count = 0;
    // The nodes of each level from m_level_begins[level] on; level 0 holds the boxes of leaves.
    CornerBoxes* m_nodes = nullptr;
    unsigned char* m_node_sizes = nullptr;  // children of each node that are not empty
    unsigned int m_level_begins[max_level_count] = {};
    unsigned int m_level_count = 0;
    unsigned int m_top_count = 0;
};
