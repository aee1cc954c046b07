#include <poly/mesh/map_entries.h>
#include <poly/mesh/poly_mesh_records.h>

namespace {

// A map that goes by vertex goes by the clone's own vertex indices afterwards.
template <typename Map>
void clone_maps(CoreArray<Map> const& source, PolyMeshTopology const& source_topology,
                CoreArray<Map>& clone, PolyMeshTopology& clone_topology) {
    clone.copy_from(source);
    for (Map& map : clone) {
        map.polygon_indices = owns_indices(map, source_topology)
                                  ? new CoreIndexArray(*map.polygon_indices)
                                  : &clone_topology.polygon_vertex_indices;
    }
}

}  // namespace

PolyMeshTopology::~PolyMeshTopology() {
    clear_maps(uv_maps, *this);
    clear_maps(color_maps, *this);
}

void PolyMeshTopology::clone_from(PolyMeshTopology const& other) {
    polygon_vertex_count = other.polygon_vertex_count;
    polygon_vertex_indices = other.polygon_vertex_indices;
    polygon_shading_groups = other.polygon_shading_groups;
    triangle_indices = other.triangle_indices;
    primitive_polygon_indices = other.primitive_polygon_indices;
    primitive_index_offsets = other.primitive_index_offsets;
    primitive_shading_groups = other.primitive_shading_groups;
    primitive_infos = other.primitive_infos;
    uniform_corner_count = other.uniform_corner_count;
    uniform_info = other.uniform_info;
    primitive_index_count = other.primitive_index_count;
    triangle_count = other.triangle_count;
    quad_count = other.quad_count;
    shading_group_names = other.shading_group_names;
    clone_maps(other.uv_maps, other, uv_maps, *this);
    clone_maps(other.color_maps, other, color_maps, *this);
    uv_map_compression_mode = other.uv_map_compression_mode;
}
