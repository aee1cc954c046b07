#pragma once

#include <tools/qzpoly/pictures/image.h>
#include <tools/qzpoly/pictures/property_view.h>
#include <tools/qzpoly/pictures/texture.h>

#include <platform/qz_geometry.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

// The color of a group of polygons; a texture takes its place where there are uv coordinates.
struct ToolMaterial {
    ToolColor color;
    std::shared_ptr<ToolTexture const> texture = nullptr;
    GMathVec2<float> uv_scale{1, 1};  // takes uv coordinates to those of the texture
    GMathVec2<float> uv_offset{0, 0};
};

// What a geometry is colored by.
struct ToolAppearance {
    unsigned int uv_map = 0;
    unsigned int color_map = 0;
    ToolPropertyView property;                           // for a mode that shows one
    std::shared_ptr<ToolTexture const> texture;          // of all polygons; goes before all else
    std::vector<std::optional<ToolMaterial>> materials;  // by group
    std::vector<ToolColor> primitive_colors;             // for a mode that shows them
};

// A place on a geometry, ready to be colored. All vectors face the viewer.
struct ToolShadePoint {
    GeometryObject const& geometry;
    CtxEval const& ctx;
    GeometryFragment const& fragment;
    GMathVec3<double> normal;  // to shade with; unit
    bool is_front;             // seen from the side that corners run around counter-clockwise
    ToolAppearance const& appearance;
};

// A way to color a geometry. A new one is a row in the table.
struct ToolShadeMode {
    char const* name;
    char const* meaning;
    bool is_lit;  // else the color is shown as it is
    ToolColor (*get_color)(ToolShadePoint const& point);
};

// The modes in the order of their help; the first is the usual one.
std::vector<ToolShadeMode> const& get_shade_modes();
// The mode that shows `primitive_colors`; it has no name.
extern ToolShadeMode const tool_primitive_color_mode;
// Null for an unknown name. A mode that shows a property is named with it, as "property:density".
ToolShadeMode const* find_shade_mode(std::string const& name);
// Whether the mode of this name shows a property, and if so which; the name may be empty.
bool shows_property(std::string const& name, std::string& property);
