#pragma once

#include <platform/qz_core.h>
#include <platform/qz_gmath.h>
#include <platform/qz_lwo/export.h>

#include <cstddef>

// Appends the name and the color of each surface of an object that has one; of what is broken,
// nothing.
QZ_LWO_EXPORT void lwo_read_surface_colors(unsigned char const* bytes, std::size_t const& size,
                                           CoreArray<CoreString>& names,
                                           CoreArray<GMathVec3<float>>& colors);
