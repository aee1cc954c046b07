#include <poly/mesh/poly_mesh.h>
#include <poly/render/surface_sampling.h>
#include <poly/render/vertex_fetch.h>

#include <cmath>

namespace {

// The positions of vertices: from an array, or a blend of arrays.
template <typename Positions>
void load_positions(Positions const& source, IndexTriple const& vertices,
                    GMathFloatLanes (&positions)[3]) {
    positions[0] = gmath_lanes(source[vertices.a]);
    positions[1] = gmath_lanes(source[vertices.b]);
    positions[2] = gmath_lanes(source[vertices.c]);
}

// The same at a time at which the mesh is in motion.
void load_moving_positions(CtxEval const& ctx, GeometryPointCloudData const& data,
                           double const& time, IndexTriple const& vertices,
                           GMathFloatLanes (&positions)[3]) {
    GeometryPositionArray blend;
    compute_position_blend(data, time, get_shutter_sampling(ctx), blend);
    load_positions(blend, vertices, positions);
}

// `p` dropped onto the plane through `corner` at a right angle to `normal`.
GMathFloatLanes project_on_tangent_plane(GMathFloatLanes const& p, GMathFloatLanes const& corner,
                                         GMathFloatLanes const& normal) {
    float const square = gmath_dot(normal, normal);
    return square == 0.0f ? p : p + normal * (gmath_dot(normal, corner - p) / square);
}

}  // namespace

SurfacePlace fetch_surface_place(CtxEval const& ctx, PolyMeshTopology const& topology,
                                 GeometryPointCloudData const& data,
                                 GeometryFragment const& fragment) {
    SurfacePlace place;
    PrimitivePlace const primitive = find_primitive(topology, fragment.primitive_index);
    place.weights = compute_sampling_weights(primitive.is_quad(), fragment.s, fragment.t);
    place.corner_ids = get_surface_corner_ids(topology, primitive, *place.weights.triangle);
    place.vertices = look_up(topology.polygon_vertex_indices, place.corner_ids);
    place.is_at_rest = std::fabs(fragment.time) <= time_epsilon || !data.is_moving();
    if (place.is_at_rest) {
        load_positions(data.positions, place.vertices, place.positions);
    } else {
        load_moving_positions(ctx, data, fragment.time, place.vertices, place.positions);
    }
    return place;
}

void fill_surface_sample(SurfacePlace const& place, GMathFloatLanes const (&normals)[3],
                         GeometrySample& sample) {
    SurfaceWeights const& weights = place.weights;
    auto const& [x0, x1, x2] = place.positions;
    auto const& [n0, n1, n2] = normals;
    constexpr GMathVec3<float> zero(0, 0, 0);
    GMathFloatLanes const position = weights.interpolate(x0, x1, x2);
    sample.init_surface(gmath_vec3<float>(position),
                        gmath_vec3<float>(weights.derive_by_s(x0, x1, x2)),
                        gmath_vec3<float>(weights.derive_by_t(x0, x1, x2)), zero, zero);

    GMathFloatLanes const smooth_position = weights.interpolate(
        project_on_tangent_plane(position, x0, n0), project_on_tangent_plane(position, x1, n1),
        project_on_tangent_plane(position, x2, n2));
    // The normal stays unnormalised: between opposite ones, it is zero.
    sample.set_smoothing(gmath_vec3<float>(smooth_position),
                         gmath_vec3<float>(weights.interpolate(n0, n1, n2)),
                         gmath_vec3<float>(weights.derive_by_s(n0, n1, n2)),
                         gmath_vec3<float>(weights.derive_by_t(n0, n1, n2)));
}

void add_surface_motion(CtxEval const& ctx, GeometryPointCloudData const& data,
                        GeometryFragment const& fragment, SurfacePlace const& place,
                        GeometrySample& sample) {
    if (std::fabs(fragment.time_step) <= time_epsilon || !data.is_moving()) {
        return;
    }
    // A time that counted as zero adds nothing to the step.
    double const time = place.is_at_rest ? fragment.time_step : fragment.time + fragment.time_step;
    GMathFloatLanes positions[3];
    load_moving_positions(ctx, data, time, place.vertices, positions);
    sample.set_geometric_position_dt(
        gmath_vec3<float>(place.weights.interpolate(positions[0], positions[1], positions[2])));
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
        sample.init_point(position, data.normals[point].decode(), false);
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
        [&](SurfacePlace const& place, GMathFloatLanes(&normals)[3]) {
            normals[0] = decode_normal(data.normals[place.vertices.a]);
            normals[1] = decode_normal(data.normals[place.vertices.b]);
            normals[2] = decode_normal(data.normals[place.vertices.c]);
        },
        sample);
}
