#pragma once

#include <poly/mesh/poly_mesh.h>

#include <cstddef>

// A number made of everything that a mesh holds: equal for equal meshes.
std::size_t get_digest(PolyMesh const& mesh);
