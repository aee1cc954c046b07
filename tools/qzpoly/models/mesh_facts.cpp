#include <tools/qzpoly/models/mesh_facts.h>

#include <tools/qzpoly/models/dump_writer.h>
#include <tools/qzpoly/models/polygon_cuts.h>

namespace {

void count_primitives(PolyMesh const& mesh, ToolMeshFacts& facts) {
    facts.primitive_count = mesh.get_primitive_count();
    for (unsigned int i = 0; i < facts.primitive_count; ++i) {
        ++(mesh.get_primitive_edge_count(i) == 4 ? facts.quad_count : facts.triangle_count);
        facts.area +=
            mesh.estimate_primitive_area(CtxEval(), i, GMathMatrix4x4<double>::get_identity());
    }
}

void count_polygons(PolyMesh const& mesh, ToolMeshFacts& facts) {
    CoreArray<unsigned int> counts;
    mesh.get_polygon_vertex_count(counts);
    for (unsigned int const corner_count : counts) {
        ++facts.polygons_by_corners[corner_count];
    }
    facts.degenerate_count = count_degenerate_triangles(mesh);
}

void list_groups(PolyMesh const& mesh, ToolMeshFacts& facts) {
    CoreArray<CoreString> const& names = mesh.get_shading_group_names();
    for (unsigned int i = 0; i < names.get_count(); ++i) {
        facts.groups.push_back(
            {std::string(names[i].get_view()), 0, mesh.get_shading_group_bbox(i)});
    }
    CoreArray<unsigned int> groups;
    mesh.get_polygon_shading_groups(groups);
    for (unsigned int polygon = 0; polygon < facts.polygon_count; ++polygon) {
        if (groups[polygon] < facts.groups.size()) {
            ++facts.groups[groups[polygon]].polygon_count;
        }
    }
}

template <typename Map>
void add_map(char const* kind, Map const& map, ToolMeshFacts& facts) {
    facts.maps.push_back(
        {kind, std::string(map.name.get_view()), map.values.get_count(), map.indices.is_empty()});
}

void list_maps(PolyMesh const& mesh, ToolMeshFacts& facts) {
    for (unsigned int i = 0; i < mesh.get_uv_map_count(); ++i) {
        GeometryUvMap map;
        mesh.get_polygon_uv_map(i, map, false);
        add_map("uv", map, facts);
    }
    for (unsigned int i = 0; i < mesh.get_normal_map_count(); ++i) {
        GeometryNormalMap map;
        mesh.get_polygon_normal_map(i, map);
        add_map("normal", map, facts);
    }
    for (unsigned int i = 0; i < mesh.get_color_map_count(); ++i) {
        GeometryColorMap map;
        mesh.get_polygon_color_map(i, map, false);
        add_map("color", map, facts);
    }
}

}  // namespace

ToolMeshFacts find_facts(PolyMesh const& mesh) {
    ToolMeshFacts facts;
    facts.vertex_count = mesh.get_vertex_count();
    facts.polygon_count = mesh.get_polygon_count();
    count_primitives(mesh, facts);
    count_polygons(mesh, facts);
    ResourceImportData const* const data = mesh.get_import_data();
    facts.crease_count = data != nullptr ? data->crease_sharpnesses.get_count() : 0;
    list_groups(mesh, facts);
    list_maps(mesh, facts);
    facts.bbox = mesh.get_bbox();
    facts.key = write_key(mesh.get_hash_key());
    return facts;
}
