#pragma once

#include <poly/mesh/poly_mesh_records.h>

// The content key of a mesh: the key of five keys laid side by side, those of the positions, the
// velocities, and the three polygon arrays in the order corners, counts, shading groups. Without
// positions it is the null key.
//
// Names, maps, creases and edge visibility do not enter it: meshes that differ only there share a
// key. Velocities enter it as given, even those that a mesh ignores. A mesh read back from its
// bytes has another key than the one it was made with, since its shading groups are gone.
Core128BitHashKey compute_content_key(CoreBasicArray<GMathVec3<float>> const& positions,
                                      CoreBasicArray<GMathVec3<float>> const& velocities,
                                      PolyMeshPolygons const& polygons);
