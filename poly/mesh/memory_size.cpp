#include <poly/mesh/array_sizes.h>
#include <poly/mesh/poly_mesh.h>

namespace {

// The bytes of the object beside its point cloud.
constexpr unsigned long long object_size = 128;

// Both size fields of a name count, each with its own 16 bytes.
unsigned long long get_names_size(CoreArray<CoreString> const& names) {
    unsigned long long size = get_array_size(names, 0);
    for (CoreString const& name : names) {
        size += 16 + name.get_length();
        size += 16 + name.get_allocated_size();
    }
    return size;
}

unsigned long long get_uv_maps_size(PolyMeshTopology const& topology) {
    unsigned long long size = 16;
    for (PolyMeshUvMap const& map : topology.uv_maps) {
        size += map.values.get_memory_size() + 24 + map.name.get_length();
        size += get_own_index_size(map, topology);
    }
    return size;
}

unsigned long long get_color_maps_size(PolyMeshTopology const& topology) {
    unsigned long long size = 0;
    for (PolyMeshColorMap const& map : topology.color_maps) {
        size += get_array_size(map.values, 4) + 24 + map.name.get_length();
        size += get_own_index_size(map, topology);
    }
    return size;
}

// The creases are not counted, deliberately.
unsigned long long get_topology_size(PolyMeshTopology const& topology) {
    constexpr unsigned long long counters_size = 12;
    return topology.polygon_vertex_count.get_memory_size() +
           topology.polygon_vertex_indices.get_memory_size() +
           topology.polygon_shading_groups.get_memory_size() +
           topology.triangle_indices.get_memory_size() +
           topology.primitive_polygon_indices.get_memory_size() +
           topology.primitive_index_offsets.get_memory_size() +
           topology.primitive_shading_groups.get_memory_size() +
           get_array_size(topology.primitive_infos, 1) +
           get_names_size(topology.shading_group_names) + counters_size +
           get_uv_maps_size(topology) + get_color_maps_size(topology);
}

// The mesh box counts, the mesh's normal sum does not.
unsigned long long get_geometry_size(PolyMeshGeometry const& geometry) {
    unsigned long long size = 16;
    for (PolyMeshNormalMap const& map : geometry.normal_maps) {
        size += map.polygon_indices.get_memory_size() + 16 + map.normals.get_memory_size() +
                map.name.get_length();
    }
    return size + get_array_size(geometry.shading_group_bbox, sizeof(GMathBbox3<float>)) +
           get_array_size(geometry.shading_group_normals, sizeof(PolyMeshNormalSum)) +
           sizeof(geometry.mesh_bbox);
}

}  // namespace

unsigned long long PolyMesh::get_memory_size() const {
    unsigned long long size = m_point_cloud.get_memory_size() + object_size;
    if ((m_ownership & OWNS_TOPOLOGY) != 0) {
        size += get_topology_size(*m_topology);
    }
    if ((m_ownership & OWNS_GEOMETRY) != 0) {
        size += get_geometry_size(*m_geometry);
    }
    return size;
}
