#pragma once

#include <poly/mesh/poly_mesh_records.h>

// For every corner of every primitive, in primitive order, the entry of its polygon corner in
// `corner_values`, which has one per corner id. The old storage of `out` is freed first.
void gather_primitive_indices(PolyMeshTopology const& topology, CoreIndexArray const& corner_values,
                              CoreArray<unsigned int>& out);
