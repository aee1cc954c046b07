#include <poly/mesh/poly_mesh.h>
#include <poly/mesh/primitive_corners.h>
#include <poly/mesh/primitive_indices.h>

#include <cassert>

unsigned int PolyMesh::get_polygon_count() const {
    return m_topology->polygon_vertex_count.get_count();
}

unsigned int PolyMesh::get_polygon_index_count() const {
    return m_topology->polygon_vertex_indices.get_count();
}

void PolyMesh::get_polygon_vertex_count(CoreArray<unsigned int>& counts) const {
    m_topology->polygon_vertex_count.get_array(counts);
}

void PolyMesh::get_polygon_vertex_indices(CoreArray<unsigned int>& indices) const {
    m_topology->polygon_vertex_indices.get_array(indices);
}

void PolyMesh::get_polygon_shading_groups(CoreArray<unsigned int>& groups) const {
    m_topology->polygon_shading_groups.get_array(groups);
}

void PolyMesh::set_creases(CoreArray<int> const& indices, CoreArray<float> const& sharpnesses) {
    own_topology_copy();
    m_topology->crease_indices = indices;
    m_topology->crease_sharpnesses = sharpnesses;
}

CoreArray<int> const& PolyMesh::get_polygon_creases_indice() const {
    return m_topology->crease_indices;
}

void PolyMesh::get_polygon_creases_indice(CoreArray<int>& indices) const {
    indices = m_topology->crease_indices;
}

CoreArray<float> const& PolyMesh::get_polygon_creases_sharpnesses() const {
    return m_topology->crease_sharpnesses;
}

void PolyMesh::get_polygon_creases_sharpnesses(CoreArray<float>& sharpnesses) const {
    sharpnesses = m_topology->crease_sharpnesses;
}

unsigned int PolyMesh::get_primitive_index_count() const {
    return m_topology->primitive_index_count;
}

unsigned int PolyMesh::get_primitive_polygon_id(unsigned int const& primitive) const {
    return m_topology->primitive_polygon_indices[primitive];
}

void PolyMesh::set_primitive_edge_visibility(unsigned int const& primitive,
                                             unsigned int const& edge, bool const& visible) {
    assert(primitive < get_primitive_count() && edge < 4);
    unsigned int const mask = PolyMeshPrimitiveInfo::get_edge_bit(edge);
    bool const is_set = visible;
    own_topology_copy();
    unsigned char& info = m_topology->primitive_infos[primitive];
    info = static_cast<unsigned char>(is_set ? info | mask : info & ~mask);
}

void PolyMesh::set_uv_map_compression_mode(CompressionMode const& mode) {
    CompressionMode const new_mode = mode;
    own_topology_copy();
    m_topology->uv_map_compression_mode = new_mode;
}

PolyMesh::CompressionMode const& PolyMesh::get_uv_map_compression_mode() const {
    return m_topology->uv_map_compression_mode;
}

Core128BitHashKey PolyMesh::get_hash_key() const { return m_hash_key; }

CoreArray<CoreString> const& PolyMesh::get_shading_group_names() const {
    return m_topology->shading_group_names;
}

void PolyMesh::get_primitive_indices(CoreArray<unsigned int>& indices) const {
    gather_primitive_indices(*m_topology, m_topology->polygon_vertex_indices, indices);
}

bool PolyMesh::is_animated() const { return m_point_cloud.is_animated(); }

unsigned int PolyMesh::get_vertex_count() const { return m_point_cloud.get_point_count(); }

unsigned int PolyMesh::get_primitive_count() const {
    return m_topology->primitive_infos.get_count();
}

unsigned int PolyMesh::get_primitive_edge_count(unsigned int const& primitive) const {
    return is_quad(*m_topology, primitive) ? 4 : 3;
}

unsigned int PolyMesh::get_primitive_shading_group_index(unsigned int const& primitive) const {
    return m_topology->primitive_shading_groups[primitive];
}

bool PolyMesh::is_primitive_edge_visible(unsigned int const& primitive,
                                         unsigned int const& edge) const {
    assert(edge < 4);
    unsigned int const mask = PolyMeshPrimitiveInfo::get_edge_bit(edge);
    return (m_topology->primitive_infos[primitive] & mask) != 0;
}

bool PolyMesh::is_geometry_linear() const { return true; }
bool PolyMesh::is_primitive_linear(unsigned int const&) const { return true; }
bool PolyMesh::is_primitive_edge_linear(unsigned int const&, unsigned int const&) const {
    return true;
}
