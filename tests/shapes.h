#pragma once

#include <poly/mesh/poly_mesh.h>

#include <random>
#include <vector>

// Small meshes by name.

template <typename T>
CoreBasicArray<T> view(std::vector<T> const& values) {
    return {values.data(), static_cast<unsigned int>(values.size())};
}

using Points = std::vector<GMathVec3<float>>;
using Numbers = std::vector<unsigned int>;

// Polygons in shading group 0, "all", unless said otherwise.
struct Shape {
    Points positions;
    Numbers vertex_count;
    Numbers vertex_indices;
    Points velocities = {};
    std::vector<GeometryUvMap> uv_maps = {};
    std::vector<GeometryColorMap> color_maps = {};
    std::vector<GeometryNormalMap> normal_maps = {};
    Numbers groups = {};
    std::vector<CoreString> names = {"all"};
    bool check_quads = true;

    void set(PolyMesh& mesh, AppProgressBar* progress = nullptr) const {
        Numbers const zeros(vertex_count.size(), 0);
        mesh.set(view(positions), view(velocities), view(vertex_indices), view(vertex_count),
                 view(groups.empty() ? zeros : groups), view(names), view(uv_maps),
                 view(normal_maps), view(color_maps), check_quads, progress);
    }
};

template <typename Map, typename Values>
Map make_map(char const* name, Values const& values, Numbers const& indices = {}) {
    Map map;
    map.name = name;
    map.values.copy_from(view(values));
    map.indices.copy_from(view(indices));
    return map;
}

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

// Polygons of 0 to 9 corners over few vertices, in four groups of which three have names: concave,
// folded, crossing themselves, and with corners that coincide. With one map of each kind, by
// corner, some of whose indices name no value.
inline Shape make_soup(unsigned int const& seed) {
    std::mt19937 random(seed);
    auto const get_number = [&random](unsigned int const& end) {
        return static_cast<unsigned int>(random() % end);
    };
    auto const get_value = [&] { return static_cast<float>(get_number(9)) / 4.0f - 1.0f; };
    Shape shape;
    shape.names = {"a", "b", "c"};
    shape.check_quads = seed % 2 == 0;
    for (unsigned int i = 0; i < 12; ++i) {
        shape.positions.push_back({get_value(), get_value(), i % 3 == 0 ? get_value() : 0.0f});
        shape.velocities.push_back({get_value(), get_value(), get_value()});
    }
    Numbers indices;
    for (unsigned int i = 0; i < 20; ++i) {
        shape.groups.push_back(get_number(4));
        shape.vertex_count.push_back(get_number(10));
        for (unsigned int k = 0; k < shape.vertex_count[i]; ++k) {
            shape.vertex_indices.push_back(get_number(12));
            indices.push_back(get_number(20) == 0 ? 0xFFFFFFFF : get_number(14));
        }
    }
    shape.uv_maps = {make_map<GeometryUvMap>("uv", shape.velocities, indices)};
    shape.normal_maps = {make_map<GeometryNormalMap>("normal", shape.velocities, indices)};
    shape.color_maps = {make_map<GeometryColorMap>(
        "color", std::vector<GMathVec4<unsigned char>>(12, {1, 2, 3, 4}), indices)};
    return shape;
}

// Random triangles, random quads, the same with other polygons among them, and soups.
inline Shape make_even_soup(unsigned int const& seed) {
    Shape shape = make_soup(seed);
    if (unsigned int const size = seed % 3 + 2; size != 2) {
        std::mt19937 random(seed);
        shape.vertex_count.assign(60, size);
        shape.vertex_count[seed % 60] = seed % 9 < 6 ? size : seed % 4 + 2;
        shape.vertex_indices.resize(59 * size + shape.vertex_count[seed % 60]);
        for (unsigned int& vertex : shape.vertex_indices) {
            vertex = static_cast<unsigned int>(random() % 12);
        }
        shape.groups.resize(60);
        for (unsigned int i = 0; i < 60; ++i) {
            shape.groups[i] = (i + seed) / 21 % 4;
        }
        shape.check_quads = false;
        shape.uv_maps[0].indices.copy_from(view(shape.vertex_indices));
        shape.color_maps[0].indices.copy_from(view(shape.vertex_indices));
        shape.normal_maps.clear();
    }
    for (unsigned int i = 0; i < shape.color_maps[0].values.get_count(); ++i) {
        shape.color_maps[0].values[i].y = static_cast<unsigned char>(i * 23);
    }
    return shape;
}
