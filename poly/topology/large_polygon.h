#pragma once

#include <platform/qz_gmath.h>

// triangulate_polygon for 4 corners and more. Takes one block of about 50 bytes a corner from the
// heap and frees it; returns 0 if it is refused.
unsigned int triangulate_large_polygon(GMathVec3<float> const* positions,
                                       unsigned int const* indices, unsigned int const& count,
                                       unsigned int* out);
