#pragma once

#include <platform/qz_app_base.h>
#include <poly/mesh/poly_mesh_records.h>

// Computes the normals of a mesh that is smooth across edges below `smoothing_angle`, in degrees,
// into `map`, whose name becomes "smoothing_angle=" and the angle. A border edge, an edge of more
// than two faces, and one whose two faces are not wound alike are hard at any angle. Edges within a
// polygon are smooth.
//
// Corners between hard edges share one normal: the sum of their face normals, each weighted by
// 1 - cos of its angle there (not by the angle, deliberately). A corner alone between two hard
// edges is flat, and so is one whose normal would be that of its face. Corners at no hard edge keep
// the normal of their vertex, and corners that no primitive covers are absent.
//
// Takes time and memory linear in the corners. The vertices and the normals made must number below
// 2^32 together, and so must the corners of all triangles. `progress` may be null.
void build_smoothed_normals(PolyMeshTopology const& topology,
                            CoreBasicArray<GMathVec3<float>> const& positions,
                            double const& smoothing_angle, PolyMeshNormalMap& map,
                            AppProgressBar* progress);

// The edges that this finds hard: a byte per primitive, bit e for its edge e. The old storage of
// `edges` is freed first.
void find_hard_edges(PolyMeshTopology const& topology,
                     CoreBasicArray<GMathVec3<float>> const& positions,
                     double const& smoothing_angle, CoreArray<unsigned char>& edges);
