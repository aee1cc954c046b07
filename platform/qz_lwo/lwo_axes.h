#pragma once

#include <platform/qz_gmath.h>
#include <platform/qz_lwo/lwo_mesh.h>
#include <platform/qz_lwo/lwo_report.h>

// Objects have +X right, +Y up and +Z forward, left-handed, and polygons clockwise as seen from
// outside. Negating z makes the axes right-handed and turns every polygon around as seen from
// outside; to be counter-clockwise all corners are reversed, and with them the indices of maps.
inline GMathVec3<float> lwo_convert_point(float const (&point)[3]) {
    return {point[0], point[1], -point[2]};
}

// Whether normals are stored with z as points have it is nowhere written down, and files differ.
// Corners vote: one whose normal lies nearer to that of its polygon as it is than with z negated
// votes for keeping the normals. Negates z of all of them when more vote for that. `mesh` and the
// indices of `map` are converted already. False when a stop was requested.
bool lwo_convert_normals(LwoMesh const& mesh, GeometryNormalMap& map, LwoReport& report);
