#pragma once

#include <poly/topology/ear_triangle.h>

#include <cstdint>

// A corner and its place along the curve, which has a meaning only while they are sorted.
struct PlacedCorner {
    std::uint32_t key;
    unsigned int corner;
};

// Orders `count` corners so that those that follow one another are near each other, at whatever
// scale they lie, and those of the same vertex are side by side. Corner i is `points[i]`, which is
// finite, and the vertex `indices[i]`. `spare` is room for as many.
void order_along_curve(PlanePoint const* points, unsigned int const* indices, PlacedCorner* corners,
                       PlacedCorner* spare, unsigned int const& count);
