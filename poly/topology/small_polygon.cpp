#include <poly/topology/small_polygon.h>

#include <poly/topology/corner_boxes.h>
#include <poly/topology/corner_set.h>
#include <poly/topology/ear_walk.h>
#include <poly/topology/polygon_projection.h>

namespace {

// Up to this many corners, testing all of them costs no more than testing their boxes first.
constexpr unsigned int least_boxed_size = 33;

// The ring of up to 64 * word_count corners in automatic storage. The corners are tested in groups
// of eight, in the order of the polygon, each with its box: neighbours along a polygon are near
// each other.
template <unsigned int word_count>
class SmallCorners {
  public:
    SmallCorners(GMathVec3<float> const* positions, unsigned int const* indices,
                 unsigned int const& count)
        : m_indices(indices), m_count(count), m_left(Set::make_first(count)), m_open(m_left) {
        PolygonFrame const frame(positions, indices, count);
        for (unsigned int i = 0; i < count; ++i) {
            PlanePoint const p = frame.project(positions[indices[i]]);
            m_x[i] = p.x;
            m_y[i] = p.y;
            m_previous[i] = static_cast<unsigned char>(i - 1);
            m_next[i] = static_cast<unsigned char>(i + 1);
            m_waiting[i] = Set();
        }
        for (unsigned int i = count; i % lane_group_size != 0; ++i) {
            m_x[i] = 0.0f;
            m_y[i] = 0.0f;
        }
        m_previous[0] = static_cast<unsigned char>(count - 1);
        m_next[count - 1] = 0;
    }

    bool find_open(unsigned int& at) const { return m_open.find_from(at); }
    unsigned int get_previous(unsigned int const& b) const { return m_previous[b]; }
    unsigned int get_next(unsigned int const& b) const { return m_next[b]; }
    PlanePoint get_point(unsigned int const& i) const { return {m_x[i], m_y[i]}; }

    void close_reflex(unsigned int const& b) { m_open = m_open.without(Set::make_single(b)); }

    bool close_blocked(unsigned int const& a, unsigned int const& b, unsigned int const& c) {
        unsigned int const blocker = find_blocker(a, b, c);
        if (blocker == no_corner) {
            return false;
        }
        m_waiting[blocker] = m_waiting[blocker] | Set::make_single(b);
        m_open = m_open.without(Set::make_single(b));
        return true;
    }

    void cut(unsigned int const& a, unsigned int const& b, unsigned int const& c) {
        m_previous[c] = static_cast<unsigned char>(a);
        m_next[a] = static_cast<unsigned char>(c);
        m_left = m_left.without(Set::make_single(b));
        Set const opened = m_waiting[b] | Set::make_single(a) | Set::make_single(c);
        m_open = (m_open | opened) & m_left;
    }

  private:
    using Set = CornerSet<word_count>;

    unsigned int find_blocker(unsigned int const& a, unsigned int const& b, unsigned int const& c) {
        EarTriangle const ear(get_point(a), get_point(b), get_point(c));
        Set const others =
            m_left.without(Set::make_single(a) | Set::make_single(b) | Set::make_single(c));
        for (unsigned int groups = find_groups(ear); groups != 0; groups &= groups - 1) {
            unsigned int const group = static_cast<unsigned int>(std::countr_zero(groups));
            unsigned int const first = group * lane_group_size;
            unsigned int hits =
                ear.find_contained(m_x + first, m_y + first) & others.get_group(group);
            for (; hits != 0; hits &= hits - 1) {
                unsigned int const i = first + static_cast<unsigned int>(std::countr_zero(hits));
                if (m_indices[i] != m_indices[a] && m_indices[i] != m_indices[b] &&
                    m_indices[i] != m_indices[c]) {
                    return i;
                }
            }
        }
        return no_corner;
    }

    // The groups that may hold a blocker, as bits.
    unsigned int find_groups(EarTriangle const& ear) {
        if (m_count < least_boxed_size) {
            return (1u << get_group_count()) - 1u;
        }
        if (!m_has_boxes) {
            build_boxes();
        }
        BoxTriangle const box_triangle(ear);
        unsigned int groups = 0;
        for (unsigned int k = 0; k < word_count; ++k) {
            groups |= box_triangle.find_entered(m_boxes[k]) << (lane_group_size * k);
        }
        return groups;
    }

    void build_boxes() {
        m_has_boxes = true;
        for (unsigned int group = 0; group < word_count * lane_group_size; ++group) {
            m_boxes[group / lane_group_size].clear(group % lane_group_size);
        }
        for (unsigned int i = 0; i < m_count; ++i) {
            if (is_finite(get_point(i))) {
                unsigned int const group = i / lane_group_size;
                m_boxes[group / lane_group_size].include(group % lane_group_size, get_point(i));
            }
        }
    }

    unsigned int get_group_count() const {
        return (m_count + lane_group_size - 1) / lane_group_size;
    }

    static constexpr unsigned int capacity = 64 * word_count;

    float m_x[capacity];
    float m_y[capacity];
    unsigned char m_previous[capacity];
    unsigned char m_next[capacity];
    Set m_waiting[capacity];  // the corners that this one blocks; some may be open or gone by now
    CornerBoxes m_boxes[word_count];
    bool m_has_boxes = false;
    unsigned int const* m_indices;
    unsigned int m_count;
    Set m_left;
    Set m_open;
};

template <unsigned int word_count>
unsigned int triangulate(GMathVec3<float> const* positions, unsigned int const* indices,
                         unsigned int const& count, unsigned int* out) {
    SmallCorners<word_count> corners(positions, indices, count);
    return clip_ears(corners, count, out);
}

}  // namespace

unsigned int triangulate_small_polygon(GMathVec3<float> const* positions,
                                       unsigned int const* indices, unsigned int const& count,
                                       unsigned int* out) {
    unsigned int const corner_count = count;
    return corner_count <= 64 ? triangulate<1>(positions, indices, corner_count, out)
                              : triangulate<2>(positions, indices, corner_count, out);
}
