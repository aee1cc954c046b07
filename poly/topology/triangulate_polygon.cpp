#include <poly/topology/triangulate_polygon.h>

#include <poly/topology/large_polygon.h>
#include <poly/topology/small_polygon.h>
#include <poly/topology/tiny_polygon.h>

#include <cassert>

unsigned int triangulate_polygon(GMathVec3<float> const* positions, unsigned int const* indices,
                                 unsigned int const& count, unsigned int* out) {
    unsigned int const corner_count = count;
    if (corner_count < 3) {
        return 0;
    }
    assert(positions != nullptr && indices != nullptr && out != nullptr);
    if (corner_count == 3) {
        out[0] = 0;
        out[1] = 1;
        out[2] = 2;
        return 3;
    }
    if (corner_count <= tiny_polygon_size) {
        return triangulate_tiny_polygon(positions, indices, corner_count, out);
    }
    if (corner_count <= small_polygon_size) {
        return triangulate_small_polygon(positions, indices, corner_count, out);
    }
    return triangulate_large_polygon(positions, indices, corner_count, out);
}
