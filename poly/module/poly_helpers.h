#pragma once

#include <poly/mesh/poly_mesh.h>

// Ready-made meshes.
class QZ_POLY_EXPORT PolyHelpers {
  public:
    // A sphere about the origin, or an ellipsoid of the given radii, with its axis along y:
    // triangles at the poles and quads between, a uv map "parametric" with a seam and a normal map
    // "default", in one group "surface". `segments` go around the axis, `rings` from pole to pole;
    // below 2 they count as 2. The caller deletes the mesh. One of more than 2^32 / 6 or so quads
    // is refused at level 2, and the mesh is empty.
    static PolyMesh* create_poly_sphere(unsigned int const& segments, unsigned int const& rings,
                                        GMathVec3<double> const& radii);
};
