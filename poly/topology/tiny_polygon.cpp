#include <poly/topology/tiny_polygon.h>

#include <poly/topology/ear_walk.h>
#include <poly/topology/polygon_projection.h>

#include <bit>

namespace {

// The ring of up to 31 corners as bits of words, which fit into registers. With so few corners it
// costs less to open all blocked ones after a cut than to remember what blocks them.
class TinyCorners {
  public:
    TinyCorners(GMathVec3<float> const* positions, unsigned int const* indices,
                unsigned int const& count)
        : m_indices(indices), m_left((1u << count) - 1u) {
        PolygonFrame const frame(positions, indices, count);
        for (unsigned int i = 0; i < count; ++i) {
            m_points[i] = frame.project(positions[indices[i]]);
        }
    }

    bool find_open(unsigned int& at) const {
        unsigned int const open = m_left & ~(m_reflex | m_blocked);
        if (open == 0) {
            return false;
        }
        at = find_from(open, at);
        return true;
    }

    unsigned int get_previous(unsigned int const& b) const {
        unsigned int const before = m_left & ((1u << b) - 1u);
        return 31u - static_cast<unsigned int>(std::countl_zero(before != 0 ? before : m_left));
    }
    unsigned int get_next(unsigned int const& b) const { return find_from(m_left, b + 1); }
    PlanePoint const& get_point(unsigned int const& i) const { return m_points[i]; }

    void close_reflex(unsigned int const& b) { m_reflex |= 1u << b; }

    bool close_blocked(unsigned int const& a, unsigned int const& b, unsigned int const& c) {
        if (!is_blocked(a, b, c)) {
            return false;
        }
        m_blocked |= 1u << b;
        return true;
    }

    void cut(unsigned int const& a, unsigned int const& b, unsigned int const& c) {
        m_left &= ~(1u << b);
        m_blocked = 0;
        m_reflex &= ~(1u << a | 1u << c);
    }

  private:
    // The first member at or after `i`, going round. `set` is not empty, `i` is at most 31.
    static unsigned int find_from(unsigned int const& set, unsigned int const& i) {
        unsigned int const after = set & (0xFFFFFFFFu << i);
        return static_cast<unsigned int>(std::countr_zero(after != 0 ? after : set));
    }

    bool is_blocked(unsigned int const& a, unsigned int const& b, unsigned int const& c) const {
        unsigned int others = m_left & ~(1u << a | 1u << b | 1u << c);
        EarTriangle const ear(m_points[a], m_points[b], m_points[c]);
        for (; others != 0; others &= others - 1) {
            unsigned int const i = static_cast<unsigned int>(std::countr_zero(others));
            if (ear.contains(m_points[i]) && m_indices[i] != m_indices[a] &&
                m_indices[i] != m_indices[b] && m_indices[i] != m_indices[c]) {
                return true;
            }
        }
        return false;
    }

    PlanePoint m_points[tiny_polygon_size];
    unsigned int const* m_indices;
    unsigned int m_left;
    unsigned int m_reflex = 0;
    unsigned int m_blocked = 0;
};

}  // namespace

unsigned int triangulate_tiny_polygon(GMathVec3<float> const* positions,
                                      unsigned int const* indices, unsigned int const& count,
                                      unsigned int* out) {
    unsigned int const corner_count = count;
    TinyCorners corners(positions, indices, corner_count);
    return clip_ears(corners, corner_count, out);
}
