#pragma once

#include <platform/qz_app_base.h>
#include <poly/mesh/poly_mesh_records.h>

// Fills the mesh box and the group boxes of `geometry`, which has one box per group. Vertices with
// a coordinate that is not finite are left out, and named once each at level 2. A group without
// valid corners gets an inverted box; a group without a box is passed over. `progress` may be null.
void update_bounds(PolyMeshTopology const& topology,
                   CoreBasicArray<GMathVec3<float>> const& positions, PolyMeshGeometry& geometry,
                   AppProgressBar* progress);
