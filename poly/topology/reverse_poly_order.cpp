#include <poly/topology/reverse_poly_order.h>

#include <algorithm>

void reverse_poly_order(unsigned int const* polygon_vertex_count, unsigned int const& polygon_count,
                        CoreArray<unsigned int>& polygon_vertex_indices) {
    unsigned int* corner = polygon_vertex_indices.get_data();
    for (unsigned int polygon = 0; polygon < polygon_count; ++polygon) {
        std::reverse(corner, corner + polygon_vertex_count[polygon]);
        corner += polygon_vertex_count[polygon];
    }
}

void reverse_poly_order(CoreArray<unsigned int> const& polygon_vertex_count,
                        CoreArray<unsigned int>& polygon_vertex_indices) {
    reverse_poly_order(polygon_vertex_count.get_data(), polygon_vertex_count.get_count(),
                       polygon_vertex_indices);
}
