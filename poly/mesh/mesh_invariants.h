#pragma once

#include <poly/mesh/poly_mesh.h>

#include <string>

// For debugging. Checks everything that holds of any built mesh: the length of every array against
// the others, and every offset, index, group, bit and box. Returns what is broken first, or
// nothing. `edges_are_built`: no edge was shown or hidden since.
std::string find_broken_invariant(PolyMesh const& mesh, bool const& edges_are_built = true);
