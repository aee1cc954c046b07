#pragma once

#include <platform/qz_app_base.h>
#include <poly/mesh/poly_mesh_records.h>

// Sums up the normal of every vertex into `normals`, one per position and not normalised, and fills
// the group sums and the mesh's sum of `geometry`.
//
// Every triangle (a quad is two, split between its corners 0 and 2) adds its unit normal to its
// three vertices, each time weighted by 1 - cos of the angle there: 0 for a needle's tip, 1 for a
// right angle, 2 for a flat corner. So the weights at a cube's vertex depend on how its faces are
// cut. Degenerate triangles add nothing; coordinates that are not finite can spoil the normals of
// the vertices around them, but not the sums. Groups without a record are left out of the sums.
// `progress` may be null.
void compute_vertex_normals(PolyMeshTopology const& topology,
                            CoreBasicArray<GMathVec3<float>> const& positions,
                            CoreArray<GMathVec3<float>>& normals, PolyMeshGeometry& geometry,
                            AppProgressBar* progress);
