#pragma once

#include <poly/mesh/poly_mesh.h>

// Checks the invariants of a built mesh and asks it, a changed copy and a smoothed view everything
// there is to ask; of many primitives, a few.
void query_everything(PolyMesh const& mesh);
