#pragma once

#include <poly/mesh/poly_mesh.h>

// Changes a copy of a mesh, or fills one from what the mesh tells or serialises. In which of these
// ways depends on the mesh alone: all of them would slow the search for inputs down.
void change_copies(PolyMesh const& mesh);
