#pragma once

#include <platform/qz_geometry.h>

#include <vector>

// Where a geometry is and which way it faces, over a set of times.
struct ToolExtent {
    GMathBbox3<double> bbox = GMathBbox3<double>::get_inverted();  // of all that can be drawn
    std::vector<GMathBbox3<double>> primitive_boxes;               // those with finite numbers
    GMathVec3<double> area_vector{0, 0, 0};  // sum of area times normal; 0 for a closed surface
    double area = 0;                         // sum of areas, at rest
};

// The largest coordinate that is drawn: the acceleration structure takes numbers up to 1.8e18, and
// the camera stands outside.
constexpr double tool_largest_coordinate = 1e16;

// Bounds of a primitive that are finite and small enough to be drawn.
bool is_drawable(GMathBbox3<double> const& box);

// `times` empty: at rest.
ToolExtent compute_extent(GeometryObject const& geometry, CtxEval const& ctx,
                          std::vector<double> const& times);
