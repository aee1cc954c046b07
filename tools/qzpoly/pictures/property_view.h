#pragma once

#include <tools/qzpoly/pictures/image.h>

#include <platform/qz_geometry.h>

#include <vector>

// A property as a picture shows it: vectors of three components as red, green and blue,
// anything else by its first component in false color, from blue at the lowest value to red at the
// highest.
struct ToolPropertyView {
    GeometryProperty const* property = nullptr;
    bool is_color = false;
    double lowest = 0.0;
    double highest = 0.0;
};

// Takes the range from the values at the corners of all primitives, at the times of all samples.
ToolPropertyView make_property_view(GeometryObject const& geometry, CtxEval const& ctx,
                                    GeometryProperty const& property);

// Grey where the property has no value.
ToolColor get_property_color(ToolPropertyView const& view, CtxEval const& ctx,
                             GeometryFragment const& fragment);

// Draws the scale of the false colors, if there are any, with its two ends in figures, into the
// lower left corner.
void draw_legend(ToolPropertyView const& view, ToolImage& image);
