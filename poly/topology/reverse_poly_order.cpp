#include <poly/topology/reverse_poly_order.h>

#include <algorithm>

void reverse_poly_order(unsigned int const* polygon_vertex_count, unsigned int const& polygon_count,
                        CoreArray<unsigned int>& polygon_vertex_indices) {
    unsigned int const last_polygon = polygon_count;
    unsigned int* corners = polygon_vertex_indices.get_data();
    for (unsigned int p = 0; p < last_polygon; ++p) {
        std::reverse(corners, corners + polygon_vertex_count[p]);
        corners += polygon_vertex_count[p];
    }
}

void reverse_poly_order(CoreArray<unsigned int> const& polygon_vertex_count,
                        CoreArray<unsigned int>& polygon_vertex_indices) {
    reverse_poly_order(polygon_vertex_count.get_data(), polygon_vertex_count.get_count(),
                       polygon_vertex_indices);
}
