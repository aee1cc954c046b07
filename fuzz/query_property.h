#pragma once

#include <platform/qz_geometry.h>

// Evaluates a property as integers and doubles at some places of a geometry, its own samples' times
// and others.
void query_property(GeometryObject const& geometry, GeometryProperty const& property);
