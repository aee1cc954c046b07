#pragma once

#include <bench/plain/plain_sampling.h>
#include <bench/poly_meshes.h>

#include <poly/property/poly_mesh_property.h>

// One surface with all attributes, as a mesh and as plain arrays, and places all over it.
template <unsigned int size>  // corners of a primitive: 3 or 4
struct Fragments {
    explicit Fragments(BenchMesh const& input);

    std::shared_ptr<PolyMesh> mesh;
    std::shared_ptr<PolyMeshProperty> property;  // a float by vertex
    plain::Surface<size> surface;
    std::vector<GeometryFragment> places;
};

extern template struct Fragments<3>;
extern template struct Fragments<4>;
