#include <poly/mesh/poly_mesh.h>
#include <poly/render/frustum_test.h>
#include <poly/render/vertex_fetch.h>

#include <algorithm>
#include <cassert>

namespace {

// True as soon as one corner is inside all side planes, or when no side plane has all corners
// outside.
bool overlaps_sides(GeometryFrustumCtx const& frustum, GMathVec3<float> const* corners,
                    unsigned int const& count) {
    unsigned int const plane_count = frustum.side_plane_count;
    unsigned int inside_counts[4] = {0, 0, 0, 0};
    for (unsigned int k = 0; k < count; ++k) {
        GMathVec3<double> const corner(corners[k]);
        unsigned int corner_inside_count = 0;
        for (unsigned int p = 0; p < plane_count; ++p) {
            bool const is_inside = frustum.side_planes[p].is_inside(corner);
            inside_counts[p] += is_inside;
            corner_inside_count += is_inside;
        }
        if (corner_inside_count == plane_count) {
            return true;
        }
    }
    return std::count(inside_counts, inside_counts + plane_count, 0u) == 0;
}

// True when a corner is inside the front cap, and that one or another inside the back cap.
bool overlaps_caps(GeometryFrustumCtx const& frustum, GMathVec3<float> const* corners,
                   unsigned int const& count) {
    bool is_in_front = false;
    bool is_in_back = false;
    for (unsigned int k = 0; k < count; ++k) {
        GMathVec3<double> const corner(corners[k]);
        is_in_front |= frustum.front_plane.is_inside(corner);
        is_in_back |= frustum.back_plane.is_inside(corner);
    }
    return is_in_front && is_in_back;
}

}  // namespace

bool test_polygon_overlaps_frustum(GeometryFrustumCtx const& frustum,
                                   GMathVec3<float> const* corners, unsigned int const& count) {
    assert(frustum.side_plane_count <= 4);
    return overlaps_sides(frustum, corners, count) && overlaps_caps(frustum, corners, count);
}

bool is_polygon_in_frustum(GeometryFrustumCtx const& frustum, GMathVec3<float> const* corners,
                           unsigned int const& count) {
    assert(frustum.side_plane_count <= 4);
    return std::all_of(corners, corners + count, [&](GMathVec3<float> const& corner) {
        GMathVec3<double> const p(corner);
        return std::all_of(frustum.side_planes, frustum.side_planes + frustum.side_plane_count,
                           [&](GeometryFrustumPlane const& plane) { return plane.is_inside(p); }) &&
               frustum.front_plane.is_inside(p) && frustum.back_plane.is_inside(p);
    });
}

void PolyMesh::intersect_primitive(CtxEval const&, unsigned int const& primitive,
                                   GeometryFrustumCtx& frustum_ctx) const {
    unsigned int vertices[4];
    unsigned int const count = get_primitive_vertices(*m_topology, primitive, vertices);
    GMathVec3<float> corners[4];
    fetch_positions(m_point_cloud.get_data().positions, vertices, count, corners);
    bool is_accepted = false;
    switch (frustum_ctx.mode) {
    case GeometryFrustumCtx::MODE_OVERLAP:
        is_accepted = test_polygon_overlaps_frustum(frustum_ctx, corners, count);
        break;
    case GeometryFrustumCtx::MODE_CONTAINMENT:
        is_accepted = is_polygon_in_frustum(frustum_ctx, corners, count);
        break;
    case GeometryFrustumCtx::MODE_MARK:
    case GeometryFrustumCtx::MODE_MARK_MORE:
        for (unsigned int k = 0; k < count; ++k) {
            frustum_ctx.vertex_marks[vertices[k]] = 1;
        }
        return;
    default:
        return;
    }
    frustum_ctx.accepted_count += is_accepted;
    frustum_ctx.is_rejected |= !is_accepted;
}
