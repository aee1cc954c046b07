#include <poly/mesh/poly_mesh.h>
#include <poly/mesh/primitive_corners.h>
#include <poly/mesh/progress_task.h>

namespace {

// Where the corners of a quad and those of a triangle lie on it, in corner order.
constexpr unsigned int triangle_place = 4;
GMathVec2<float> const places_on_primitive[7] = {{0, 0}, {1, 0}, {1, 1}, {0, 1},
                                                 {0, 0}, {1, 0}, {0, 1}};

}  // namespace

// A vertex of several primitives is carried by the last of them.
void PolyMesh::build_support_info(AppProgressBar* progress) {
    unsigned int const point_count = m_point_cloud.get_point_count();
    CoreArray<unsigned int> primitives(point_count);
    primitives.fill(CoreIndexArray::absent);
    // At first only the x of a vertex is used, for the number of its place: half of the writing.
    CoreArray<GMathVec2<float>> uvs(point_count);
    uvs.fill({0, 0});

    unsigned int const primitive_count = get_primitive_count();
    set_step_count(progress, primitive_count);
    unsigned int* const carriers = primitives.get_data();
    GMathVec2<float>* const places = uvs.get_data();
    PrimitiveReader(*m_topology)
        .visit_all(primitive_count, [&](unsigned int const& first, unsigned int const* vertices,
                                        unsigned int const& size, unsigned int const& count) {
            unsigned int const first_place = size == 4 ? 0 : triangle_place;
            for (unsigned int i = 0; i < count; ++i, vertices += size) {
                for (unsigned int k = 0; k < size; ++k) {
                    carriers[vertices[k]] = first + i;
                    places[vertices[k]].x = static_cast<float>(first_place + k);
                }
            }
            step_through(progress, first, first + count);
        });
    for (GMathVec2<float>& uv : uvs) {
        uv = places_on_primitive[static_cast<unsigned int>(uv.x)];
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
