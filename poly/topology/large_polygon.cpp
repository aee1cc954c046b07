#include <poly/topology/large_polygon.h>

#include <poly/topology/blocked_corners.h>
#include <poly/topology/corner_tree.h>
#include <poly/topology/ear_walk.h>
#include <poly/topology/polygon_projection.h>
#include <poly/topology/scratch_block.h>

#include <bit>
#include <cstdint>

namespace {

struct Links {
    unsigned int previous;
    unsigned int next;
};

constexpr std::size_t get_word_count(std::size_t const& count) { return (count + 63) / 64; }

// The ring of any number of corners, as a linked list, with a tree that finds blockers and lists
// that tell whom the going of a blocker concerns.
class LargeCorners {
  public:
    static std::size_t get_scratch_size(std::size_t const& count) {
        return ScratchBlock::get_size<PlanePoint>(count) + ScratchBlock::get_size<Links>(count) +
               ScratchBlock::get_size<BlockedCorners::Record>(count) +
               ScratchBlock::get_size<std::uint64_t>(get_word_count(count)) +
               CornerTree::get_scratch_size(count);
    }

    LargeCorners(GMathVec3<float> const* positions, unsigned int const* indices,
                 unsigned int const& count, ScratchBlock& scratch)
        : m_indices(indices),
          m_word_count(static_cast<unsigned int>(get_word_count(count))),
          m_points(scratch.take<PlanePoint>(count)),
          m_links(scratch.take<Links>(count)),
          m_open(scratch.take<std::uint64_t>(m_word_count)),
          m_blocked(scratch.take<BlockedCorners::Record>(count), count) {
        PolygonFrame const frame(positions, indices, count);
        for (unsigned int i = 0; i < count; ++i) {
            m_points[i] = frame.project(positions[indices[i]]);
            m_is_tree_used = m_is_tree_used && is_box_coordinate(m_points[i]);
            m_links[i] = {i - 1, i + 1};
        }
        m_links[0].previous = count - 1;
        m_links[count - 1].next = 0;
        for (unsigned int word = 0; word < m_word_count; ++word) {
            m_open[word] = ~0ull;
        }
        m_open[m_word_count - 1] >>= (64 - count % 64) % 64;
        if (m_is_tree_used) {
            m_tree.build(m_points, indices, count, scratch);
        }
    }

    bool find_open(unsigned int& at) const {
        unsigned int word = at / 64;
        std::uint64_t bits = m_open[word] & (~0ull << (at % 64));
        for (unsigned int k = 0; bits == 0; ++k) {
            if (k == m_word_count) {
                return false;
            }
            word = word + 1 == m_word_count ? 0 : word + 1;
            bits = m_open[word];
        }
        at = 64 * word + static_cast<unsigned int>(std::countr_zero(bits));
        return true;
    }

    unsigned int get_previous(unsigned int const& b) const { return m_links[b].previous; }
    unsigned int get_next(unsigned int const& b) const { return m_links[b].next; }
    PlanePoint const& get_point(unsigned int const& i) const { return m_points[i]; }

    void close_reflex(unsigned int const& b) { close(b); }

    bool close_blocked(unsigned int const& a, unsigned int const& b, unsigned int const& c) {
        unsigned int const known = m_blocked.get_blocker(b);
        if (known != no_corner && is_blocker(known, a, b, c)) {
            close(b);
            return true;
        }
        unsigned int const blocker =
            m_is_tree_used ? m_tree.find_blocker(a, b, c) : find_blocker_plainly(a, b, c);
        m_blocked.remove(b);
        if (blocker == no_corner) {
            return false;
        }
        m_blocked.add(b, blocker);
        close(b);
        return true;
    }

    void cut(unsigned int const& a, unsigned int const& b, unsigned int const& c) {
        m_links[a].next = c;
        m_links[c].previous = a;
        if (m_is_tree_used) {
            m_tree.remove(b);
        }
        close(b);
        open(a);
        open(c);
        m_blocked.release_all(b, [this](unsigned int const& corner) { open(corner); });
    }

  private:
    void open(unsigned int const& i) { m_open[i / 64] |= 1ull << (i % 64); }
    void close(unsigned int const& i) { m_open[i / 64] &= ~(1ull << (i % 64)); }

    bool is_blocker(unsigned int const& i, unsigned int const& a, unsigned int const& b,
                    unsigned int const& c) const {
        return m_indices[i] != m_indices[a] && m_indices[i] != m_indices[b] &&
               m_indices[i] != m_indices[c] &&
               EarTriangle(m_points[a], m_points[b], m_points[c]).contains(m_points[i]);
    }

    // For coordinates that boxes cannot hold, such as NaN.
    unsigned int find_blocker_plainly(unsigned int const& a, unsigned int const& b,
                                      unsigned int const& c) const {
        for (unsigned int i = m_links[c].next; i != a; i = m_links[i].next) {
            if (is_blocker(i, a, b, c)) {
                return i;
            }
        }
        return no_corner;
    }

    unsigned int const* m_indices;
    unsigned int m_word_count;
    PlanePoint* m_points;
    Links* m_links;
    std::uint64_t* m_open;  // bit i of the words: corner i is left and not known to fail
    BlockedCorners m_blocked;
    bool m_is_tree_used = true;
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
