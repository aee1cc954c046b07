#include <poly/mesh/primitive_indices.h>

#include <poly/mesh/primitive_corners.h>

void gather_primitive_indices(PolyMeshTopology const& topology, CoreIndexArray const& corner_values,
                              CoreArray<unsigned int>& out) {
    out.reset(topology.primitive_index_count);
    unsigned int* next = out.get_data();
    unsigned int const primitive_count = topology.primitive_infos.get_count();
    for (unsigned int primitive = 0; primitive < primitive_count; ++primitive) {
        unsigned int ids[4];
        unsigned int const count = get_primitive_corner_ids(topology, primitive, ids);
        for (unsigned int k = 0; k < count; ++k) {
            *next++ = corner_values[ids[k]];
        }
    }
}
