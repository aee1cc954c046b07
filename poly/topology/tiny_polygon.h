#pragma once

#include <platform/qz_gmath.h>

// The most corners that triangulate_tiny_polygon takes.
constexpr unsigned int tiny_polygon_size = 16;

// triangulate_polygon for 4 to tiny_polygon_size corners.
unsigned int triangulate_tiny_polygon(GMathVec3<float> const* positions,
                                      unsigned int const* indices, unsigned int const& count,
                                      unsigned int* out);
