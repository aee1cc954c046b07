#pragma once

#include <poly/mesh/poly_mesh_records.h>

// What is known of an edge.
enum class SmoothingEdge : unsigned char {
    UNDECIDED = 0,  // a side of a polygon, until the angles are compared
    SMOOTH = 1,     // within a polygon, or between faces that bend little
    HARD = 2,
};

// The primitives of a mesh as triangles; a quad is two, with its diagonal smooth. Triangle t has
// the corners 3t to 3t + 2, and its edges have the numbers of the corners that they start at.
struct SmoothingTriangles {
    CoreArray<unsigned int> corner_ids;  // by corner: its position in polygon_vertex_indices
    CoreArray<unsigned int> vertices;    // by corner
    CoreArray<SmoothingEdge> edges;      // by edge

    explicit SmoothingTriangles(PolyMeshTopology const& topology);

    unsigned int get_count() const { return vertices.get_count() / 3; }
};

// The two halves of a quad meet in edge 2 of the first and edge 0 of the second.
inline bool is_quad_diagonal(unsigned int const& half, unsigned int const& edge) {
    return edge == (half == 0 ? 2u : 0u);
}

// The corner after, and the one before, on the corner's triangle. The edge of the corner before
// ends where this corner's starts.
inline unsigned int get_next_corner(unsigned int const& corner) {
    return corner % 3 == 2 ? corner - 2 : corner + 1;
}
inline unsigned int get_previous_corner(unsigned int const& corner) {
    return corner % 3 == 0 ? corner + 2 : corner - 1;
}
