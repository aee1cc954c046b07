#pragma once

#include <poly/property/poly_mesh_property.h>

// The functions that evaluate a PolyMeshProperty. Both are null for a type or value type that
// cannot be evaluated.
//
// By vertex, values are interpolated over the primitive, in floats (items of doubles: in doubles,
// with the same weights), and derivatives are differences of elements. By polygon and for constants
// the item is given as it is, with zeros for derivatives; so it is by vertex for a fragment whose
// point index names an item. An item gives as many components as it is long, three items as many as
// the shortest. A fragment whose primitive does not exist gives none and leaves the outputs alone,
// but constants do not look at it.
//
// They need the sample's block attached, allocate nothing and take no lock.
struct PropertyCallbacks {
    GeometryProperty::IntegerCallback integer_callback;
    GeometryProperty::DoubleCallback double_callback;
};

PropertyCallbacks get_property_callbacks(PolyMeshProperty::Type const& type,
                                         ResourceProperty::Type const& value_type);
