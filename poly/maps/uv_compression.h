#pragma once

#include <poly/mesh/poly_mesh_records.h>

// Stores the values of a uv map as `topology`'s compression mode asks for. `corner_indices` holds
// the number of the value of every polygon corner; numbers at or past the value count are passed
// over. Quantised values lie in the box of the values that corners use; those that no corner uses
// are moved to its border.
void compress_uv_values(PolyMeshTopology const& topology, CoreIndexArray const& corner_indices,
                        CoreBasicArray<GMathVec3<float>> const& values,
                        GeometryCompressedVertices& compressed);
