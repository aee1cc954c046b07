#include <poly/maps/normal_maps.h>
#include <poly/render/surface_sampling.h>
#include <poly/render/vertex_fetch.h>
#include <poly/smoothed/poly_mesh_smoothed.h>

#include <cmath>

GMathVec3<float>
PolyMeshSmoothed::get_polygon_vertex_normal(unsigned int const& corner,
                                            GMathVec3<float> const& face_normal) const {
    GeometryPointCloudData const& data = m_mesh->get_point_cloud()->get_data();
    unsigned int const index = m_current_normal_map->polygon_indices[corner];
    if (index == CoreIndexArray::absent) {
        return face_normal;
    }
    return (index >= data.point_count ? m_current_normal_map->normals[index - data.point_count]
                                      : data.normals[index])
        .decode();
}

void PolyMeshSmoothed::compute_fragment_sample(CtxEval const& ctx, GeometryFragment const& fragment,
                                               GeometrySample& sample) const {
    compute_mesh_sample(
        ctx, m_mesh->get_topology(), m_mesh->get_point_cloud()->get_data(), fragment,
        [this](SurfacePlace const& place, GMathFloatLanes(&normals)[3]) {
            GMathVec3<float> const face_normal = compute_flat_normal(
                gmath_vec3<float>(place.positions[0]), gmath_vec3<float>(place.positions[1]),
                gmath_vec3<float>(place.positions[2]));
            auto const load_normal = [&](unsigned int const& corner) {
                return gmath_lanes(get_polygon_vertex_normal(corner, face_normal));
            };
            normals[0] = load_normal(place.corner_ids.a);
            normals[1] = load_normal(place.corner_ids.b);
            normals[2] = load_normal(place.corner_ids.c);
        },
        sample);
}

unsigned int PolyMeshSmoothed::get_primitive_vertices(CtxEval const& ctx,
                                                      GeometryPrimitiveDescriptor const& descriptor,
                                                      GMathVec3<double>* positions) const {
    if (descriptor.primitive_index >= m_mesh->get_primitive_count()) {
        return 0;
    }
    PolyMeshTopology const& topology = m_mesh->get_topology();
    GeometryPointCloudData const& data = m_mesh->get_point_cloud()->get_data();
    GMathVec3<float> corners[4];
    unsigned int count;
    if (std::fabs(descriptor.time) > time_epsilon && data.is_moving()) {
        GeometryPositionArray blend;
        compute_position_blend(data, descriptor.time, get_shutter_sampling(ctx), blend);
        count = fetch_corner_positions(topology, descriptor.primitive_index, blend, corners);
    } else {
        count =
            fetch_corner_positions(topology, descriptor.primitive_index, data.positions, corners);
    }
    for (unsigned int k = 0; k < count; ++k) {
        positions[k] = GMathVec3<double>(corners[k]);
    }
    return count;
}
