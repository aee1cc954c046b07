#pragma once

#include <platform/qz_core.h>
#include <platform/qz_gmath.h>

#include <vector>

// For each vertex the first one at the same place; -0 lies where +0 does. Positions that are no
// numbers are told apart by their bits.
std::vector<unsigned int> merge_vertices(CoreBasicArray<GMathVec3<float>> const& positions);
