#include <poly/mesh/poly_mesh.h>

#include <poly/mesh/content_key.h>
#include <poly/mesh/mesh_bounds.h>
#include <poly/mesh/primitive_building.h>
#include <poly/mesh/progress_task.h>
#include <poly/mesh/vertex_normals.h>

PolyMesh::PolyMesh()
    : m_topology(new PolyMeshTopology),
      m_geometry(new PolyMeshGeometry),
      m_hash_key(CoreHash::null_key()),
      m_ownership(OWNS_TOPOLOGY | OWNS_GEOMETRY) {}

PolyMesh::PolyMesh(PolyMesh const& other)
    : PolyMeshBase(other),
      m_point_cloud(other.m_point_cloud, false),
      m_topology(other.m_topology),
      m_geometry(other.m_geometry),
      m_hash_key(other.m_hash_key),
      m_ownership(0) {}

// Deliberate: frees nothing, and takes the ownership as it stands in the source.
PolyMesh& PolyMesh::operator=(PolyMesh const& other) {
    PolyMeshBase::operator=(other);
    m_point_cloud = other.m_point_cloud;
    m_topology = other.m_topology;
    m_geometry = other.m_geometry;
    m_hash_key = other.m_hash_key;
    m_ownership = other.m_ownership;
    return *this;
}

PolyMesh::~PolyMesh() {
    if ((m_ownership & OWNS_TOPOLOGY) != 0) {
        delete m_topology;
    }
    if ((m_ownership & OWNS_GEOMETRY) != 0) {
        delete m_geometry;
    }
}

PolyMesh* PolyMesh::get_copy() const { return new PolyMesh(*this); }

void PolyMesh::own_new_records() {
    if ((m_ownership & OWNS_TOPOLOGY) == 0) {
        m_topology = new PolyMeshTopology;
    }
    if ((m_ownership & OWNS_GEOMETRY) == 0) {
        m_geometry = new PolyMeshGeometry;
    }
    m_ownership |= OWNS_TOPOLOGY | OWNS_GEOMETRY;
}

void PolyMesh::own_topology_copy() {
    if ((m_ownership & OWNS_TOPOLOGY) == 0) {
        auto* const topology = new PolyMeshTopology;
        topology->clone_from(*m_topology);
        m_topology = topology;
        m_ownership |= OWNS_TOPOLOGY;
    }
}

void PolyMesh::own_geometry_copy() {
    if ((m_ownership & OWNS_GEOMETRY) == 0) {
        m_geometry = new PolyMeshGeometry(*m_geometry);
        m_ownership |= OWNS_GEOMETRY;
    }
}

void PolyMesh::set(CoreBasicArray<GMathVec3<float>> const& positions,
                   CoreBasicArray<GMathVec3<float>> const& velocities,
                   CoreBasicArray<unsigned int> const& polygon_vertex_indices,
                   CoreBasicArray<unsigned int> const& polygon_vertex_count,
                   CoreBasicArray<unsigned int> const& polygon_shading_groups,
                   CoreBasicArray<CoreString> const& shading_group_names,
                   CoreBasicArray<GeometryUvMap> const& uv_maps,
                   CoreBasicArray<GeometryNormalMap> const& normal_maps,
                   CoreBasicArray<GeometryColorMap> const& color_maps, bool const& check_quads,
                   AppProgressBar* progress) {
    PolyMeshPolygons const polygons{polygon_vertex_indices, polygon_vertex_count,
                                    polygon_shading_groups};
    if (!is_buildable("PolyMesh.set", polygons, positions.get_count())) {
        set({}, {}, {}, {}, {}, {}, {}, {}, {}, false, nullptr);
        return;
    }
    m_hash_key = compute_content_key(positions, velocities, polygons);
    install(positions, velocities, polygons, shading_group_names, uv_maps, color_maps);
    bool const has_normal_maps = !normal_maps.is_empty();
    {
        ProgressTask const task(progress, "build primitives", has_normal_maps ? 0.4f : 0.5f);
        build_primitives(polygons, check_quads, progress);
    }
    {
        ProgressTask const task(progress, "update normals", has_normal_maps ? 0.15f : 0.2f);
        update_normals(progress);
    }
    if (has_normal_maps) {
        ProgressTask const task(progress, "set normal maps", 0.15f);
        set_normal_maps(normal_maps, progress);
    } else {
        m_geometry->normal_maps.clear();
    }
    {
        ProgressTask const task(progress, "build support info", 0.1f);
        build_support_info(progress);
    }
    {
        ProgressTask const task(progress, "update bbox", 0.2f);
        update_bbox(progress);
    }
}

void PolyMesh::install(CoreBasicArray<GMathVec3<float>> const& positions,
                       CoreBasicArray<GMathVec3<float>> const& velocities,
                       PolyMeshPolygons const& polygons,
                       CoreBasicArray<CoreString> const& shading_group_names,
                       CoreBasicArray<GeometryUvMap> const& uv_maps,
                       CoreBasicArray<GeometryColorMap> const& color_maps) {
    own_new_records();
    // The positions may be those of our own point cloud, and end with its old arrays.
    unsigned int const vertex_count = positions.get_count();
    bool const has_velocities = velocities.get_count() == vertex_count;
    m_point_cloud.init(vertex_count, positions.get_data(), nullptr,
                       has_velocities ? velocities.get_data() : nullptr);
    m_topology->polygon_vertex_indices.copy_from(polygons.vertex_indices);
    m_topology->polygon_vertex_count.copy_from(polygons.vertex_count);
    m_topology->polygon_shading_groups.copy_from(polygons.shading_groups);
    m_topology->shading_group_names.copy_from(shading_group_names);
    assign_uv_maps(uv_maps, vertex_count);
    assign_color_maps(color_maps, vertex_count);
}

void PolyMesh::rebuild(PolyMeshPolygons const& polygons, bool const& check_quads,
                       CoreBasicArray<GeometryNormalMap> const& normal_maps) {
    build_primitives(polygons, check_quads, nullptr);
    update_normals(nullptr);
    set_normal_maps(normal_maps, nullptr);
    build_support_info(nullptr);
    update_bbox(nullptr);
}

void PolyMesh::build_primitives(PolyMeshPolygons const& polygons, bool const& check_quads,
                                AppProgressBar* progress) {
    unsigned int const degenerate_count = ::build_primitives(
        polygons, m_point_cloud.get_data().positions, check_quads, *m_topology, progress);
    if (degenerate_count != 0) {
        log_degenerate_triangles(degenerate_count, progress);
    }
    unsigned int const group_count = m_topology->shading_group_names.get_count();
    m_geometry->shading_group_bbox.reset(group_count);
    m_geometry->shading_group_bbox.fill(GMathBbox3<float>::get_zero());
    m_geometry->shading_group_normals.reset(group_count);
    m_geometry->shading_group_normals.fill(PolyMeshNormalSum());
}

void PolyMesh::update_normals(AppProgressBar* progress) {
    CoreArray<GMathVec3<float>> normals;
    compute_vertex_normals(*m_topology, m_point_cloud.get_data().positions, normals, *m_geometry,
                           progress);
    m_point_cloud.init_normals(normals, false);
}

void PolyMesh::update_bbox(AppProgressBar* progress) {
    update_bounds(*m_topology, m_point_cloud.get_data().positions, *m_geometry, progress);
}
