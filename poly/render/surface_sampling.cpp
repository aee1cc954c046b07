#include <poly/mesh/poly_mesh.h>
#include <poly/render/surface_sampling.h>
#include <poly/render/vertex_fetch.h>

#include <cmath>

namespace {

// The vertices' positions at a time at which the mesh is in motion.
void fetch_moving_positions(CtxEval const& ctx, GeometryPointCloudData const& data,
                            double const& time, unsigned int const (&vertices)[3],
                            GMathVec3<float> (&positions)[3]) {
    GeometryPositionArray blend;
    compute_position_blend(data, time, get_shutter_sampling(ctx), blend);
    fetch_positions(blend, vertices, 3, positions);
}

// `p` dropped onto the plane through `corner` at a right angle to `normal`.
GMathVec3<float> project_on_tangent_plane(GMathVec3<float> const& p, GMathVec3<float> const& corner,
                                          GMathVec3<float> const& normal) {
    float const square = gmath_dot(normal, normal);
    return square == 0.0f ? p : p + normal * (gmath_dot(normal, corner - p) / square);
}

}  // namespace

SurfacePlace fetch_surface_place(CtxEval const& ctx, PolyMeshTopology const& topology,
                                 GeometryPointCloudData const& data,
                                 GeometryFragment const& fragment) {
    unsigned int const primitive = fragment.primitive_index;
    SurfacePlace place;
    place.weights = compute_sampling_weights(is_quad(topology, primitive), fragment.s, fragment.t);
    get_surface_corner_ids(topology, primitive, *place.weights.triangle, place.corner_ids);
    for (unsigned int k = 0; k < 3; ++k) {
        place.vertices[k] = topology.polygon_vertex_indices[place.corner_ids[k]];
    }
    place.is_at_rest = std::fabs(fragment.time) <= time_epsilon || !data.is_moving();
    if (place.is_at_rest) {
        fetch_positions(data.positions, place.vertices, 3, place.positions);
    } else {
        fetch_moving_positions(ctx, data, fragment.time, place.vertices, place.positions);
    }
    return place;
}

void fill_surface_sample(SurfacePlace const& place, GMathVec3<float> const (&normals)[3],
                         GeometrySample& sample) {
    SurfaceWeights const& weights = place.weights;
    constexpr GMathVec3<float> zero(0, 0, 0);
    GMathVec3<float> const position = weights.interpolate(place.positions);
    sample.init_surface(position, weights.derive_by_s(place.positions),
                        weights.derive_by_t(place.positions), zero, zero);

    GMathVec3<float> projections[3];
    for (unsigned int k = 0; k < 3; ++k) {
        projections[k] = project_on_tangent_plane(position, place.positions[k], normals[k]);
    }
    // The normal stays unnormalised: between opposite ones, it is zero.
    sample.set_smoothing(weights.interpolate(projections), weights.interpolate(normals),
                         weights.derive_by_s(normals), weights.derive_by_t(normals));
}

void add_surface_motion(CtxEval const& ctx, GeometryPointCloudData const& data,
                        GeometryFragment const& fragment, SurfacePlace const& place,
                        GeometrySample& sample) {
    if (std::fabs(fragment.time_step) <= time_epsilon || !data.is_moving()) {
        return;
    }
    // A time that counted as zero adds nothing to the step.
    double const time = place.is_at_rest ? fragment.time_step : fragment.time + fragment.time_step;
    GMathVec3<float> positions[3];
    fetch_moving_positions(ctx, data, time, place.vertices, positions);
    sample.set_geometric_position_dt(place.weights.interpolate(positions));
}

void compute_point_sample(CtxEval const& ctx, GeometryPointCloudData const& data,
                          GeometryFragment const& fragment, GeometrySample& sample) {
    unsigned int const point = fragment.point_index;
    double const time = fragment.time;
    double const time_step = fragment.time_step;
    GMathVec3<float> position = data.positions[point];
    if (std::fabs(time) > time_epsilon && data.is_moving()) {
        fetch_vertex_position(data, point, time, get_shutter_sampling(ctx), position);
    }
    if (data.normals.is_empty()) {
        sample.init_point(position);
    } else {
        sample.init_point(position, decode_normal(data.normals[point]), false);
    }
    if (std::fabs(time_step) > time_epsilon && data.is_moving()) {
        fetch_vertex_position(data, point, time + time_step, get_shutter_sampling(ctx), position);
        sample.set_geometric_position_dt(position);
    }
}

void PolyMesh::compute_fragment_sample(CtxEval const& ctx, GeometryFragment const& fragment,
                                       GeometrySample& sample) const {
    GeometryPointCloudData const& data = m_point_cloud.get_data();
    compute_mesh_sample(
        ctx, *m_topology, data, fragment,
        [&](SurfacePlace const& place, GMathVec3<float>(&normals)[3]) {
            for (unsigned int k = 0; k < 3; ++k) {
                normals[k] = decode_normal(data.normals[place.vertices[k]]);
            }
        },
        sample);
}
