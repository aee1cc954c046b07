#pragma once

#include <poly/mesh/poly_mesh.h>

#include <vector>

// How many triangles each polygon of a mesh is short of, because it could only be cut into a fan.
std::vector<unsigned int> count_missing_triangles(PolyMesh const& mesh);
// All of them.
unsigned int count_degenerate_triangles(PolyMesh const& mesh);
