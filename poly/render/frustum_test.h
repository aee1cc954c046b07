#pragma once

#include <platform/qz_geometry.h>
#include <platform/qz_gmath.h>

// Polygons against a frustum of up to four side planes and two caps. Coordinates are widened to
// doubles. A NaN coordinate is outside of every plane.

// May the polygon overlap the frustum? Cheap and one-sided: false only when the polygon is
// certainly outside: all corners outside one and the same side plane, or of one cap. A large
// polygon around the frustum, its corners on different sides, is true. False without corners.
bool test_polygon_overlaps_frustum(GeometryFrustumCtx const& frustum,
                                   GMathVec3<float> const* corners, unsigned int const& count);

// Are all corners inside every plane?
bool is_polygon_in_frustum(GeometryFrustumCtx const& frustum, GMathVec3<float> const* corners,
                           unsigned int const& count);
