#pragma once

#include <platform/qz_app_base.h>
#include <poly/mesh/poly_mesh_records.h>

// Corners of triangles are numbered in 32 bits, of which one number means none.
constexpr unsigned long long largest_cut_corner_count = 0xFFFFFFFEull;
// Those that a polygon of `n` corners has when it is cut.
constexpr unsigned long long get_cut_corner_count(unsigned int const& n) {
    return n > 2 ? 3ull * (n - 2) : 0;
}

// Whether polygons can be built over `vertex_count` vertices: their corners and vertices are there,
// each has a group, named or not, and all cut into triangles, their corners number at most
// `largest_cut_corner_count`. If not, that is said at level 2. `operation` is the class and
// operation joined by a point.
bool is_buildable(char const* operation, PolyMeshPolygons const& polygons,
                  unsigned int const& vertex_count);
// Says at level 2 that polygons would have too many corners.
void log_too_large(char const* operation);

// Fills the primitive arrays and counters of `topology`. Triangles stay whole. So do 4-gons; with
// `check_quads` only those whose corners lie strictly on opposite sides of both diagonals. All
// other polygons are cut by `triangulate_polygon`; where that falls short, by a fan from corner 0.
// `topology` must hold the polygons already; `progress` may be null.
// Returns the number of triangles that had to come from fans for want of better ones.
unsigned int build_primitives(PolyMeshPolygons const& polygons,
                              CoreBasicArray<GMathVec3<float>> const& positions,
                              bool const& check_quads, PolyMeshTopology& topology,
                              AppProgressBar* progress);

// Says at level 4 that `count` triangles are degenerate.
void log_degenerate_triangles(unsigned int const& count, AppProgressBar const* progress);
