#include <poly/topology/large_polygon.h>

#include <poly/topology/blocked_corners.h>
#include <poly/topology/corner_tree.h>
#include <poly/topology/ear_walk.h>
#include <poly/topology/open_corners.h>
#include <poly/topology/polygon_projection.h>
#include <poly/topology/scratch_block.h>

#include <algorithm>

namespace {

struct Links {
    unsigned int previous;
    unsigned int next;
};

// The ring of any number of corners, as a linked list, with a tree that finds blockers and lists
// that tell whom the going of a blocker concerns.
class LargeCorners {
  public:
    static std::size_t get_scratch_size(std::size_t const& count) {
        return ScratchBlock::get_size<PlanePoint>(count) + ScratchBlock::get_size<Links>(count) +
               OpenCorners::get_scratch_size(count) + CornerTree::get_scratch_size(count) -
               CornerTree::get_returned_size(count) +
               std::max(CornerTree::get_returned_size(count),
                        ScratchBlock::get_size<BlockedCorners::Record>(count));
    }

    LargeCorners(GMathVec3<float> const* positions, unsigned int const* indices,
                 unsigned int const& count, ScratchBlock& scratch)
        : m_points(scratch.take<PlanePoint>(count)),
          m_links(scratch.take<Links>(count)),
          m_open(count, scratch) {
        PolygonFrame const frame(positions, indices, count);
        for (unsigned int i = 0; i < count; ++i) {
            m_points[i] = frame.project(positions[indices[i]]);
            m_links[i] = {i - 1, i + 1};
        }
        m_links[0].previous = count - 1;
        m_links[count - 1].next = 0;
        m_tree.build(m_points, indices, count, scratch);
        m_blocked.init(scratch.take<BlockedCorners::Record>(count), count);
    }

    bool find_open(unsigned int& at) const { return m_open.find_from(at); }
    unsigned int get_previous(unsigned int const& b) const { return m_links[b].previous; }
    unsigned int get_next(unsigned int const& b) const { return m_links[b].next; }
    PlanePoint const& get_point(unsigned int const& i) const { return m_points[i]; }

    void close_reflex(unsigned int const& b) { m_open.remove(b); }

    bool close_blocked(unsigned int const& a, unsigned int const& b, unsigned int const& c) {
        unsigned int const known = m_blocked.get_blocker(b);
        if (known != no_corner && m_tree.is_blocker(known, a, b, c)) {
            m_open.remove(b);
            return true;
        }
        unsigned int const blocker = m_tree.find_blocker(a, b, c);
        m_blocked.remove(b);
        if (blocker == CornerTree::no_slot) {
            return false;
        }
        m_blocked.add(b, blocker);
        m_open.remove(b);
        return true;
    }

    void cut(unsigned int const& a, unsigned int const& b, unsigned int const& c) {
        m_links[a].next = c;
        m_links[c].previous = a;
        m_open.remove(b);
        m_open.add(a);
        m_open.add(c);
        unsigned int const gone = m_tree.remove(b);
        if (gone != CornerTree::no_slot) {
            m_blocked.release_all(gone, [this](unsigned int const& corner) { m_open.add(corner); });
        }
    }

  private:
    PlanePoint* m_points;
    Links* m_links;
    OpenCorners m_open;  // those left that are not known to fail
    BlockedCorners m_blocked;
    CornerTree m_tree;
};

}  // namespace

unsigned int triangulate_large_polygon(GMathVec3<float> const* positions,
                                       unsigned int const* indices, unsigned int const& count,
                                       unsigned int* out) {
    unsigned int const corner_count = count;
    ScratchBlock scratch(LargeCorners::get_scratch_size(corner_count));
    if (!scratch.is_valid()) {
        return 0;
    }
    LargeCorners corners(positions, indices, corner_count, scratch);
    return clip_ears(corners, corner_count, out);
}
