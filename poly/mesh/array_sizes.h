#pragma once

#include <poly/mesh/map_entries.h>

// What arrays count for in the memory of a mesh, in bytes.

// An array as a pointer and a count: 16 without storage, 28 with, plus its elements.
template <typename T>
unsigned long long get_array_size(CoreBasicArray<T> const& array,
                                  unsigned long long const& element_size) {
    return array.is_empty() ? 16 : 28 + element_size * array.get_count();
}

// The index array of a uv or color map; nothing where it is the topology's own.
template <typename Map>
unsigned long long get_own_index_size(Map const& map, PolyMeshTopology const& topology) {
    return owns_indices(map, topology) ? map.polygon_indices->get_memory_size() : 0;
}
