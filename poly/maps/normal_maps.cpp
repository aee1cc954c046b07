#include <poly/maps/normal_maps.h>

#include <poly/maps/map_acceptance.h>
#include <poly/mesh/poly_mesh.h>
#include <poly/mesh/progress_task.h>

#include <algorithm>

void PolyMesh::set_normal_maps(CoreBasicArray<GeometryNormalMap> const& normal_maps,
                               AppProgressBar* progress) {
    own_geometry_copy();
    CoreArray<PolyMeshNormalMap>& stored = m_geometry->normal_maps;
    stored.clear();
    float const weight = 1.0f / static_cast<float>(std::max(normal_maps.get_count(), 1u));
    for (GeometryNormalMap const& map : normal_maps) {
        ProgressTask const task(progress, map.name.get_data(), weight);
        if (is_accepted(map, get_vertex_count(), get_polygon_index_count())) {
            stored.append(PolyMeshNormalMap());
            store_normal_map(map, *m_topology, m_point_cloud.get_data(),
                             stored[stored.get_count() - 1], progress);
        }
    }
    stored.shrink_to_fit();
}

unsigned int PolyMesh::get_normal_map_count() const { return m_geometry->normal_maps.get_count(); }

CoreString const& PolyMesh::get_normal_map_name(unsigned int const& map) const {
    return m_geometry->normal_maps[map].name;
}

bool PolyMesh::get_normal_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                                   CoreArray<unsigned int>& indices) const {
    if (map >= get_normal_map_count()) {
        return false;
    }
    read_primitive_normals(m_geometry->normal_maps[map], *m_topology, m_point_cloud.get_data(),
                           values, indices);
    return true;
}

bool PolyMesh::get_polygon_normal_map_data(unsigned int const& map,
                                           CoreArray<GMathVec3<float>>& values,
                                           CoreArray<unsigned int>& indices) const {
    if (map >= get_normal_map_count()) {
        return false;
    }
    read_polygon_normals(m_geometry->normal_maps[map], *m_topology, m_point_cloud.get_data(),
                         values, indices);
    return true;
}
