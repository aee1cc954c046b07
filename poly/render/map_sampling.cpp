#include <poly/mesh/poly_mesh.h>
#include <poly/mesh/primitive_corners.h>
#include <poly/render/surface_weights.h>

namespace {

// The channels of a corner's color, black and clear without one.
GMathFloatLanes get_channels(PolyMeshColorMap const& map, unsigned int const& value) {
    constexpr float channel_unit = 0.003921569f;  // 1/255
    if (value >= map.values.get_count()) {
        return GMathFloatLanes{};
    }
    return gmath_lanes(map.values[value]) * channel_unit;
}

}  // namespace

void PolyMesh::compute_fragment_uvw(CtxEval const&, GeometryFragment const& fragment,
                                    unsigned int const& map, GMathVec3<double>& uvw,
                                    GMathVec3<double>& uvw_ds, GMathVec3<double>& uvw_dt) const {
    PolyMeshUvMap const& uv_map = m_topology->uv_maps[map];
    PrimitivePlace const place = find_primitive(*m_topology, fragment.primitive_index);
    SurfaceWeights const weights =
        compute_sampling_weights(place.is_quad(), fragment.s, fragment.t);
    IndexTriple const values = look_up(
        *uv_map.polygon_indices, get_surface_corner_ids(*m_topology, place, *weights.triangle));
    GMathFloatLanes const x0 = gmath_lanes(uv_map.values.get(values.a));
    GMathFloatLanes const x1 = gmath_lanes(uv_map.values.get(values.b));
    GMathFloatLanes const x2 = gmath_lanes(uv_map.values.get(values.c));
    uvw = gmath_vec3<double>(weights.interpolate(x0, x1, x2));
    uvw_ds = gmath_vec3<double>(weights.derive_by_s(x0, x1, x2));
    uvw_dt = gmath_vec3<double>(weights.derive_by_t(x0, x1, x2));
}

void PolyMesh::compute_edge_uvw(CtxEval const&, unsigned int const& primitive,
                                unsigned int const& edge, unsigned int const& map, double const& t,
                                GMathVec3<double>& uvw) const {
    PolyMeshUvMap const& uv_map = m_topology->uv_maps[map];
    unsigned int ids[4];
    unsigned int const count = get_primitive_corner_ids(*m_topology, primitive, ids);
    double const end_weight = t;
    GMathVec3<float> start;
    GMathVec3<float> end;
    uv_map.values.get((*uv_map.polygon_indices)[ids[edge % count]],
                      (*uv_map.polygon_indices)[ids[(edge + 1) % count]], start, end);
    // Deliberate: the start is weighted in floats, the end in doubles.
    uvw = GMathVec3<double>(end) * end_weight +
          GMathVec3<double>(start * static_cast<float>(1.0 - end_weight));
}

void PolyMesh::compute_fragment_color(CtxEval const&, GeometryFragment const& fragment,
                                      unsigned int const& map, GMathVec4<float>& color) const {
    PolyMeshColorMap const& color_map = m_topology->color_maps[map];
    PrimitivePlace const place = find_primitive(*m_topology, fragment.primitive_index);
    SurfaceWeights const weights =
        compute_sampling_weights(place.is_quad(), fragment.s, fragment.t);
    IndexTriple const values = look_up(
        *color_map.polygon_indices, get_surface_corner_ids(*m_topology, place, *weights.triangle));
    GMathFloatLanes const x =
        weights.interpolate(get_channels(color_map, values.a), get_channels(color_map, values.b),
                            get_channels(color_map, values.c));
    color = {x[0], x[1], x[2], x[3]};
}
