#include <poly/mesh/poly_mesh.h>
#include <poly/mesh/primitive_corners.h>
#include <poly/render/surface_weights.h>

namespace {

// The fragment's weights, and the numbers of the map's values at the corners c0, c1, c2.
SurfaceWeights fetch_map_place(PolyMeshTopology const& topology, GeometryFragment const& fragment,
                               CoreIndexArray const& polygon_indices, unsigned int (&values)[3]) {
    unsigned int const primitive = fragment.primitive_index;
    SurfaceWeights const weights =
        compute_sampling_weights(is_quad(topology, primitive), fragment.s, fragment.t);
    unsigned int ids[3];
    get_surface_corner_ids(topology, primitive, *weights.triangle, ids);
    for (unsigned int k = 0; k < 3; ++k) {
        values[k] = polygon_indices[ids[k]];
    }
    return weights;
}

GMathVec4<unsigned char> get_color(PolyMeshColorMap const& map, unsigned int const& value) {
    return value < map.values.get_count() ? map.values[value]
                                          : GMathVec4<unsigned char>(0, 0, 0, 0);
}

}  // namespace

void PolyMesh::compute_fragment_uvw(CtxEval const&, GeometryFragment const& fragment,
                                    unsigned int const& map, GMathVec3<double>& uvw,
                                    GMathVec3<double>& uvw_ds, GMathVec3<double>& uvw_dt) const {
    PolyMeshUvMap const& uv_map = m_topology->uv_maps[map];
    unsigned int values[3];
    SurfaceWeights const weights =
        fetch_map_place(*m_topology, fragment, *uv_map.polygon_indices, values);
    GMathVec3<float> corners[3];
    uv_map.values.get(values[0], values[1], values[2], corners[0], corners[1], corners[2]);
    uvw = GMathVec3<double>(weights.interpolate(corners));
    uvw_ds = GMathVec3<double>(weights.derive_by_s(corners));
    uvw_dt = GMathVec3<double>(weights.derive_by_t(corners));
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
    constexpr float channel_unit = 0.003921569f;  // 1/255
    PolyMeshColorMap const& color_map = m_topology->color_maps[map];
    unsigned int values[3];
    SurfaceWeights const weights =
        fetch_map_place(*m_topology, fragment, *color_map.polygon_indices, values);
    float channels[4][3];
    for (unsigned int k = 0; k < 3; ++k) {
        GMathVec4<unsigned char> const corner = get_color(color_map, values[k]);
        channels[0][k] = static_cast<float>(corner.x) * channel_unit;
        channels[1][k] = static_cast<float>(corner.y) * channel_unit;
        channels[2][k] = static_cast<float>(corner.z) * channel_unit;
        channels[3][k] = static_cast<float>(corner.w) * channel_unit;
    }
    color = {weights.interpolate(channels[0]), weights.interpolate(channels[1]),
             weights.interpolate(channels[2]), weights.interpolate(channels[3])};
}
