#pragma once

#include <poly/maps/map_acceptance.h>
#include <poly/mesh/map_entries.h>

// Replaces `stored`, a list of `topology`, by new entries for the maps that are accepted, in their
// order: with names and corner indices, and `store_values(map, entry)` for the rest.
template <typename Map, typename Stored, typename StoreValues>
void assign_maps(CoreBasicArray<Map> const& maps, unsigned int const& vertex_count,
                 PolyMeshTopology& topology, CoreArray<Stored>& stored,
                 StoreValues const& store_values) {
    unsigned int const corner_count = topology.polygon_vertex_indices.get_count();
    clear_maps(stored, topology);
    for (Map const& map : maps) {
        if (!is_accepted(map, vertex_count, corner_count)) {
            continue;
        }
        stored.append(Stored());
        Stored& entry = stored[stored.get_count() - 1];
        entry.name = map.name;
        entry.polygon_indices = &topology.polygon_vertex_indices;
        if (goes_by_corner(map, corner_count)) {
            entry.polygon_indices = new CoreIndexArray;
            entry.polygon_indices->copy_from(map.indices);
        }
        store_values(map, entry);
    }
    stored.shrink_to_fit();
}

// The indices of a stored map by polygon corner. Empty for a map that goes by vertex, unless
// `always_indices`.
template <typename Stored>
void get_corner_indices(Stored const& map, PolyMeshTopology const& topology,
                        bool const& always_indices, CoreArray<unsigned int>& indices) {
    if (always_indices || owns_indices(map, topology)) {
        map.polygon_indices->get_array(indices);
    } else {
        indices.clear();
    }
}
