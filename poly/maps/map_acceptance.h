#pragma once

#include <platform/qz_geometry.h>

// Which maps a mesh keeps, and how. A map with an index per corner goes by corner, though it may
// have a value per vertex as well; one that only has a value per vertex goes by vertex.

template <typename T>
bool goes_by_corner(GeometryMap<T> const& map, unsigned int const& corner_count) {
    return map.indices.get_count() == corner_count;
}

template <typename T>
bool is_accepted(GeometryMap<T> const& map, unsigned int const& vertex_count,
                 unsigned int const& corner_count) {
    return map.values.get_count() == vertex_count ||
           (!map.values.is_empty() && goes_by_corner(map, corner_count));
}
