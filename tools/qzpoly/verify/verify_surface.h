#pragma once

#include <poly/mesh/poly_mesh.h>

#include <algorithm>
#include <span>
#include <vector>

// One of the triangles that rays are tested against; a quad has two.
struct ToolTriangle {
    unsigned int vertices[3];
    unsigned int primitive;
};

// Where two triangles meet.
struct ToolSharedEdge {
    unsigned int vertices[2];
    unsigned int triangles[2];
};

// What rays can be aimed at.
struct ToolVerifySurface {
    std::vector<ToolTriangle> triangles;
    std::vector<unsigned int> first_triangles;  // by primitive, and one more at the end
    std::vector<ToolSharedEdge> edges;          // in no triangle twice; diagonals of quads too
    // The triangles around a vertex: those from fan_offsets[fan] to fan_offsets[fan + 1].
    std::vector<unsigned int> fans;  // by vertex
    std::vector<unsigned int> fan_offsets;
    std::vector<unsigned int> fan_triangles;
    // Edges of primitives that are not shared by exactly two, in opposite directions.
    unsigned int unpaired_count = 0;
    bool is_paired_by_position = false;

    std::span<unsigned int const> get_fan(unsigned int const& vertex) const {
        unsigned int const* const range = &fan_offsets[fans[vertex]];
        return {fan_triangles.data() + range[0], fan_triangles.data() + range[1]};
    }
    // Whether they have two points in common; true of a triangle and itself.
    bool are_neighbours(ToolTriangle const& a, ToolTriangle const& b) const {
        auto const is_common = [&](unsigned int const& v) {
            return fans[v] == fans[b.vertices[0]] || fans[v] == fans[b.vertices[1]] ||
                   fans[v] == fans[b.vertices[2]];
        };
        return std::count_if(std::begin(a.vertices), std::end(a.vertices), is_common) >= 2;
    }
    bool is_closed() const { return unpaired_count == 0 && !edges.empty(); }
};

// Edges are paired by the vertices they name or, where that leaves some over, by the positions at
// rest of these vertices, since equal positions are equal numbers to a ray. An edge from a point to
// itself is none, nor are two edges of one primitive that cancel each other out.
ToolVerifySurface make_verify_surface(PolyMesh const& mesh);
