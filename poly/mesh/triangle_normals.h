#pragma once

#include <platform/qz_gmath.h>

// What eight triangles give to the normals of their vertices and to the sums of their groups. Row k
// of an array is that of triangle k; its fourth component is named where it is not 0.
struct TriangleNormals {
    static constexpr unsigned int count = 8;

    // By corner: the triangle's unit normal times 1 + cosine of the directions along the edges that
    // meet there, formed in double and rounded to float. Zero for a degenerate triangle.
    float weighted[3][count][4];
    // The absolute components of the normal and its length, which is twice the area; all 0 where
    // that is not finite.
    float areas[count][4];
};

// `vertices` are three of each triangle, one triangle after the other.
using ComputeTriangleNormals = void (*)(GMathVec3<float> const* positions,
                                        unsigned int const* vertices, TriangleNormals& out);

// Side by side, four at a time. Every lane is rounded as the scalar operation is, so all ways give
// the same bits.
void compute_triangle_normals(GMathVec3<float> const* positions, unsigned int const* vertices,
                              TriangleNormals& out);
// The same way, or eight at a time where the processor can.
ComputeTriangleNormals get_fastest_triangle_normals();
