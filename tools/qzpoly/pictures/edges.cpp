#include <tools/qzpoly/pictures/edges.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr float edge_shade = 0.12f;  // what edges leave of the color beneath

struct PicturePoint {
    double x;
    double y;
    double depth;
};

// The corners' parameters on their primitive.
constexpr double quad_parameters[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
constexpr double triangle_parameters[3][2] = {{0, 0}, {1, 0}, {0, 1}};

PicturePoint project_corner(GeometryObject const& geometry, CtxEval const& ctx,
                            GeometryFragment const& fragment, double const (&parameters)[2],
                            ToolCamera const& camera) {
    GeometryFragment corner = fragment;
    corner.s = parameters[0];
    corner.t = parameters[1];
    GeometrySample sample;
    geometry.compute_fragment_sample(ctx, corner, sample);
    PicturePoint point;
    camera.project(GMathVec3<double>(sample.get_position()), point.x, point.y, point.depth);
    return point;
}

double compute_distance(PicturePoint const& a, PicturePoint const& b, double const& x,
                        double const& y) {
    double const dx = b.x - a.x;
    double const dy = b.y - a.y;
    double const square = dx * dx + dy * dy;
    double const along = square > 0 ? ((x - a.x) * dx + (y - a.y) * dy) / square : 0.0;
    double const f = std::clamp(along, 0.0, 1.0);
    return std::hypot(a.x + dx * f - x, a.y + dy * f - y);
}

}  // namespace

ToolEdges list_visible_edges(GeometryObject const& geometry) {
    ToolEdges edges(geometry.get_primitive_count());
    for (unsigned int primitive = 0; primitive < edges.size(); ++primitive) {
        for (unsigned int edge = 0; edge < geometry.get_primitive_edge_count(primitive); ++edge) {
            if (geometry.is_primitive_edge_visible(primitive, edge)) {
                edges[primitive] = static_cast<unsigned char>(edges[primitive] | 1u << edge);
            }
        }
    }
    return edges;
}

void draw_edges(GeometryObject const& geometry, ToolEdgeLayer const& layer, CtxEval const& ctx,
                GeometryFragment const& fragment, ToolCamera const& camera, double const& x,
                double const& y, ToolColor& color) {
    unsigned int const edges = layer.edges[fragment.primitive_index];
    if (edges == 0) {
        return;
    }
    unsigned int const edge_count = geometry.get_primitive_edge_count(fragment.primitive_index);
    PicturePoint corners[4];
    for (unsigned int i = 0; i < edge_count; ++i) {
        corners[i] =
            project_corner(geometry, ctx, fragment,
                           edge_count == 4 ? quad_parameters[i] : triangle_parameters[i], camera);
    }
    double nearest = 1e300;
    for (unsigned int edge = 0; edge < edge_count; ++edge) {
        PicturePoint const& a = corners[edge];
        PicturePoint const& b = corners[(edge + 1) % edge_count];
        // An edge that reaches behind the viewer has no place in the picture.
        if (a.depth > 0 && b.depth > 0 && (edges >> edge & 1) != 0) {
            nearest = std::min(nearest, compute_distance(a, b, x, y));
        }
    }
    if (nearest < layer.half_width) {
        color = layer.paint.value_or(color * edge_shade);
    }
}
