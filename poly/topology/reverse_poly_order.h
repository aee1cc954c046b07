#pragma once

#include <platform/qz_core.h>
#include <poly/export.h>

// Turns every polygon of a list round, in place: its last corner becomes its first.
//   polygon_vertex_count    the corner count of each of the `polygon_count` polygons
//   polygon_vertex_indices  their corners, one polygon after another; at least as many as the
//                           counts add up to (not checked)
QZ_POLY_EXPORT void reverse_poly_order(unsigned int const* polygon_vertex_count,
                                       unsigned int const& polygon_count,
                                       CoreArray<unsigned int>& polygon_vertex_indices);

// The same, with one polygon to each count.
QZ_POLY_EXPORT void reverse_poly_order(CoreArray<unsigned int> const& polygon_vertex_count,
                                       CoreArray<unsigned int>& polygon_vertex_indices);
