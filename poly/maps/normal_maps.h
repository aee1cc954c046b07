#pragma once

#include <platform/qz_app_base.h>
#include <poly/mesh/poly_mesh_records.h>

// The normal of a triangle as a unit vector; zero for a degenerate one.
inline GMathVec3<float> compute_flat_normal(GMathVec3<float> const& p0, GMathVec3<float> const& p1,
                                            GMathVec3<float> const& p2) {
    return gmath_unit(gmath_cross(p1 - p0, p2 - p0));
}

// Stores an accepted map over primitives and vertex normals that are built. Normals equal to their
// vertex's own, or to the flat normals of their primitive, cost nothing but the index; so does
// every repetition at a vertex. Corners without a value, or with a zero one, become flat, and so do
// those that no primitive covers. `progress` may be null.
void store_normal_map(GeometryNormalMap const& map, PolyMeshTopology const& topology,
                      GeometryPointCloudData const& points, PolyMeshNormalMap& stored,
                      AppProgressBar* progress);

// Reads a map back by polygon corner: the normals in the order of their first use, flat ones
// computed per polygon, and the number of the normal of every corner. The old storage of the
// outputs is freed first.
void read_polygon_normals(PolyMeshNormalMap const& map, PolyMeshTopology const& topology,
                          GeometryPointCloudData const& points,
                          CoreArray<GMathVec3<float>>& normals, CoreArray<unsigned int>& indices);

// The same normals, with one index per primitive corner.
void read_primitive_normals(PolyMeshNormalMap const& map, PolyMeshTopology const& topology,
                            GeometryPointCloudData const& points,
                            CoreArray<GMathVec3<float>>& normals, CoreArray<unsigned int>& indices);
