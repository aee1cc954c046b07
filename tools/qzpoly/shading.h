#pragma once

#include <tools/qzpoly/image.h>
#include <tools/qzpoly/property_view.h>

#include <platform/qz_geometry.h>

#include <string>
#include <vector>

// A place on a geometry, ready to be coloured. All vectors face the viewer.
struct ToolShadePoint {
    GeometryObject const& geometry;
    CtxEval const& ctx;
    GeometryFragment const& fragment;
    GMathVec3<double> normal;  // to shade with; unit
    bool is_front;             // seen from the side that corners run around counter-clockwise
    unsigned int uv_map;
    unsigned int color_map;
    ToolPropertyView const* property;  // null unless one is to be shown
};

// A way to colour a geometry. A new one is a row in the table.
struct ToolShadeMode {
    char const* name;
    char const* meaning;
    bool is_lit;  // else the colour is shown as it is
    ToolColor (*get_color)(ToolShadePoint const& point);
};

// The modes in the order of their help; the first is the usual one.
std::vector<ToolShadeMode> const& get_shade_modes();
// Null for an unknown name. A mode that shows a property is named with it, as "property:density".
ToolShadeMode const* find_shade_mode(std::string const& name);
// Whether the mode of this name shows a property, and if so which; the name may be empty.
bool shows_property(std::string const& name, std::string& property);
