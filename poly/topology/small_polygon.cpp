#include <poly/topology/small_polygon.h>

#include <poly/topology/corner_boxes.h>
#include <poly/topology/corner_set.h>
#include <poly/topology/ear_walk.h>
#include <poly/topology/polygon_projection.h>

namespace {

// The ring of up to 8 * group_count corners in automatic storage. Blockers are sought among the few
// corners within reach of an ear, which are found eight at a time: in most polygons there are none.
template <unsigned int group_count>
class SmallCorners {
  public:
    SmallCorners(GMathVec3<float> const* positions, unsigned int const* indices,
                 unsigned int const& count)
        : m_indices(indices), m_count(count), m_left(Set::make_first(count)), m_open(m_left) {
        PolygonFrame const frame(positions, indices, count);
        CoordinateRange range;
        for (unsigned int i = 0; i < count; ++i) {
            PlanePoint const p = frame.project(positions[indices[i]]);
            range.include(p);
            m_x[i] = p.x;
            m_y[i] = p.y;
            m_previous[i] = static_cast<unsigned char>(i - 1);
            m_next[i] = static_cast<unsigned char>(i + 1);
            m_waiting[i] = Set();
        }
        for (unsigned int i = count; i < capacity; ++i) {
            m_x[i] = 0.0f;
            m_y[i] = 0.0f;
        }
        m_is_roomy = range.is_roomy();
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
    static constexpr unsigned int word_count = (group_count + 7) / 8;
    using Set = CornerSet<word_count>;

    unsigned int find_blocker(unsigned int const& a, unsigned int const& b, unsigned int const& c) {
        EarReach const reach(get_point(a), get_point(b), get_point(c), m_is_roomy);
        Set const own = Set::make_single(a) | Set::make_single(b) | Set::make_single(c);
        Set const candidates = find_met_corners(reach) & m_left.without(own);
        if (candidates.is_empty()) {
            return no_corner;
        }
        EarTriangle const ear(get_point(a), get_point(b), get_point(c));
        for (unsigned int k = 0; k < word_count; ++k) {
            for (std::uint64_t left = candidates.words[k]; left != 0; left &= left - 1) {
                unsigned int const i = 64 * k + static_cast<unsigned int>(std::countr_zero(left));
                if (ear.contains(get_point(i)) && m_indices[i] != m_indices[a] &&
                    m_indices[i] != m_indices[b] && m_indices[i] != m_indices[c]) {
                    return i;
                }
            }
        }
        return no_corner;
    }

    // The corners within reach, gone ones too.
    Set find_met_corners(EarReach const& reach) {
        if (is_boxed && !m_has_boxes) {
            build_boxes();
        }
        Set met;
        for (unsigned int k = 0; k < word_count; ++k) {
            met.words[k] = find_met_word(reach, k);
        }
        return met;
    }

    std::uint64_t find_met_word(EarReach const& reach, unsigned int const& k) const {
        std::uint64_t word = 0;
        auto const add_group = [&](unsigned int const& group) {
            unsigned int const first = 64 * k + 8 * group;
            std::uint64_t const met = reach.find_met_points(m_x + first, m_y + first);
            word |= met << (8 * group);
        };
        if constexpr (is_boxed) {
            unsigned int groups = reach.find_met_boxes(m_boxes[k]);
            for (; groups != 0; groups &= groups - 1) {
                add_group(static_cast<unsigned int>(std::countr_zero(groups)));
            }
        } else {
            for (unsigned int group = 0; group < group_count; ++group) {
                add_group(group);
            }
        }
        return word;
    }

    void build_boxes() {
        m_has_boxes = true;
        for (unsigned int i = 0; i < capacity; ++i) {
            unsigned int const group = i / lane_group_size;
            CornerBoxes& boxes = m_boxes[group / 8];
            if (i % lane_group_size == 0) {
                boxes.clear(group % 8);
            }
            if (i < m_count) {
                boxes.include(group % 8, get_point(i));
            }
        }
    }

    static constexpr unsigned int capacity = 8 * group_count;
    static constexpr bool is_boxed = group_count > 8;

    float m_x[capacity];
    float m_y[capacity];
    unsigned char m_previous[capacity];
    unsigned char m_next[capacity];
    Set m_waiting[capacity];  // the corners that this one blocks; some may be open or gone by now
    CornerBoxes m_boxes[word_count];
    bool m_has_boxes = false;
    unsigned int const* m_indices;
    unsigned int m_count;
    bool m_is_roomy;
    Set m_left;
    Set m_open;
};

template <unsigned int group_count>
unsigned int triangulate(GMathVec3<float> const* positions, unsigned int const* indices,
                         unsigned int const& count, unsigned int* out) {
    SmallCorners<group_count> corners(positions, indices, count);
    return clip_ears(corners, count, out);
}

}  // namespace

unsigned int triangulate_small_polygon(GMathVec3<float> const* positions,
                                       unsigned int const* indices, unsigned int const& count,
                                       unsigned int* out) {
    unsigned int const corner_count = count;
    if (corner_count <= 32) {
        return triangulate<4>(positions, indices, corner_count, out);
    }
    return corner_count <= 64 ? triangulate<8>(positions, indices, corner_count, out)
                              : triangulate<16>(positions, indices, corner_count, out);
}
