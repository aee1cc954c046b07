#include <poly/maps/map_assignment.h>
#include <poly/mesh/poly_mesh.h>
#include <poly/mesh/primitive_indices.h>

void PolyMesh::assign_color_maps(CoreBasicArray<GeometryColorMap> const& color_maps,
                                 unsigned int const& vertex_count) {
    assign_maps(color_maps, vertex_count, *m_topology, m_topology->color_maps,
                [](GeometryColorMap const& map, PolyMeshColorMap& entry) {
                    entry.values.copy_from(map.values);
                });
}

unsigned int PolyMesh::get_color_map_count() const { return m_topology->color_maps.get_count(); }

CoreString const& PolyMesh::get_color_map_name(unsigned int const& map) const {
    return m_topology->color_maps[map].name;
}

bool PolyMesh::get_color_map_data(unsigned int const& map,
                                  CoreArray<GMathVec4<unsigned char>>& values,
                                  CoreArray<unsigned int>& indices) const {
    if (map >= get_color_map_count()) {
        return false;
    }
    PolyMeshColorMap const& stored = m_topology->color_maps[map];
    values.copy_from(stored.values);
    gather_primitive_indices(*m_topology, *stored.polygon_indices, indices);
    return true;
}

bool PolyMesh::get_polygon_color_map_data(unsigned int const& map,
                                          CoreArray<GMathVec4<unsigned char>>& values,
                                          CoreArray<unsigned int>& indices,
                                          bool const& always_indices) const {
    if (map >= get_color_map_count()) {
        return false;
    }
    PolyMeshColorMap const& stored = m_topology->color_maps[map];
    values.copy_from(stored.values);
    get_corner_indices(stored, *m_topology, always_indices, indices);
    return true;
}
