#pragma once

#include <platform/qz_app_base.h>
#include <platform/qz_core.h>
#include <poly/export.h>

// Which edges of a list of faces share their two vertices. An edge is named by the corner that it
// starts at; it runs to the next corner of its face. Edges of one vertex pair whose faces are more
// than two form a ring: following the neighbours visits them all.
//
// A corner's vertex is below `vertex_count`, or 0xFFFFFFFF: faces with such a corner have no
// neighbours, and neither have edges between equal vertices. A neighbour of 0xFFFFFFFF is none.
// Time is linear for meshes of bounded valence. `progress` may be null; its steps are faces.

// `indices` has three (four) vertices per face; an incomplete face at the end has no
// neighbours. `neighbours` gets the number of a neighbouring edge for every edge:
// 3 * face + k (4 * face + k). Its old storage is freed first.
QZ_POLY_EXPORT void compute_triangles_neighbourhood(CoreArray<unsigned int>& neighbours,
                                                    CoreBasicArray<unsigned int> const& indices,
                                                    unsigned int const& vertex_count,
                                                    AppProgressBar* progress);
QZ_POLY_EXPORT void compute_quads_neighbourhood(CoreArray<unsigned int>& neighbours,
                                                CoreBasicArray<unsigned int> const& indices,
                                                unsigned int const& vertex_count,
                                                AppProgressBar* progress);

// The same for polygons of any size, whose corners start at their entry of `polygon_offsets` and
// lie within `polygon_vertex_indices` (not checked). The outputs have an entry per corner: the
// neighbouring polygon, the neighbour's edge within it, and 1 where exactly two edges meet and run
// in opposite directions, else 0.
QZ_POLY_EXPORT void
compute_polygons_neighbourhood(CoreArray<unsigned int>& neighbour_polygons,
                               CoreArray<unsigned int>& neighbour_edges,
                               CoreArray<unsigned char>& edge_manifold,
                               CoreBasicArray<unsigned int> const& polygon_vertex_indices,
                               CoreBasicArray<unsigned int> const& polygon_vertex_count,
                               CoreBasicArray<unsigned int> const& polygon_offsets,
                               unsigned int const& vertex_count, AppProgressBar* progress);
