#include <poly/smoothed/poly_mesh_smoothed.h>

#include <poly/maps/normal_maps.h>
#include <poly/mesh/log_message.h>
#include <poly/smoothed/smoothing_build.h>

#include <new>

PolyMeshSmoothed::PolyMeshSmoothed() : m_normal_map(new PolyMeshNormalMap) {}

PolyMeshSmoothed::PolyMeshSmoothed(PolyMeshSmoothed const& other)
    : PolyMeshSmoothed(other, new PolyMeshNormalMap(*other.m_normal_map)) {}

PolyMeshSmoothed::PolyMeshSmoothed(PolyMeshSmoothed const& other, PolyMeshNormalMap* normal_map)
    : PolyMeshBase(other),
      m_mesh(other.m_mesh),
      m_normal_map(normal_map),
      m_current_normal_map(other.uses_own_map() ? m_normal_map : other.m_current_normal_map) {}

PolyMeshSmoothed& PolyMeshSmoothed::operator=(PolyMeshSmoothed const& other) {
    PolyMeshBase::operator=(other);
    m_mesh = other.m_mesh;
    m_normal_map = other.m_normal_map;
    m_current_normal_map = other.m_current_normal_map;
    m_normal_map_index = other.m_normal_map_index;
    return *this;
}

PolyMeshSmoothed::~PolyMeshSmoothed() { delete m_normal_map; }

PolyMeshSmoothed* PolyMeshSmoothed::get_copy() const {
    PolyMeshNormalMap* const map = new (std::nothrow) PolyMeshNormalMap(*m_normal_map);
    PolyMeshSmoothed* const copy = map ? new (std::nothrow) PolyMeshSmoothed(*this, map) : nullptr;
    if (!copy) {
        delete map;
    }
    return copy;
}

void PolyMeshSmoothed::set(PolyMesh const& mesh, double const& smoothing_angle,
                           unsigned int const& normal_map_index, AppProgressBar* progress) {
    m_mesh = &mesh;
    if (mesh.get_primitive_count() == 0) {
        return;
    }
    build_smoothed_normals(mesh.get_topology(), mesh.get_point_cloud()->get_data().positions,
                           smoothing_angle, *m_normal_map, progress);
    m_normal_map_index = normal_map_index;
    m_current_normal_map = m_normal_map_index < mesh.get_normal_map_count()
                               ? &mesh.get_geometry().normal_maps[m_normal_map_index]
                               : m_normal_map;
}

void PolyMeshSmoothed::find_hard_edges(PolyMesh const& mesh, double const& smoothing_angle,
                                       CoreArray<unsigned char>& edges) {
    ::find_hard_edges(mesh.get_topology(), mesh.get_point_cloud()->get_data().positions,
                      smoothing_angle, edges);
}

unsigned long long PolyMeshSmoothed::get_memory_size() const {
    return sizeof(PolyMeshSmoothed) + m_normal_map->polygon_indices.get_memory_size() +
           m_normal_map->normals.get_memory_size() + m_normal_map->name.get_length();
}

void PolyMeshSmoothed::print_stats() const {
    unsigned long long const indices = m_normal_map->polygon_indices.get_memory_size();
    unsigned long long const normals = m_normal_map->normals.get_memory_size();
    unsigned long long const map = indices + normals + m_normal_map->name.get_length() + 16;
    log_message(LOG_INFORMATION, "GEOMETRY SMOOTH: ", get_memory_size(), "\n");
    log_message(LOG_INFORMATION, "  normal_map:                     ", map, "\n");
    log_message(LOG_INFORMATION, "    polygon_indices:              ", indices, "\n");
    log_message(LOG_INFORMATION, "    normals:                      ", normals, "\n");
}

// A mesh without primitives that was set last has left the map of the one before.
bool PolyMeshSmoothed::is_own_map_of_mesh() const {
    return uses_own_map() && m_mesh->get_primitive_count() != 0;
}

unsigned int PolyMeshSmoothed::get_normal_map_count() const {
    return uses_own_map() ? 1 : m_mesh->get_normal_map_count();
}

CoreString const& PolyMeshSmoothed::get_normal_map_name(unsigned int const& map) const {
    return uses_own_map() ? m_normal_map->name : m_mesh->get_normal_map_name(map);
}

bool PolyMeshSmoothed::get_normal_map_data(unsigned int const& map,
                                           CoreArray<GMathVec3<float>>& values,
                                           CoreArray<unsigned int>& indices) const {
    if (!is_own_map_of_mesh()) {
        return m_mesh->get_normal_map_data(map, values, indices);
    }
    read_primitive_normals(*m_normal_map, m_mesh->get_topology(),
                           m_mesh->get_point_cloud()->get_data(), values, indices);
    return true;
}

bool PolyMeshSmoothed::get_polygon_normal_map_data(unsigned int const& map,
                                                   CoreArray<GMathVec3<float>>& values,
                                                   CoreArray<unsigned int>& indices) const {
    if (!is_own_map_of_mesh()) {
        return m_mesh->get_polygon_normal_map_data(map, values, indices);
    }
    read_polygon_normals(*m_normal_map, m_mesh->get_topology(),
                         m_mesh->get_point_cloud()->get_data(), values, indices);
    return true;
}
