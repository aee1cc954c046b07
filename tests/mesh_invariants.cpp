#include <tests/mesh_invariants.h>

#include <poly/mesh/map_entries.h>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

namespace {

constexpr unsigned int absent = 0xFFFFFFFFu;

// Each check returns its message when `is_broken`; the numbers name the place.
#define CHECK_THAT(holds, ...)                                                                     \
    if (!(holds)) {                                                                                \
        return describe(#holds, {__VA_ARGS__});                                                    \
    }

std::string describe(std::string text, std::vector<unsigned int> const& places) {
    text += " does not hold";
    for (unsigned int const place : places) {
        text += " " + std::to_string(place);
    }
    return text;
}

class Checker {
  public:
    Checker(PolyMesh const& mesh, bool const& edges_are_built)
        : m_mesh(mesh),
          m_topology(mesh.get_topology()),
          m_geometry(mesh.get_geometry()),
          m_points(mesh.get_point_cloud()->get_data()),
          m_corner_count(m_topology.polygon_vertex_indices.get_count()),
          m_primitive_count(m_topology.primitive_infos.get_count()),
          m_edges_are_built(edges_are_built) {}

    std::string check() {
        for (auto const step :
             {&Checker::check_lengths, &Checker::check_polygons, &Checker::check_support,
              &Checker::check_boxes, &Checker::check_maps}) {
            std::string const broken = (this->*step)();
            if (!broken.empty()) {
                return broken;
            }
        }
        return {};
    }

  private:
    std::string check_lengths() {
        unsigned int const n = m_points.point_count;
        unsigned int const group_count = m_topology.shading_group_names.get_count();
        bool const is_built = !m_points.support_geometries.is_empty();
        CHECK_THAT(is_built || n == 0)
        CHECK_THAT(m_points.positions.get_count() == n)
        CHECK_THAT(m_points.normals.get_count() == n)
        CHECK_THAT(m_points.velocities.is_empty() || m_points.velocities.get_count() == n)
        CHECK_THAT(m_points.support_geometries.get_count() <= 1)
        CHECK_THAT(m_points.geometry_indices.is_empty())
        CHECK_THAT(m_points.primitive_indices.get_count() == n)
        CHECK_THAT(m_points.primitive_uvs.get_count() == n)
        CHECK_THAT(m_topology.polygon_shading_groups.get_count() >=
                   m_topology.polygon_vertex_count.get_count())
        CHECK_THAT(m_topology.primitive_index_offsets.get_count() == m_primitive_count)
        CHECK_THAT(m_topology.primitive_polygon_indices.get_count() == m_primitive_count)
        CHECK_THAT(m_topology.primitive_shading_groups.get_count() == m_primitive_count)
        CHECK_THAT(m_geometry.shading_group_bbox.get_count() == group_count)
        CHECK_THAT(m_geometry.shading_group_normals.get_count() == group_count)
        CHECK_THAT(m_topology.uv_map_compression_mode <= 2)
        CHECK_THAT(n != 0 || m_mesh.get_hash_key() == CoreHash::null_key())
        return {};
    }

    std::string check_polygons() {
        for (unsigned int corner = 0; corner < m_corner_count; ++corner) {
            CHECK_THAT(m_topology.polygon_vertex_indices[corner] < m_points.point_count, corner)
        }
        unsigned long long corner_count = 0;
        for (unsigned int i = 0; i < m_topology.polygon_vertex_count.get_count(); ++i) {
            corner_count += m_topology.polygon_vertex_count[i];
            CHECK_THAT(corner_count <= m_corner_count, i)
            std::string const broken = check_polygon(i, m_topology.polygon_vertex_count[i]);
            if (!broken.empty()) {
                return broken;
            }
            m_first += m_topology.polygon_vertex_count[i];
        }
        CHECK_THAT(m_primitive == m_primitive_count)
        CHECK_THAT(m_cut_corner == m_topology.triangle_indices.get_count())
        CHECK_THAT(m_topology.triangle_count + m_topology.quad_count == m_primitive_count)
        CHECK_THAT(m_topology.quad_count == m_quad_count)
        CHECK_THAT(m_topology.primitive_index_count == 3 * m_primitive_count + m_quad_count)
        return {};
    }

    // Polygon `polygon` of `n` corners has the primitives that come next.
    std::string check_polygon(unsigned int const& polygon, unsigned int const& n) {
        if (n < 3) {
            return {};
        }
        CHECK_THAT(m_primitive < m_primitive_count, polygon)
        bool const is_whole = (m_topology.primitive_infos[m_primitive] & 2) != 0;
        unsigned int const count = is_whole ? 1 : n - 2;
        CHECK_THAT(n > 3 || is_whole, polygon)
        CHECK_THAT(n < 5 || !is_whole, polygon)
        CHECK_THAT(count <= m_primitive_count - m_primitive, polygon)
        std::map<std::pair<unsigned int, unsigned int>, int> edges;  // of the cut, by corner ids
        for (unsigned int end = m_primitive + count; m_primitive < end; ++m_primitive) {
            unsigned int const p = m_primitive;
            unsigned int const info = m_topology.primitive_infos[p] & 63u;
            unsigned int const offset = m_topology.primitive_index_offsets[p];
            CHECK_THAT(m_topology.primitive_polygon_indices[p] == polygon, p)
            CHECK_THAT(m_topology.primitive_shading_groups[p] ==
                           m_topology.polygon_shading_groups[polygon],
                       p)
            if (is_whole) {
                CHECK_THAT((info & 3) == (n == 4 ? 3u : 2u), p)
                CHECK_THAT(!m_edges_are_built || info >> 2 == 15, p)
                CHECK_THAT(offset == m_first, p)
                m_quad_count += n == 4 ? 1 : 0;
                continue;
            }
            CHECK_THAT((info & 3) == 0, p)
            CHECK_THAT(offset == m_cut_corner, p)
            m_cut_corner += 3;
            CHECK_THAT(m_cut_corner <= m_topology.triangle_indices.get_count(), p)
            unsigned int sides = 0;
            for (unsigned int k = 0; k < 3; ++k) {
                unsigned int const begin = m_topology.triangle_indices[offset + k];
                unsigned int const next = m_topology.triangle_indices[offset + (k + 1) % 3];
                CHECK_THAT(begin >= m_first && begin - m_first < n, p, k)
                ++edges[{begin, next}];
                sides |= next - m_first == (begin - m_first + 1) % n ? 4u << k : 0;
            }
            CHECK_THAT(!m_edges_are_built || info == sides, p)
        }
        // Triangles that lie side by side: every side of the polygon once, and diagonals both ways.
        for (auto const& [edge, use_count] : edges) {
            bool const is_side = edge.second - m_first == (edge.first - m_first + 1) % n;
            CHECK_THAT(use_count == 1, polygon)
            CHECK_THAT(edges.count({edge.second, edge.first}) == (is_side ? 0u : 1u), polygon)
        }
        return {};
    }

    std::string check_support() {
        std::vector<unsigned int> primitives(m_points.point_count, absent);
        std::vector<GMathVec2<float>> uvs(m_points.point_count);
        CoreArray<unsigned int> vertices;
        m_mesh.get_primitive_indices(vertices);
        CHECK_THAT(vertices.get_count() == m_topology.primitive_index_count)
        unsigned int next = 0;
        for (unsigned int p = 0; p < m_primitive_count; ++p) {
            unsigned int const edge_count = m_mesh.get_primitive_edge_count(p);
            for (unsigned int k = 0; k < edge_count; ++k) {
                unsigned int const vertex = vertices[next++];
                CHECK_THAT(vertex < m_points.point_count, p, k)
                primitives[vertex] = p;
                uvs[vertex] = {k == 1 || (k == 2 && edge_count == 4) ? 1.0f : 0.0f,
                               k >= 2 ? 1.0f : 0.0f};
            }
        }
        for (unsigned int vertex = 0; vertex < m_points.point_count; ++vertex) {
            CHECK_THAT(m_points.primitive_indices[vertex] == primitives[vertex], vertex)
            CHECK_THAT(m_mesh.get_point_cloud()->get_primitive_uv(vertex) == uvs[vertex], vertex)
        }
        return {};
    }

    std::string check_boxes() {
        if (m_points.point_count == 0) {
            return {};
        }
        GMathBbox3<float> whole = GMathBbox3<float>::get_inverted();
        for (GMathVec3<float> const& p : m_points.positions) {
            if (gmath_isfinite(p)) {
                whole.extend(p);
            }
        }
        CHECK_THAT(m_geometry.mesh_bbox == whole)
        unsigned int const group_count = m_geometry.shading_group_bbox.get_count();
        std::vector<GMathBbox3<float>> boxes(group_count, GMathBbox3<float>::get_inverted());
        unsigned int corner = 0;
        for (unsigned int i = 0; i < m_topology.polygon_vertex_count.get_count(); ++i) {
            unsigned int const group = m_topology.polygon_shading_groups[i];
            for (unsigned int k = 0; k < m_topology.polygon_vertex_count[i]; ++k, ++corner) {
                GMathVec3<float> const& p =
                    m_points.positions[m_topology.polygon_vertex_indices[corner]];
                if (group < group_count && gmath_isfinite(p)) {
                    boxes[group].extend(p);
                }
            }
        }
        for (unsigned int group = 0; group < group_count; ++group) {
            CHECK_THAT(m_geometry.shading_group_bbox[group] == boxes[group], group)
        }
        return {};
    }

    std::string check_maps() {
        for (PolyMeshUvMap const& map : m_topology.uv_maps) {
            unsigned int const value_count = map.values.get_count();
            CHECK_THAT(map.polygon_indices->get_count() == m_corner_count)
            bool const is_own = owns_indices(map, m_topology);
            CHECK_THAT(is_own || value_count == m_points.point_count)
            for (unsigned int corner = 0; is_own && corner < m_corner_count; ++corner) {
                unsigned int const index = (*map.polygon_indices)[corner];
                CHECK_THAT(index <= value_count || index == absent, corner)
            }
        }
        for (PolyMeshColorMap const& map : m_topology.color_maps) {
            CHECK_THAT(map.polygon_indices->get_count() == m_corner_count)
            CHECK_THAT(owns_indices(map, m_topology) ||
                       map.values.get_count() == m_points.point_count)
        }
        for (PolyMeshNormalMap const& map : m_geometry.normal_maps) {
            CHECK_THAT(map.polygon_indices.get_count() == m_corner_count)
            unsigned long long const end = 0ull + m_points.point_count + map.normals.get_count();
            for (unsigned int corner = 0; corner < m_corner_count; ++corner) {
                unsigned int const index = map.polygon_indices[corner];
                CHECK_THAT(index < end || index == absent, corner)
            }
        }
        return {};
    }

    PolyMesh const& m_mesh;
    PolyMeshTopology const& m_topology;
    PolyMeshGeometry const& m_geometry;
    GeometryPointCloudData const& m_points;
    unsigned int m_corner_count;
    unsigned int m_primitive_count;
    bool m_edges_are_built;

    // Where the walk over the polygons has come to.
    unsigned int m_first = 0;
    unsigned int m_primitive = 0;
    unsigned int m_cut_corner = 0;
    unsigned int m_quad_count = 0;
};

}  // namespace

std::string find_broken_invariant(PolyMesh const& mesh, bool const& edges_are_built) {
    return Checker(mesh, edges_are_built).check();
}
