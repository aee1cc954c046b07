#include <poly/mesh/mesh_bounds.h>

#include <platform/qz_gmath.h>
#include <poly/mesh/log_message.h>
#include <poly/mesh/progress_task.h>

#include <algorithm>
#include <limits>

namespace {

constexpr unsigned int run_length = 1024;  // of vertices or polygons, before their steps are told

// A box that grows by its three axes side by side. Lanes compare as GMathBbox3 does, so that even
// the sign of a zero is the one that came first.
class BoxLanes {
    using Lanes = GMathFloatLanes;

  public:
    explicit BoxLanes(GMathBbox3<float> const& box)
        : m_low(gmath_lanes(box.minimum)), m_high(gmath_lanes(box.maximum)) {}

    // Holds points `begin` to `end`, but stops at the first one that is not finite. Returns where.
    unsigned int extend_while_finite(GMathVec3<float> const* points, unsigned int const& begin,
                                     unsigned int const& end) {
        Lanes low = m_low, high = m_high;  // stay in registers
        unsigned int i = begin;
        while (i < end && extend(points[i], low, high)) {
            ++i;
        }
        m_low = low;
        m_high = high;
        return i;
    }
    // Holds the finite ones of the points that `vertices` names from `begin` to `end`.
    // `are_all_finite`: that need not be asked.
    void extend(GMathVec3<float> const* points, CoreIndexReader const& vertices,
                unsigned int const& begin, unsigned int const& end, bool const& are_all_finite) {
        Lanes low = m_low, high = m_high;
        if (are_all_finite) {
            for (unsigned int corner = begin; corner < end; ++corner) {
                Lanes const point = load(points[vertices[corner]]);
                low = gmath_lesser(point, low);
                high = gmath_greater(point, high);
            }
        } else {
            for (unsigned int corner = begin; corner < end; ++corner) {
                extend(points[vertices[corner]], low, high);
            }
        }
        m_low = low;
        m_high = high;
    }
    GMathBbox3<float> get_box() const {
        return {gmath_vec3<float>(m_low), gmath_vec3<float>(m_high)};
    }

  private:
    // False, and nothing else, for a point that is not finite.
    static bool extend(GMathVec3<float> const& p, Lanes& low, Lanes& high) {
        Lanes const point = load(p);
        if (gmath_get_bits(gmath_absolute(point) <= std::numeric_limits<float>::max()) != 0xF) {
            return false;
        }
        low = gmath_lesser(point, low);
        high = gmath_greater(point, high);
        return true;
    }

    static Lanes load(GMathVec3<float> const& p) { return gmath_load_three(&p.x); }

    Lanes m_low;
    Lanes m_high;
};

// Deliberate: the z of the mesh box stays as it was.
void reset_bounds(PolyMeshGeometry& geometry) {
    geometry.mesh_bbox.minimum.x = geometry.mesh_bbox.minimum.y = 0.0f;
    geometry.mesh_bbox.maximum.x = geometry.mesh_bbox.maximum.y = 0.0f;
    geometry.shading_group_bbox.fill(GMathBbox3<float>::get_zero());
}

void log_invalid_vertex(unsigned int const& vertex, GMathVec3<float> const& p) {
    log_message(LOG_REFUSAL, "PolyMesh: vertex ", vertex, " is not valid: (", p.x, ", ", p.y, ", ",
                p.z, ")\n");
}

// Returns whether all positions are finite.
bool update_mesh_box(CoreBasicArray<GMathVec3<float>> const& positions, GMathBbox3<float>& box,
                     AppProgressBar* progress) {
    ProgressTask const task(progress, "compute vertices bbox", 0.3f);
    set_step_count(progress, positions.get_count());
    BoxLanes grown(GMathBbox3<float>::get_inverted());
    unsigned int const vertex_count = positions.get_count();
    unsigned int vertex = 0;
    bool are_all_finite = true;
    while (vertex < vertex_count) {
        unsigned int const first = vertex;
        unsigned int const end = first + std::min(run_length, vertex_count - first);
        vertex = grown.extend_while_finite(positions.get_data(), vertex, end);
        if (vertex < end) {
            log_invalid_vertex(vertex, positions[vertex]);
            are_all_finite = false;
            ++vertex;
        }
        step_through(progress, first, vertex);
    }
    box = grown.get_box();
    return are_all_finite;
}

void update_group_boxes(PolyMeshTopology const& topology,
                        CoreBasicArray<GMathVec3<float>> const& positions,
                        bool const& are_all_finite, CoreArray<GMathBbox3<float>>& boxes,
                        AppProgressBar* progress) {
    ProgressTask const task(progress, "compute shading group bboxes", 0.7f);
    unsigned int const polygon_count = topology.polygon_vertex_count.get_count();
    set_step_count(progress, polygon_count);
    boxes.fill(GMathBbox3<float>::get_inverted());
    CoreIndexReader const groups(topology.polygon_shading_groups);
    CoreIndexReader const counts(topology.polygon_vertex_count);
    CoreIndexReader const vertices(topology.polygon_vertex_indices);
    unsigned int corner = 0;
    unsigned int polygon = 0;
    while (polygon < polygon_count) {
        // A run of polygons of one group.
        unsigned int const first = polygon;
        unsigned int const group = groups[first];
        unsigned int const run_end = first + std::min(run_length, polygon_count - first);
        unsigned int end = corner;
        do {
            end += counts[polygon];
        } while (++polygon < run_end && groups[polygon] == group);
        if (group < boxes.get_count()) {
            BoxLanes grown(boxes[group]);
            grown.extend(positions.get_data(), vertices, corner, end, are_all_finite);
            boxes[group] = grown.get_box();
        }
        corner = end;
        step_through(progress, first, polygon);
    }
}

}  // namespace

void update_bounds(PolyMeshTopology const& topology,
                   CoreBasicArray<GMathVec3<float>> const& positions, PolyMeshGeometry& geometry,
                   AppProgressBar* progress) {
    if (positions.is_empty()) {
        reset_bounds(geometry);
        if (progress) {
            progress->set_value(1.0);
        }
        return;
    }
    bool const are_all_finite = update_mesh_box(positions, geometry.mesh_bbox, progress);
    update_group_boxes(topology, positions, are_all_finite, geometry.shading_group_bbox, progress);
}
