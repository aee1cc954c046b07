#include <poly/mesh/poly_mesh.h>
#include <poly/render/vertex_fetch.h>

#include <cmath>

namespace {

// A box grows by strict comparisons, so a NaN first corner stays in it and later ones are passed
// over. Deliberate: the mesh's own box is the one that leaves out what is not finite.
template <typename Positions>
GMathBbox3<double> bound_primitive(PolyMeshTopology const& topology, unsigned int const& primitive,
                                   Positions const& positions) {
    GMathVec3<float> corners[4];
    unsigned int const count = fetch_corner_positions(topology, primitive, positions, corners);
    GMathBbox3<float> box(corners[0], corners[0]);
    for (unsigned int k = 1; k < count; ++k) {
        box.extend(corners[k]);
    }
    return GMathBbox3<double>(box);
}

GMathBbox3<float> bound_finite(GeometryPositionArray const& positions) {
    auto box = GMathBbox3<float>::get_inverted();
    unsigned int const count = positions.get_point_count();
    for (unsigned int vertex = 0; vertex < count; ++vertex) {
        GMathVec3<float> const position = positions[vertex];
        if (gmath_isfinite(position)) {
            box.extend(position);
        }
    }
    return box;
}

}  // namespace

GMathBbox3<double> PolyMesh::get_bbox() const { return GMathBbox3<double>(m_geometry->mesh_bbox); }

GMathBbox3<double> PolyMesh::get_bbox_at(CtxEval const& ctx, double const& time) const {
    GeometryPointCloudData const& data = m_point_cloud.get_data();
    if (data.point_count == 0 || std::fabs(time) <= time_epsilon || !data.is_moving()) {
        return get_bbox();
    }
    GeometryPositionArray positions;
    compute_position_blend(data, time, get_shutter_sampling(ctx), positions);
    return GMathBbox3<double>(bound_finite(positions));
}

GMathBbox3<double> PolyMesh::get_shading_group_bbox(unsigned int const& group) const {
    return GMathBbox3<double>(m_geometry->shading_group_bbox[group]);
}

void PolyMesh::compute_primitive_bbox(CtxEval const&, unsigned int const& primitive,
                                      GMathBbox3<double>& bbox) const {
    bbox = bound_primitive(*m_topology, primitive, m_point_cloud.get_data().positions);
}

void PolyMesh::compute_primitive_bbox_at(CtxEval const& ctx, unsigned int const& primitive,
                                         double const& time, GMathBbox3<double>& bbox) const {
    GeometryPointCloudData const& data = m_point_cloud.get_data();
    if (!data.is_moving()) {
        compute_primitive_bbox(ctx, primitive, bbox);
        return;
    }
    GeometryPositionArray positions;
    compute_position_blend(data, time, get_shutter_sampling(ctx), positions);
    bbox = bound_primitive(*m_topology, primitive, positions);
}
