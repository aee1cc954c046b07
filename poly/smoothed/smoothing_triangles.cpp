#include <poly/smoothed/smoothing_triangles.h>

#include <poly/mesh/primitive_corners.h>
#include <poly/render/surface_weights.h>

#include <cassert>

namespace {

// Edge k of a triangle that was cut from a polygon is smooth unless it is a side of the polygon; of
// a whole triangle, every edge is a side. The two halves of a quad meet in edge 2 of the first and
// edge 0 of the second.
bool is_within_polygon(unsigned int const& info, unsigned int const& half, unsigned int const& k) {
    if ((info & PolyMeshPrimitiveInfo::quad_bit) != 0) {
        return half == 0 ? k == 2 : k == 0;
    }
    return (info & PolyMeshPrimitiveInfo::direct_bit) == 0 &&
           (info & 1u << (PolyMeshPrimitiveInfo::edge_shift + k)) == 0;
}

}  // namespace

SmoothingTriangles::SmoothingTriangles(PolyMeshTopology const& topology) {
    assert(topology.triangle_count + 2ull * topology.quad_count <= 0xFFFFFFFFu / 3);
    unsigned int const corner_count = 3 * (topology.triangle_count + 2 * topology.quad_count);
    corner_ids.reset(corner_count);
    vertices.reset(corner_count);
    edges.reset(corner_count);
    unsigned int corner = 0;
    for (unsigned int primitive = 0; primitive < topology.primitive_infos.get_count();
         ++primitive) {
        unsigned int const info = topology.primitive_infos[primitive];
        unsigned int ids[4];
        unsigned int const count = get_primitive_corner_ids(topology, primitive, ids);
        unsigned int half = 0;
        for (SurfaceTriangle const& triangle : get_surface_triangles(count == 4)) {
            for (unsigned int k = 0; k < 3; ++k, ++corner) {
                corner_ids[corner] = ids[triangle.corners[k]];
                vertices[corner] = topology.polygon_vertex_indices[corner_ids[corner]];
                edges[corner] = is_within_polygon(info, half, k) ? SmoothingEdge::SMOOTH
                                                                 : SmoothingEdge::UNDECIDED;
            }
            ++half;
        }
    }
}
