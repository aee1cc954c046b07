#include <poly/mesh/primitive_building.h>

#include <poly/mesh/log_message.h>
#include <poly/mesh/progress_task.h>
#include <poly/topology/triangulate_polygon.h>

#include <algorithm>
#include <cassert>

namespace {

// Direct, with all edges visible, of a triangle the unused fourth too.
constexpr unsigned int whole_quad_info = PolyMeshPrimitiveInfo::meaning_mask;
constexpr unsigned int whole_triangle_info = whole_quad_info & ~PolyMeshPrimitiveInfo::quad_bit;

// p and r lie strictly on opposite sides of the line through q and s.
bool are_opposite(GMathVec3<float> const& q, GMathVec3<float> const& s, GMathVec3<float> const& p,
                  GMathVec3<float> const& r) {
    GMathVec3<float> const diagonal = s - q;
    return gmath_dot(gmath_cross(r - q, diagonal), gmath_cross(p - q, diagonal)) < 0.0f;
}

bool is_convex_quad(GMathVec3<float> const* positions, unsigned int const* corners) {
    GMathVec3<float> const& p0 = positions[corners[0]];
    GMathVec3<float> const& p1 = positions[corners[1]];
    GMathVec3<float> const& p2 = positions[corners[2]];
    GMathVec3<float> const& p3 = positions[corners[3]];
    return are_opposite(p1, p3, p0, p2) && are_opposite(p0, p2, p3, p1);
}

// Edge k of a cut triangle is visible when it is a side of the polygon.
unsigned char get_cut_info(unsigned int const* triangle, unsigned int const& corner_count) {
    unsigned int info = 0;
    for (unsigned int k = 0; k < 3; ++k) {
        unsigned int const next = triangle[k] + 1 == corner_count ? 0 : triangle[k] + 1;
        if (triangle[k == 2 ? 0 : k + 1] == next) {
            info |= PolyMeshPrimitiveInfo::get_edge_bit(k);
        }
    }
    return static_cast<unsigned char>(info);
}

// Walks the polygons twice: to count the primitives, then to fill the arrays. Buffers grow to the
// largest polygon, so the number of allocations does not depend on how many there are.
class PrimitiveBuilder {
  public:
    PrimitiveBuilder(PolyMeshPolygons const& polygons,
                     CoreBasicArray<GMathVec3<float>> const& positions, bool const& check_quads,
                     PolyMeshTopology& topology)
        : m_polygons(polygons),
          m_positions(positions.get_data()),
          m_check_quads(check_quads),
          m_topology(topology) {}

    unsigned int build(AppProgressBar* progress) {
        count_primitives();
        allocate();
        set_step_count(progress, m_polygons.vertex_count.get_count());
        {
            Writers writers(m_topology);
            m_writers = &writers;
            fill(progress);
            m_writers = nullptr;
        }
        find_uniform_size();
        return m_degenerate_count;
    }

  private:
    void count_primitives() {
        unsigned int const polygon_count = m_polygons.vertex_count.get_count();
        m_is_cut.reset(polygon_count);
        unsigned long long corner = 0;
        for (unsigned int polygon = 0; polygon < polygon_count; ++polygon) {
            unsigned int const n = m_polygons.vertex_count[polygon];
            assert(corner + n <= m_polygons.vertex_indices.get_count());
            bool const is_cut = n > 4 || (n == 4 && m_check_quads && !is_convex(corner));
            m_is_cut[polygon] = is_cut;
            if (n >= 3) {
                m_primitive_count += is_cut ? n - 2 : 1;
                m_cut_count += is_cut ? n - 2 : 0;
                unsigned int& last = is_cut ? m_last_cut_corner : m_last_whole_corner;
                last = static_cast<unsigned int>(is_cut ? corner + n - 1 : corner);
            }
            corner += n;
        }
    }

    bool is_convex(unsigned long long const& corner) const {
        return is_convex_quad(m_positions, m_polygons.vertex_indices.get_data() + corner);
    }

    void allocate() {
        unsigned int const last_cut_offset = m_cut_count == 0 ? 0 : 3 * (m_cut_count - 1);
        m_topology.triangle_indices.init(3 * m_cut_count, m_last_cut_corner);
        m_topology.primitive_index_offsets.init(m_primitive_count,
                                                std::max(m_last_whole_corner, last_cut_offset));
        m_topology.primitive_infos.reset(m_primitive_count);
        m_topology.primitive_polygon_indices.init(m_primitive_count,
                                                  m_polygons.vertex_count.get_count() - 1);
        m_topology.primitive_shading_groups.init(
            m_primitive_count, m_topology.polygon_shading_groups.get_largest_value());
        m_topology.primitive_index_count = 0;
        m_topology.triangle_count = 0;
        m_topology.quad_count = 0;
    }

    void fill(AppProgressBar* progress) {
        unsigned int const polygon_count = m_polygons.vertex_count.get_count();
        for (unsigned int polygon = 0; polygon < polygon_count; ++polygon) {
            unsigned int const n = m_polygons.vertex_count[polygon];
            if (n >= 3 && m_is_cut[polygon]) {
                add_cut_polygon(polygon, n);
            } else if (n >= 3) {
                add_whole_polygon(polygon, n);
            }
            m_corner += n;
            step(progress, polygon + 1);
        }
    }

