#pragma once

#include <poly/mesh/poly_mesh_base.h>

// Every query of a renderer, of up to about `primitive_count` primitives spread over the geometry.
void query_geometry(PolyMeshBase const& geometry, unsigned int const& primitive_count);
