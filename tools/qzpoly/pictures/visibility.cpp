#include <tools/qzpoly/pictures/visibility.h>

#include <algorithm>
#include <array>
#include <vector>

namespace {

GeometryFrustumPlane make_plane(GMathVec3<double> const& normal, GMathVec3<double> const& point) {
    return {normal, -gmath_dot(normal, point)};
}

unsigned int count_marks(std::vector<unsigned char> const& marks) {
    return static_cast<unsigned int>(
        std::count_if(marks.begin(), marks.end(), [](unsigned char const& m) { return m != 0; }));
}

GeometryFrustumCtx make_ctx(ToolFrustum const& frustum, GeometryFrustumCtx::Mode const& mode) {
    GeometryFrustumCtx frustum_ctx;
    std::copy(std::begin(frustum.sides), std::end(frustum.sides), frustum_ctx.side_planes);
    frustum_ctx.side_plane_count = 4;
    frustum_ctx.front_plane = frustum.front;
    frustum_ctx.back_plane = frustum.back;
    frustum_ctx.mode = mode;
    return frustum_ctx;
}

double get_distance(GeometryFrustumPlane const& plane, GMathVec3<float> const& p) {
    double const x = static_cast<double>(p.x) * plane.normal.x;
    double const y = static_cast<double>(p.y) * plane.normal.y;
    double const z = static_cast<double>(p.z) * plane.normal.z;
    return x + y + z + plane.offset;
}

}  // namespace

ToolFrustum make_frustum(ToolCamera const& camera, double const& near, double const& far) {
    GMathVec3<double> const across = camera.right * (1 / camera.half_width);
    GMathVec3<double> const upwards = camera.up * (1 / camera.half_height);
    ToolFrustum frustum;
    frustum.sides[0] = make_plane(gmath_unit(camera.forward + across), camera.eye);
    frustum.sides[1] = make_plane(gmath_unit(camera.forward - across), camera.eye);
    frustum.sides[2] = make_plane(gmath_unit(camera.forward + upwards), camera.eye);
    frustum.sides[3] = make_plane(gmath_unit(camera.forward - upwards), camera.eye);
    frustum.front = make_plane(camera.forward, camera.eye + camera.forward * near);
    // Without a normal, a plane has everything inside.
    if (far > 0) {
        frustum.back = make_plane(-camera.forward, camera.eye + camera.forward * far);
    }
    return frustum;
}

ToolVisibility count_visible(GeometryObject const& geometry, CtxEval const& ctx,
                             ToolFrustum const& frustum) {
    GeometryFrustumCtx overlap = make_ctx(frustum, GeometryFrustumCtx::MODE_OVERLAP);
    GeometryFrustumCtx containment = make_ctx(frustum, GeometryFrustumCtx::MODE_CONTAINMENT);
    GeometryFrustumCtx mark = make_ctx(frustum, GeometryFrustumCtx::MODE_MARK);
    std::vector<unsigned char> marks(geometry.get_vertex_count());
    mark.vertex_marks = marks.data();
    for (unsigned int i = 0; i < geometry.get_primitive_count(); ++i) {
        overlap.is_rejected = false;
        geometry.intersect_primitive(ctx, i, overlap);
        geometry.intersect_primitive(ctx, i, containment);
        if (!overlap.is_rejected) {
            geometry.intersect_primitive(ctx, i, mark);
        }
    }
    return {overlap.accepted_count, containment.accepted_count, count_marks(marks)};
}

ToolVisibility count_visible_plainly(GeometryObject const& geometry, ToolFrustum const& frustum) {
    std::array<GeometryFrustumPlane, 6> const planes = {frustum.sides[0], frustum.sides[1],
                                                        frustum.sides[2], frustum.sides[3],
                                                        frustum.front,    frustum.back};
    CoreArray<GMathVec3<float>> positions;
    CoreArray<unsigned int> vertices;
    geometry.get_point_cloud()->get_positions(positions);
    geometry.get_primitive_indices(vertices);
    std::vector<unsigned char> marks(positions.get_count());
    ToolVisibility visibility;
    unsigned int const* corners = vertices.get_data();
    for (unsigned int i = 0; i < geometry.get_primitive_count(); ++i) {
        unsigned int const count = geometry.get_primitive_edge_count(i);
        bool is_overlapping = true;
        bool is_contained = true;
        for (GeometryFrustumPlane const& plane : planes) {
            auto const is_inside = [&](unsigned int const& vertex) {
                return get_distance(plane, positions[vertex]) >= 0;
            };
            is_overlapping &= std::any_of(corners, corners + count, is_inside);
            is_contained &= std::all_of(corners, corners + count, is_inside);
        }
        visibility.overlapping_count += is_overlapping ? 1 : 0;
        visibility.contained_count += is_contained ? 1 : 0;
        for (unsigned int k = 0; k < count && is_overlapping; ++k) {
            marks[corners[k]] = 1;
        }
        corners += count;
    }
    visibility.vertex_count = count_marks(marks);
    return visibility;
}
