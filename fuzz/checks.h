#pragma once

#include <poly/mesh/poly_mesh.h>

// Ends the program, which keeps the input that led here, unless `holds`; `law` tells what must
// hold.
void require(bool const& holds, char const* law);

// The same for every invariant of a built mesh. `edges_are_built`: no edge was shown or hidden.
void require_sound(PolyMesh const& mesh, bool const& edges_are_built = true);
