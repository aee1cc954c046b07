#pragma once

#include <platform/qz_gmath.h>

class GeometryObject;

// A geometry placed in space. The pointers are identities: nothing here follows them.
struct GeometryDescriptor {
    unsigned int index = 0;
    GeometryObject const* geometry = nullptr;
    GeometryObject const* base_geometry = nullptr;
    GMathMatrix4x4<double> transform = GMathMatrix4x4<double>::get_identity();
};

// A primitive at a time.
struct GeometryPrimitiveDescriptor {
    unsigned int primitive_index = 0xFFFFFFFFu;
    double time = 0.0;
};

// What lies behind a surface, as hits report it. A mesh knows of none and reports these defaults.
struct GeometryMediumDescriptor {
    float refraction_index = 1.0f;
    unsigned int medium_index = 0;
    float distance = 3.4028235e38f;  // the largest finite float
    unsigned int flags = 0;
    unsigned int reserved = 0;
};

// Whatever else a geometry wants to hand from a hit to its sample; meshes hand over null.
struct GeometryCustomData;
