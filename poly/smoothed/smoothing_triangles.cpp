#include <poly/smoothed/smoothing_triangles.h>

#include <poly/mesh/primitive_corners.h>
#include <poly/render/surface_weights.h>

#include <cassert>
#include <numeric>

namespace {

// Edge k of a triangle that was cut from a polygon is smooth unless it is a side of the polygon; of
// a whole triangle, every edge is a side.
bool is_within_polygon(unsigned int const& info, unsigned int const& half, unsigned int const& k) {
    if ((info & PolyMeshPrimitiveInfo::quad_bit) != 0) {
        return is_quad_diagonal(half, k);
    }
    return (info & PolyMeshPrimitiveInfo::direct_bit) == 0 &&
           (info & PolyMeshPrimitiveInfo::get_edge_bit(k)) == 0;
}

}  // namespace

SmoothingTriangles::SmoothingTriangles(PolyMeshTopology const& topology) {
    assert(topology.triangle_count + 2ull * topology.quad_count <= 0xFFFFFFFFu / 3);
    unsigned int const corner_count = 3 * (topology.triangle_count + 2 * topology.quad_count);
    corner_ids.reset(corner_count);
    vertices.reset(corner_count);
    edges.reset(corner_count);
    if (topology.uniform_corner_count == 3) {  // whole triangles, whose corners follow one another
        std::iota(corner_ids.begin(), corner_ids.end(), 0u);
        topology.polygon_vertex_indices.get_indices(0, corner_count, vertices.get_data());
        edges.fill(SmoothingEdge::UNDECIDED);
        return;
    }
    PrimitiveReader const reader(topology);
    unsigned int const primitive_count = topology.primitive_infos.get_count();
    unsigned int* next_id = corner_ids.get_data();
    unsigned int* next_vertex = vertices.get_data();
    SmoothingEdge* next_edge = edges.get_data();
    for (unsigned int primitive = 0; primitive < primitive_count; ++primitive) {
        unsigned int const info = topology.primitive_infos[primitive];
        unsigned int ids[4];
        unsigned int const count = reader.get_corner_ids(primitive, ids);
        unsigned int half = 0;
        for (SurfaceTriangle const& triangle : get_surface_triangles(count == 4)) {
            for (unsigned int k = 0; k < 3; ++k) {
                unsigned int const id = ids[triangle.corners[k]];
                *next_id++ = id;
                *next_vertex++ = reader.get_vertex(id);
                *next_edge++ = is_within_polygon(info, half, k) ? SmoothingEdge::SMOOTH
                                                                : SmoothingEdge::UNDECIDED;
            }
            ++half;
        }
    }
}
