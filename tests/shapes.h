#pragma once

#include <poly/mesh/poly_mesh.h>

#include <vector>

// Small meshes by name.

template <typename T>
CoreBasicArray<T> view(std::vector<T> const& values) {
    return {values.data(), static_cast<unsigned int>(values.size())};
}

using Points = std::vector<GMathVec3<float>>;
using Numbers = std::vector<unsigned int>;

// Polygons in shading group 0, "all".
struct Shape {
    Points positions;
    Numbers vertex_count;
    Numbers vertex_indices;
    Points velocities = {};
    std::vector<GeometryUvMap> uv_maps = {};
    std::vector<GeometryColorMap> color_maps = {};

    void set(PolyMesh& mesh) const {
        Numbers const groups(vertex_count.size(), 0);
        std::vector<CoreString> const names{"all"};
        mesh.set(view(positions), view(velocities), view(vertex_indices), view(vertex_count),
                 view(groups), view(names), view(uv_maps), {}, view(color_maps), true, nullptr);
    }
};

inline Shape make_triangle() { return {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {3}, {0, 1, 2}}; }

// In the plane z = 0, around [0, 1] x [0, 1].
inline Shape make_square() {
    return {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {4}, {0, 1, 2, 3}};
}

// A square whose corner 1 is lifted by 1: not flat, and so cut along its diagonal 0-2 alone.
inline Shape make_folded_quad() {
    return {{{0, 0, 0}, {1, 0, 1}, {1, 1, 0}, {0, 1, 0}}, {4}, {0, 1, 2, 3}};
}

// A triangle, a square and a pentagon in a row.
inline Shape make_row() {
    return {
        {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {2, 0, 0}, {2, 1, 0}, {3, 0, 0}, {4, 1, 0}, {3, 2, 0}},
        {3, 4, 5},
        {0, 1, 2, 1, 3, 4, 2, 3, 5, 6, 7, 4}};
}
