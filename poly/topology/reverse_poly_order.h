#pragma once

#include <platform/qz_core.h>
#include <poly/export.h>

QZ_POLY_EXPORT void reverse_poly_order(unsigned int const* polygon_vertex_count,
                                       unsigned int const& polygon_count,
                                       CoreArray<unsigned int>& polygon_vertex_indices);
QZ_POLY_EXPORT void reverse_poly_order(CoreArray<unsigned int> const& polygon_vertex_count,
                                       CoreArray<unsigned int>& polygon_vertex_indices);
