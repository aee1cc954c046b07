#pragma once

#include <platform/qz_gmath.h>
#include <poly/export.h>

// Cuts a polygon into triangles: projects it onto its own plane and clips ears.
//   positions  points, of which the polygon uses positions[indices[0 .. count - 1]]
//   indices    `count` vertex indices, the polygon's corners in order; a vertex may come twice
//   count      of any size; below 3 nothing is read and the result is 0
//   out        room for 3 * (count - 2) entries; receives corner numbers, 0 to count - 1, three to
//              a triangle, wound as the polygon is
// Returns the number of entries written. Fewer than 3 * (count - 2) tell that the polygon could not
// be cut as a whole, as happens where it is degenerate, crosses itself or is far from planar; what
// was written stays valid. The same if there is no memory for a polygon of more than 128 corners,
// which returns 0; smaller ones allocate nothing.
// Any floats are allowed, NaN and infinity too. May be called from any thread.
QZ_POLY_EXPORT unsigned int triangulate_polygon(GMathVec3<float> const* positions,
                                                unsigned int const* indices,
                                                unsigned int const& count, unsigned int* out);
