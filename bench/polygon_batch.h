#pragma once

#include <platform/qz_gmath.h>

#include <string>
#include <vector>

// Polygons of `corner_count` corners each: in their plane, and tilted in space.
struct PolygonBatch {
    std::vector<std::vector<GMathVec2<float>>> flat;
    std::vector<std::vector<GMathVec3<float>>> positions;
    std::vector<unsigned int> indices;  // of each polygon: 0, 1, 2, ...
};

// Shapes: "convex", "star", "comb", "spiral", "crescent" and "random", which is a star with points
// of any length. Each polygon of a batch is turned by an angle of its own.
PolygonBatch make_polygon_batch(std::string const& shape, unsigned int const& corner_count,
                                unsigned int const& polygon_count);
