#pragma once

#include <platform/qz_gmath.h>
#include <poly/export.h>

QZ_POLY_EXPORT unsigned int triangulate_polygon(GMathVec3<float> const* positions,
                                                unsigned int const* indices,
                                                unsigned int const& count, unsigned int* out);
