#include <poly/maps/map_assignment.h>
#include <poly/maps/uv_compression.h>
#include <poly/mesh/poly_mesh.h>
#include <poly/mesh/primitive_corners.h>
#include <poly/mesh/primitive_indices.h>

namespace {

// `given` are the indices before they were packed: one look at them mostly shows that all are
// valid. Deliberate: an index equal to the count stays, though it names no value either.
void clear_invalid_indices(CoreIndexArray& indices, CoreBasicArray<unsigned int> const& given,
                           unsigned int const& value_count) {
    unsigned int const limit = value_count;
    bool is_any_invalid = false;
    for (unsigned int const index : given) {
        is_any_invalid |= (index > limit) & (index != CoreIndexArray::absent);
    }
    if (!is_any_invalid) {
        return;
    }
    for (unsigned int corner = 0; corner < indices.get_count(); ++corner) {
        if (indices[corner] > value_count) {
            indices.set_absent(corner);
        }
    }
}

}  // namespace

void PolyMesh::assign_uv_maps(CoreBasicArray<GeometryUvMap> const& uv_maps,
                              unsigned int const& vertex_count) {
    assign_maps(
        uv_maps, vertex_count, *m_topology, m_topology->uv_maps,
        [this](GeometryUvMap const& map, PolyMeshUvMap& entry) {
            if (owns_indices(entry, *m_topology)) {
                clear_invalid_indices(*entry.polygon_indices, map.indices, map.values.get_count());
            }
            compress_uv_values(*m_topology, *entry.polygon_indices, map.values, entry.values);
        });
}

unsigned int PolyMesh::get_uv_map_count() const { return m_topology->uv_maps.get_count(); }

CoreString const& PolyMesh::get_uv_map_name(unsigned int const& map) const {
    return m_topology->uv_maps[map].name;
}

bool PolyMesh::get_uv_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                               CoreArray<unsigned int>& indices) const {
    if (map >= get_uv_map_count()) {
        return false;
    }
    PolyMeshUvMap const& stored = m_topology->uv_maps[map];
    stored.values.get_array(values);
    gather_primitive_indices(*m_topology, *stored.polygon_indices, indices);
    return true;
}

bool PolyMesh::get_polygon_uv_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                                       CoreArray<unsigned int>& indices,
                                       bool const& always_indices) const {
    if (map >= get_uv_map_count()) {
        return false;
    }
    PolyMeshUvMap const& stored = m_topology->uv_maps[map];
    stored.values.get_array(values);
    get_corner_indices(stored, *m_topology, always_indices, indices);
    return true;
}

bool PolyMesh::is_primitive_uv_mapped(unsigned int const& primitive,
                                      unsigned int const& map) const {
    if (map >= get_uv_map_count()) {
        return false;
    }
    PolyMeshUvMap const& stored = m_topology->uv_maps[map];
    unsigned int ids[4];
    unsigned int const count = get_primitive_corner_ids(*m_topology, primitive, ids);
    for (unsigned int k = 0; k < count; ++k) {
        if ((*stored.polygon_indices)[ids[k]] >= stored.values.get_count()) {
            return false;
        }
    }
    return true;
}
