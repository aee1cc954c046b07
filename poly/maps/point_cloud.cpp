#include <poly/mesh/poly_mesh.h>
#include <poly/mesh/primitive_corners.h>
#include <poly/mesh/progress_task.h>

namespace {

// Where the corners of a primitive lie on it, in corner order.
GMathVec2<float> const triangle_corners[3] = {{0, 0}, {1, 0}, {0, 1}};
GMathVec2<float> const quad_corners[4] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};

}  // namespace

// A vertex of several primitives is carried by the last of them.
void PolyMesh::build_support_info(AppProgressBar* progress) {
    unsigned int const point_count = m_point_cloud.get_point_count();
    CoreArray<unsigned int> primitives(point_count);
    primitives.fill(CoreIndexArray::absent);
    CoreArray<GMathVec2<float>> uvs(point_count);
    uvs.fill({0, 0});

    unsigned int const primitive_count = get_primitive_count();
    set_step_count(progress, primitive_count);
    for (unsigned int primitive = 0; primitive < primitive_count; ++primitive) {
        unsigned int vertices[4];
        unsigned int const count = get_primitive_vertices(*m_topology, primitive, vertices);
        GMathVec2<float> const* const corners = count == 4 ? quad_corners : triangle_corners;
        for (unsigned int k = 0; k < count; ++k) {
            primitives[vertices[k]] = primitive;
            uvs[vertices[k]] = corners[k];
        }
        step(progress, primitive + 1);
    }
    GeometryDescriptor support;
    support.geometry = this;
    support.base_geometry = this;
    m_point_cloud.init_support(support, primitives.get_data(), uvs.get_data());
}

GeometryPointCloud const* PolyMesh::get_point_cloud() const { return &m_point_cloud; }

bool PolyMesh::set_point_cloud(GeometryPointCloud const& point_cloud, AppProgressBar* progress) {
    if (!point_cloud.is_version_of(m_point_cloud)) {
        return false;
    }
    own_geometry_copy();
    m_point_cloud = point_cloud;
    {
        ProgressTask const task(progress, "update normals", 0.5f);
        update_normals(progress);
    }
    {
        ProgressTask const task(progress, "update bbox", 0.5f);
        update_bbox(progress);
    }
    m_geometry->normal_maps.clear();  // their indices refer to the old normals
    return true;
}
