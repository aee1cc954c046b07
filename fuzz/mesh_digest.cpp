#include <fuzz/mesh_digest.h>

#include <cstdint>
#include <string_view>

namespace {

class Digest {
  public:
    std::size_t const& get() const { return m_digest; }

    template <typename T>
    void add(CoreBasicArray<T> const& values) {
        add_value(values.get_count());
        add_bytes(values.get_data(), sizeof(T) * std::size_t(values.get_count()));
    }
    void add(CoreBasicArray<CoreString> const& names) {
        add_value(names.get_count());
        for (CoreString const& name : names) {
            add(name);
        }
    }
    void add(CoreIndexArray const& indices) {
        CoreArray<unsigned int> values;
        indices.get_array(values);
        add<unsigned int>(values);
        add_value(indices.get_bit_count());
    }
    void add(CoreString const& name) { add_bytes(name.get_data(), name.get_length()); }
    template <typename T>
    void add_value(T const& value) {
        add_bytes(&value, sizeof value);
    }

  private:
    void add_bytes(void const* bytes, std::size_t const& size) {
        std::string_view const view(static_cast<char const*>(bytes), size);
        m_digest = m_digest * 0x9E3779B97F4A7C15ull + std::hash<std::string_view>()(view);
    }

    std::size_t m_digest = 0;
};

void add_topology(PolyMeshTopology const& topology, Digest& digest) {
    for (CoreIndexArray const* const indices :
         {&topology.polygon_vertex_count, &topology.polygon_vertex_indices,
          &topology.polygon_shading_groups, &topology.triangle_indices,
          &topology.primitive_polygon_indices, &topology.primitive_index_offsets,
          &topology.primitive_shading_groups}) {
        digest.add(*indices);
    }
    digest.add<unsigned char>(topology.primitive_infos);
    digest.add_value(topology.primitive_index_count);
    digest.add_value(topology.triangle_count);
    digest.add_value(topology.quad_count);
    digest.add(topology.shading_group_names);
    for (PolyMeshUvMap const& map : topology.uv_maps) {
        CoreArray<GMathVec3<float>> values;
        map.values.get_array(values);
        digest.add<GMathVec3<float>>(values);
        digest.add(*map.polygon_indices);
        digest.add(map.name);
    }
    for (PolyMeshColorMap const& map : topology.color_maps) {
        digest.add<GMathVec4<unsigned char>>(map.values);
        digest.add(*map.polygon_indices);
        digest.add(map.name);
    }
    digest.add_value(topology.uv_map_compression_mode);
    digest.add<float>(topology.crease_sharpnesses);
    digest.add<int>(topology.crease_indices);
}

void add_geometry(PolyMeshGeometry const& geometry, Digest& digest) {
    for (PolyMeshNormalMap const& map : geometry.normal_maps) {
        digest.add<GMathShortNormal>(map.normals);
        digest.add(map.polygon_indices);
        digest.add(map.name);
    }
    digest.add<GMathBbox3<float>>(geometry.shading_group_bbox);
    digest.add<PolyMeshNormalSum>(geometry.shading_group_normals);
    digest.add_value(geometry.mesh_bbox);
    digest.add_value(geometry.mesh_normal);
}

void add_points(GeometryPointCloudData const& points, Digest& digest) {
    digest.add<GMathVec3<float>>(points.positions);
    digest.add<GMathShortNormal>(points.normals);
    digest.add<GMathVec3<float>>(points.velocities);
    digest.add(points.primitive_indices);
    digest.add<GeometryPointCloudData::PackedUv>(points.primitive_uvs);
}

}  // namespace

std::size_t get_digest(PolyMesh const& mesh) {
    Digest digest;
    add_topology(mesh.get_topology(), digest);
    add_geometry(mesh.get_geometry(), digest);
    add_points(mesh.get_point_cloud()->get_data(), digest);
    digest.add_value(mesh.get_hash_key());
    digest.add_value(reinterpret_cast<std::uintptr_t>(mesh.get_import_data()));
    digest.add_value(mesh.get_memory_size());
    return digest.get();
}
