#pragma once

#include <poly/mesh/poly_mesh_records.h>

// Whose index array a uv or color map's entry points at: freeing, copying and measuring all ask
// here. `topology` is the record that holds the map.
template <typename Map>
bool owns_indices(Map const& map, PolyMeshTopology const& topology) {
    return map.polygon_indices != &topology.polygon_vertex_indices;
}

// Destroys all entries of `maps`, one of the two lists of `topology`.
template <typename Map>
void clear_maps(CoreArray<Map>& maps, PolyMeshTopology const& topology) {
    for (Map const& map : maps) {
        if (owns_indices(map, topology)) {
            delete map.polygon_indices;
        }
    }
    maps.clear();
}
