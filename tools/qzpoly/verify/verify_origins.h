#pragma once

#include <tools/qzpoly/verify/verify_stage.h>
#include <tools/qzpoly/verify/verify_surface.h>

#include <platform/qz_app_base.h>

#include <vector>

// Where a ray starts. The surface winds `winding` times around it: not at all outside.
struct ToolVerifyOrigin {
    GMathVec3<float> point;
    double time;
    int winding;
};

// Random points among and around the surface, at random times, that keep a 10,000th of its size
// from it. How often the surface winds around a point is found without any ray, from the solid
// angles of all triangles in doubles. False when `progress` was asked to stop.
bool find_origins(ToolVerifyStage const& stage, ToolVerifySurface const& surface,
                  unsigned long long const& seed, unsigned int const& thread_count,
                  AppProgressBar& progress, std::vector<ToolVerifyOrigin>& inside,
                  std::vector<ToolVerifyOrigin>& outside);

// The corners of a triangle.
void fetch_corners(GeometryPositionArray const& positions, ToolTriangle const& triangle,
                   GMathVec3<double> (&corners)[3]);

double compute_distance(GMathVec3<double> const& point, GMathVec3<double> const (&corners)[3]);
