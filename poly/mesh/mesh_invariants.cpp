#include <poly/mesh/mesh_invariants.h>

#include <poly/mesh/map_entries.h>
#include <poly/mesh/primitive_corners.h>

#include <set>
#include <utility>
#include <vector>

namespace {

using Info = PolyMeshPrimitiveInfo;

constexpr unsigned int absent = 0xFFFFFFFFu;

std::string describe(std::string const& text, unsigned int const& place) {
    return text + " does not hold at " + std::to_string(place);
}

// Leaves a check that finds something broken; `place` is the number of the entry.
#define CHECK_AT(place, holds)                                                                     \
    if (!(holds)) {                                                                                \
        return describe(#holds, place);                                                            \
    }

struct Checker {
    PolyMesh const& mesh;
    bool edges_are_built;
    PolyMeshTopology const& t = mesh.get_topology();
    PolyMeshGeometry const& g = mesh.get_geometry();
    GeometryPointCloudData const& points = mesh.get_point_cloud()->get_data();
    unsigned int vertex_count = points.point_count;
    unsigned int corner_count = t.polygon_vertex_indices.get_count();
    unsigned int primitive_count = t.primitive_infos.get_count();
    unsigned int group_count = t.shading_group_names.get_count();

    // Where the walk over the polygons has come to.
    unsigned int first = 0;
    unsigned int primitive = 0;
    unsigned int cut_corner = 0;
    unsigned int quad_count = 0;
    std::vector<GMathBbox3<float>> boxes = {};

    std::string check_lengths() {
        CHECK_AT(0, points.positions.get_count() == vertex_count)
        CHECK_AT(0, points.normals.get_count() == vertex_count)
        CHECK_AT(0, points.velocities.is_empty() || points.velocities.get_count() == vertex_count)
        CHECK_AT(0, points.support_geometries.get_count() == 1 || vertex_count == 0)
        CHECK_AT(0, points.geometry_indices.is_empty())
        CHECK_AT(0, points.primitive_indices.get_count() == vertex_count)
        CHECK_AT(0, points.primitive_uvs.get_count() == vertex_count)
        CHECK_AT(0, t.polygon_shading_groups.get_count() >= t.polygon_vertex_count.get_count())
        CHECK_AT(0, t.primitive_index_offsets.get_count() == primitive_count)
        CHECK_AT(0, t.primitive_polygon_indices.get_count() == primitive_count)
        CHECK_AT(0, t.primitive_shading_groups.get_count() == primitive_count)
        CHECK_AT(0, g.shading_group_bbox.get_count() == group_count)
        CHECK_AT(0, g.shading_group_normals.get_count() == group_count)
        CHECK_AT(0, vertex_count != 0 || mesh.get_hash_key() == CoreHash::null_key())
        for (unsigned int corner = 0; corner < corner_count; ++corner) {
            CHECK_AT(corner, t.polygon_vertex_indices[corner] < vertex_count)
        }
        return {};
    }

    std::string check_polygons() {
        boxes.resize(group_count, GMathBbox3<float>::get_inverted());
        for (unsigned int polygon = 0; polygon < t.polygon_vertex_count.get_count(); ++polygon) {
            unsigned int const n = t.polygon_vertex_count[polygon];
            unsigned int const group = t.polygon_shading_groups[polygon];
            CHECK_AT(polygon, n <= corner_count - first)
            std::string const broken = n < 3 ? std::string() : check_polygon(polygon, n);
            if (!broken.empty()) {
                return broken;
            }
            for (unsigned int const end = first + n; first < end; ++first) {
                auto const& position = points.positions[t.polygon_vertex_indices[first]];
                if (group < group_count && gmath_isfinite(position)) {
                    boxes[group].extend(position);
                }
            }
        }
        CHECK_AT(0, primitive == primitive_count)
        CHECK_AT(0, cut_corner == t.triangle_indices.get_count())
        CHECK_AT(0, t.triangle_count == primitive_count - quad_count)
        CHECK_AT(0, t.quad_count == quad_count)
        CHECK_AT(0, t.primitive_index_count == 3 * primitive_count + quad_count)
        return {};
    }

    // Polygon `polygon` of `n` corners has the primitives that come next.
    std::string check_polygon(unsigned int const& polygon, unsigned int const& n) {
        CHECK_AT(polygon, primitive < primitive_count)
        bool const is_whole = (t.primitive_infos[primitive] & Info::direct_bit) != 0;
        unsigned int const count = is_whole ? 1 : n - 2;
        CHECK_AT(polygon, is_whole ? n < 5 : n > 3)
        CHECK_AT(polygon, count <= primitive_count - primitive)
        std::set<std::pair<unsigned int, unsigned int>> edges;  // of the cut, by corner number
        for (unsigned int const end = primitive + count; primitive < end; ++primitive) {
            unsigned int const info = t.primitive_infos[primitive] & Info::meaning_mask;
            unsigned int const offset = t.primitive_index_offsets[primitive];
            unsigned int sides = is_whole ? Info::meaning_mask >> Info::edge_shift : 0;
            CHECK_AT(primitive, t.primitive_polygon_indices[primitive] == polygon)
            CHECK_AT(primitive,
                     t.primitive_shading_groups[primitive] == t.polygon_shading_groups[polygon])
            CHECK_AT(primitive, ((info & Info::direct_bit) != 0) == is_whole)
            CHECK_AT(primitive, ((info & Info::quad_bit) != 0) == (is_whole && n == 4))
            CHECK_AT(primitive, offset == (is_whole ? first : cut_corner))
            PrimitivePlace const place = find_primitive(t, primitive);
            CHECK_AT(primitive, place.offset == offset && place.is_direct() == is_whole &&
                                    place.is_quad() == (is_whole && n == 4))
            quad_count += place.is_quad() ? 1 : 0;
            for (unsigned int k = 0; !is_whole && k < 3; ++k, ++cut_corner) {
                CHECK_AT(primitive, offset + 3 <= t.triangle_indices.get_count())
                unsigned int const begin = t.triangle_indices[offset + k] - first;
                unsigned int const next = t.triangle_indices[offset + (k + 1) % 3] - first;
                CHECK_AT(primitive, begin < n && edges.insert({begin, next}).second)
                sides |= next == (begin + 1) % n ? 1u << k : 0;
            }
            CHECK_AT(primitive, !edges_are_built || info >> Info::edge_shift == sides)
        }
        // Triangles that lie side by side: diagonals run both ways, sides of the polygon one.
        for (auto const& [begin, end] : edges) {
            CHECK_AT(polygon, edges.count({end, begin}) == (end == (begin + 1) % n ? 0u : 1u))
        }
        return {};
    }

    std::string check_support() {
        std::vector<unsigned int> primitives(vertex_count, absent);
        std::vector<GMathVec2<float>> uvs(vertex_count);
        CoreArray<unsigned int> vertices;
        mesh.get_primitive_indices(vertices);
        unsigned int next = 0;
        for (unsigned int p = 0; p < primitive_count; ++p) {
            bool const is_quad = mesh.get_primitive_edge_count(p) == 4;
            for (unsigned int k = 0; k < (is_quad ? 4u : 3u); ++k) {
                unsigned int const vertex = vertices[next++];
                primitives[vertex] = p;
                uvs[vertex] = {k == 1 || (k == 2 && is_quad) ? 1.0f : 0.0f, k >= 2 ? 1.0f : 0.0f};
            }
        }
        CHECK_AT(0, vertices.get_count() == next)
        for (unsigned int vertex = 0; vertex < vertex_count; ++vertex) {
            CHECK_AT(vertex, points.primitive_indices[vertex] == primitives[vertex])
            CHECK_AT(vertex, mesh.get_point_cloud()->get_primitive_uv(vertex) == uvs[vertex])
        }
        return {};
    }

    // Areas, which are not negative but may be no numbers.
    static bool is_sum(PolyMeshNormalSum const& sum) {
        return !(sum.x < 0.0f || sum.y < 0.0f || sum.z < 0.0f);
    }
    std::string check_sums() {
        for (unsigned int group = 0; group < group_count; ++group) {
            CHECK_AT(group, is_sum(g.shading_group_normals[group]))
        }
        CHECK_AT(0, is_sum(g.mesh_normal))
        return {};
    }

    std::string check_boxes() {
        GMathBbox3<float> whole = GMathBbox3<float>::get_inverted();
        for (GMathVec3<float> const& position : points.positions) {
            if (gmath_isfinite(position)) {
                whole.extend(position);
            }
        }
        CHECK_AT(0, vertex_count == 0 || g.mesh_bbox == whole)
        for (unsigned int group = 0; vertex_count != 0 && group < group_count; ++group) {
            CHECK_AT(group, g.shading_group_bbox[group] == boxes[group])
        }
        return {};
    }

    std::string check_maps() {
        auto const has_indices = [this](auto const& map) {
            return map.polygon_indices->get_count() == corner_count &&
                   (owns_indices(map, t) || map.values.get_count() == vertex_count);
        };
        for (PolyMeshUvMap const& map : t.uv_maps) {
            CHECK_AT(0, has_indices(map))
            for (unsigned int corner = 0; owns_indices(map, t) && corner < corner_count; ++corner) {
                unsigned int const index = (*map.polygon_indices)[corner];
                CHECK_AT(corner, index <= map.values.get_count() || index == absent)
            }
        }
        for (PolyMeshColorMap const& map : t.color_maps) {
            CHECK_AT(0, has_indices(map))
        }
        for (PolyMeshNormalMap const& map : g.normal_maps) {
            CHECK_AT(0, map.polygon_indices.get_count() == corner_count)
            for (unsigned int i = 0; i < map.normals.get_count(); ++i) {
                CHECK_AT(i, gmath_length(map.normals[i].decode()) > 0.0f)
            }
            for (unsigned int corner = 0; corner < corner_count; ++corner) {
                unsigned int const index = map.polygon_indices[corner];
                CHECK_AT(corner, index < vertex_count + map.normals.get_count() || index == absent)
            }
        }
        return {};
    }
};

}  // namespace

std::string find_broken_invariant(PolyMesh const& mesh, bool const& edges_are_built) {
    Checker checker{mesh, edges_are_built};
    for (auto const check :
         {&Checker::check_lengths, &Checker::check_polygons, &Checker::check_support,
          &Checker::check_sums, &Checker::check_boxes, &Checker::check_maps}) {
        std::string const broken = (checker.*check)();
        if (!broken.empty()) {
            return broken;
        }
    }
    return {};
}
