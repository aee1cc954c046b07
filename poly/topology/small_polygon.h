#pragma once

#include <platform/qz_gmath.h>

// The most corners that triangulate_small_polygon takes.
constexpr unsigned int small_polygon_size = 128;

// triangulate_polygon for 4 to small_polygon_size corners, without a heap allocation.
unsigned int triangulate_small_polygon(GMathVec3<float> const* positions,
                                       unsigned int const* indices, unsigned int const& count,
                                       unsigned int* out);