    void add_cut_polygon(unsigned int const& polygon, unsigned int const& n) {
        unsigned int const triangle_count = n - 2;
        if (m_cut.get_count() < 3 * triangle_count) {
            m_cut.reset(3 * triangle_count);
        }
        unsigned int const* const corners = m_polygons.vertex_indices.get_data() + m_corner;
        unsigned int const written =
            triangulate_polygon(m_positions, corners, n, m_cut.get_data()) / 3;
        if (written < triangle_count) {
            m_degenerate_count += triangle_count - written;
            cut_as_fan(triangle_count);
        }
        for (unsigned int t = 0; t < triangle_count; ++t) {
            add_cut_triangle(polygon, n, m_cut.get_data() + 3 * t);
        }
        m_topology.primitive_index_count += 3 * triangle_count;
        m_topology.triangle_count += triangle_count;
    }

    void cut_as_fan(unsigned int const& triangle_count) {
        for (unsigned int t = 0; t < triangle_count; ++t) {
            m_cut[3 * t] = 0;
            m_cut[3 * t + 1] = t + 1;
            m_cut[3 * t + 2] = t + 2;
        }
    }

    void add_cut_triangle(unsigned int const& polygon, unsigned int const& n,
                          unsigned int const* triangle) {
        add_primitive(polygon, get_cut_info(triangle, n), m_triangle_corner);
        for (unsigned int k = 0; k < 3; ++k) {
            m_writers->triangle_indices.append(m_corner + triangle[k]);
        }
        m_triangle_corner += 3;
    }

    void add_whole_polygon(unsigned int const& polygon, unsigned int const& n) {
        add_primitive(polygon, n == 4 ? whole_quad_info : whole_triangle_info, m_corner);
        m_topology.primitive_index_count += n;
        m_topology.triangle_count += n == 3 ? 1 : 0;
        m_topology.quad_count += n == 4 ? 1 : 0;
    }

    void add_primitive(unsigned int const& polygon, unsigned int const& info,
                       unsigned int const& offset) {
        m_topology.primitive_infos[m_primitive] = static_cast<unsigned char>(info);
        m_writers->offsets.append(offset);
        m_writers->polygon_indices.append(polygon);
        m_writers->shading_groups.append(m_polygons.shading_groups[polygon]);
        ++m_primitive;
    }

    void find_uniform_size() {
        unsigned int const count = m_polygons.vertex_count.get_count();
        bool const is_whole = m_cut_count == 0 && m_primitive_count == count;
        bool const are_quads = is_whole && m_topology.quad_count == count;
        bool const are_triangles = is_whole && m_topology.triangle_count == count;
        m_topology.uniform_corner_count = are_quads ? 4 : are_triangles ? 3 : 0;
        m_topology.uniform_info = are_quads ? whole_quad_info : whole_triangle_info;
    }

    struct Writers {
        CoreIndexWriter triangle_indices, offsets, polygon_indices, shading_groups;

        explicit Writers(PolyMeshTopology& topology)
            : triangle_indices(topology.triangle_indices),
              offsets(topology.primitive_index_offsets),
              polygon_indices(topology.primitive_polygon_indices),
              shading_groups(topology.primitive_shading_groups) {}
    };

    PolyMeshPolygons m_polygons;
    GMathVec3<float> const* m_positions;
    bool m_check_quads;
    PolyMeshTopology& m_topology;

    CoreArray<bool> m_is_cut;       // by polygon
    CoreArray<unsigned int> m_cut;  // corner numbers of one polygon's triangles
    unsigned int m_primitive_count = 0;
    unsigned int m_cut_count = 0;
    unsigned int m_last_cut_corner = 0;    // of the last polygon that is cut
    unsigned int m_last_whole_corner = 0;  // the first one of the last polygon that is not

    Writers* m_writers = nullptr;        // while the arrays are filled
    unsigned int m_corner = 0;           // the first corner of the polygon at hand
    unsigned int m_triangle_corner = 0;  // the next free place of triangle_indices
    unsigned int m_primitive = 0;
    unsigned int m_degenerate_count = 0;
};

}  // namespace

bool is_buildable(char const* operation, PolyMeshPolygons const& polygons,
                  unsigned int const& vertex_count) {
    unsigned long long corner_count = 0;
    unsigned long long cut_corner_count = 0;
    for (unsigned int const n : polygons.vertex_count) {
        corner_count += n;
        cut_corner_count += get_cut_corner_count(n);
    }
    bool is_there = true;
    for (unsigned int const vertex : polygons.vertex_indices) {
        is_there &= vertex < vertex_count;
    }
    if (!is_there || corner_count > polygons.vertex_indices.get_count() ||
        polygons.shading_groups.get_count() < polygons.vertex_count.get_count()) {
        log_message(LOG_REFUSAL, operation,
                    ": The polygons name vertices, corners or groups that are not there.\n");
        return false;
    }
    if (cut_corner_count > largest_cut_corner_count) {
        log_too_large(operation);
        return false;
    }
    return true;
}

void log_too_large(char const* operation) {
    log_message(LOG_REFUSAL, operation, ": The polygons have too many corners.\n");
}

unsigned int build_primitives(PolyMeshPolygons const& polygons,
                              CoreBasicArray<GMathVec3<float>> const& positions,
                              bool const& check_quads, PolyMeshTopology& topology,
                              AppProgressBar* progress) {
    return PrimitiveBuilder(polygons, positions, check_quads, topology).build(progress);
}

void log_degenerate_triangles(unsigned int const& count, AppProgressBar const* progress) {
    log_message(LOG_WARNING, progress ? progress->get_name() : CoreString("PolyMesh"),
                ": the triangulation has detected ", count, " degenerated triangle(s).\n");
}
