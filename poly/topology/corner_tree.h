#pragma once

#include <poly/topology/corner_boxes.h>
#include <poly/topology/scratch_block.h>

// Finds a corner that blocks an ear among many in about the time that the few near the ear take.
//
// Corners are laid out along a curve through the plane; eight that follow one another make a leaf,
// eight leaves or nodes a node, which holds their boxes. A search leaves out boxes that the ear's
// own tests prove free of blockers (corner_boxes.h), and asks those tests of the corners in the
// rest.
class CornerTree {
  public:
    // Bytes that build takes from its scratch block.
    static std::size_t get_scratch_size(std::size_t const& count);

    // A tree of all `count` corners, corner i being `points[i]` and the vertex `indices[i]`. Every
    // point must be in reach of boxes (is_box_coordinate). All three arguments outlive the tree.
    void build(PlanePoint const* points, unsigned int const* indices, unsigned int const& count,
               ScratchBlock& scratch);

    // Takes a corner out, once.
    void remove(unsigned int const& corner);

    // One of the corners in the tree that lie in the ear (a, b, c) and are none of its three
    // vertices; no_corner if there is none.
    unsigned int find_blocker(unsigned int const& a, unsigned int const& b,
                              unsigned int const& c) const;

  private:
    struct Ear;

    void sort_corners(ScratchBlock& scratch);
    void fill_leaves();
    void fill_nodes();
    void fill_node_level(unsigned int const& level, unsigned int const& child_count);
    unsigned int find_in_leaf(Ear const& ear, unsigned int const& leaf) const;

    // Leaves for 2^32 corners need ten levels of nodes.
    static constexpr unsigned int max_level_count = 11;

    PlanePoint const* m_points = nullptr;
    unsigned int const* m_indices = nullptr;
    unsigned int m_count = 0;
    unsigned int m_leaf_count = 0;

    // By slot, the place along the curve; the last leaf is filled up.
    float* m_x = nullptr;  // NaN in free slots, which no ear contains
    float* m_y = nullptr;
    unsigned int* m_corners = nullptr;
    unsigned int* m_slots = nullptr;  // by corner

    unsigned char* m_leaf_sizes = nullptr;  // corners left in each leaf
    // The nodes of each level from m_level_begins[level] on; level 0 holds the boxes of leaves.
    CornerBoxes* m_nodes = nullptr;
    unsigned char* m_node_sizes = nullptr;  // children of each node that are not empty
    unsigned int m_level_begins[max_level_count] = {};
    unsigned int m_level_count = 0;
    unsigned int m_top_count = 0;
};
