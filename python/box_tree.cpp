#include <python/box_tree.h>

#include <algorithm>
#include <cmath>

namespace {

using Vec = GMathVec3<double>;
using Box = GMathBbox3<double>;

constexpr unsigned int none = 0xFFFFFFFFu;
constexpr unsigned int leaf_size = 4;

// What boxes are widened by, relative to the largest coordinate: rays are tested in floats, and may
// hit a little outside.
constexpr double box_padding = 4e-6;

bool is_finite(Box const& box) {
    Vec const sum = box.maximum - box.minimum;
    return std::isfinite(sum.x) && std::isfinite(sum.y) && std::isfinite(sum.z) && !box.is_empty();
}

// Where the ray enters, or infinity when it passes by or enters behind `limit`.
double enter(Box const& box, GMathBasicRay const& ray, double const& limit) {
    double low = 0;
    double high = limit;
    for (unsigned int axis = 0; axis < 3; ++axis) {
        double const origin = ray.get_origin()[axis];
        double const direction = ray.get_direction()[axis];
        double const a = (box.minimum[axis] - origin) / direction;
        double const b = (box.maximum[axis] - origin) / direction;
        // 0 / 0, along a side of the box, may miss it: what is inside lies well off its sides.
        low = std::max(low, std::min(a, b));
        high = std::min(high, std::max(a, b));
    }
    return low <= high ? low : INFINITY;
}

unsigned int find_longest_axis(Box const& box) {
    Vec const size = box.maximum - box.minimum;
    if (size.x >= size.y && size.x >= size.z) {
        return 0;
    }
    return size.y >= size.z ? 1 : 2;
}

}  // namespace

PythonBoxTree::PythonBoxTree(GeometryObject const& geometry, double const* time)
    : m_geometry(geometry), m_is_moving(time != nullptr), m_boxes(geometry.get_primitive_count()) {
    double largest = 0;
    for (unsigned int i = 0; i < m_boxes.size(); ++i) {
        if (time == nullptr) {
            geometry.compute_primitive_bbox(CtxEval(), i, m_boxes[i]);
        } else {
            geometry.compute_primitive_bbox_at(CtxEval(), i, *time, m_boxes[i]);
        }
        if (is_finite(m_boxes[i])) {
            m_primitives.push_back(i);
            for (unsigned int axis = 0; axis < 3; ++axis) {
                largest = std::max({largest, std::abs(m_boxes[i].minimum[axis]),
                                    std::abs(m_boxes[i].maximum[axis])});
            }
        }
    }
    Vec const padding(largest * box_padding, largest * box_padding, largest * box_padding);
    for (Box& box : m_boxes) {
        box = {box.minimum - padding, box.maximum + padding};
    }
    build(0, static_cast<unsigned int>(m_primitives.size()));
}

// Halves the primitives at the middle one along the longest side.
unsigned int PythonBoxTree::build(unsigned int const& first, unsigned int const& last) {
    unsigned int const begin = first;
    unsigned int const end = last;
    unsigned int const self = static_cast<unsigned int>(m_nodes.size());
    m_nodes.push_back({Box::get_inverted(), begin, end, 0});
    Box box = Box::get_inverted();
    for (unsigned int i = begin; i < end; ++i) {
        box.extend(m_boxes[m_primitives[i]].minimum);
        box.extend(m_boxes[m_primitives[i]].maximum);
    }
    m_nodes[self].box = box;
    if (end - begin <= leaf_size) {
        return self;
    }
    unsigned int const axis = find_longest_axis(box);
    unsigned int const middle = begin + (end - begin) / 2;
    auto const lies_before = [&](unsigned int const& a, unsigned int const& b) {
        return m_boxes[a].minimum[axis] + m_boxes[a].maximum[axis] <
               m_boxes[b].minimum[axis] + m_boxes[b].maximum[axis];
    };
    unsigned int* const primitives = m_primitives.data();
    std::nth_element(primitives + begin, primitives + middle, primitives + end, lies_before);
    build(begin, middle);
    m_nodes[self].right = build(middle, end);
    return self;
}

GeometryHit PythonBoxTree::find_nearest(GeometryRay const& ray,
                                        GeometryRaytraceCtx::TestMode const& test_mode) const {
    struct Visit {
        unsigned int node;
        double distance;
    };
    Visit open[64];  // one a level: 32 of them, each half of the one above
    unsigned int open_count = 0;
    GeometryHit nearest;
    nearest.distance = ray.maximum_distance;
    open[open_count++] = {0, enter(m_nodes[0].box, ray.ray, nearest.distance)};
    while (open_count > 0) {
        Visit const visit = open[--open_count];
        if (!(visit.distance <= nearest.distance)) {
            continue;
        }
        Node const& node = m_nodes[visit.node];
        if (node.right == 0) {
            test(node, ray, test_mode, nearest);
            continue;
        }
        Visit a{visit.node + 1, enter(m_nodes[visit.node + 1].box, ray.ray, nearest.distance)};
        Visit b{node.right, enter(m_nodes[node.right].box, ray.ray, nearest.distance)};
        if (b.distance < a.distance) {
            std::swap(a, b);
        }
        open[open_count++] = b;
        open[open_count++] = a;  // the nearer one comes next
    }
    return nearest;
}

void PythonBoxTree::test(Node const& leaf, GeometryRay const& ray,
                         GeometryRaytraceCtx::TestMode const& test_mode,
                         GeometryHit& nearest) const {
    for (unsigned int i = leaf.first; i < leaf.last; ++i) {
        GeometryHit hit;
        GeometryRaytraceCtx rays(&ray, &hit, 1);
        rays.test_mode = test_mode;
        rays.is_motion_blurred = m_is_moving;
        m_geometry.intersect_primitive(CtxEval(), m_primitives[i], rays);
        if (hit.primitive_index != none &&
            (nearest.primitive_index == none || hit.distance < nearest.distance ||
             (hit.distance == nearest.distance && hit.primitive_index < nearest.primitive_index))) {
            nearest = hit;
        }
    }
}
