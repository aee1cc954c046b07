#include <tools/qzpoly/pictures/shading.h>

#include <algorithm>
#include <cmath>

namespace {

// A color of full strength around the circle of hues; `hue` in turns.
ToolColor get_hue(double const& hue, float const& saturation, float const& value) {
    auto const channel = [&](double const& shift) {
        double const turn = hue + shift - std::floor(hue + shift);
        double const ramp = std::clamp(std::abs(turn * 6.0 - 3.0) - 1.0, 0.0, 1.0);
        return value * (1.0f - saturation * (1.0f - static_cast<float>(ramp)));
    };
    return from_display(channel(0.0), channel(2.0 / 3.0), channel(1.0 / 3.0));
}

ToolColor get_clay() { return from_display(0.80f, 0.78f, 0.75f); }

bool has_color_map(ToolShadePoint const& point) {
    return point.appearance.color_map < point.geometry.get_color_map_count();
}

// Values of color maps are as they are displayed.
ToolColor get_map_color(ToolShadePoint const& point) {
    GMathVec4<float> color;
    point.geometry.compute_fragment_color(point.ctx, point.fragment, point.appearance.color_map,
                                          color);
    auto const clamped = [](float const& v) { return v > 0.0f ? std::min(v, 1.0f) : 0.0f; };
    return from_display(clamped(color.x), clamped(color.y), clamped(color.z));
}

// False where the surface has no place in the uv map.
bool find_uv(ToolShadePoint const& point, GMathVec3<double>& uvw) {
    unsigned int const map = point.appearance.uv_map;
    if (!point.geometry.is_primitive_uv_mapped(point.fragment.primitive_index, map)) {
        return false;
    }
    GMathVec3<double> uvw_ds;
    GMathVec3<double> uvw_dt;
    point.geometry.compute_fragment_uvw(point.ctx, point.fragment, map, uvw, uvw_ds, uvw_dt);
    return std::isfinite(uvw.x) && std::isfinite(uvw.y);
}

ToolMaterial const* find_material(ToolShadePoint const& point) {
    auto const& materials = point.appearance.materials;
    unsigned int const group =
        point.geometry.get_primitive_shading_group_index(point.fragment.primitive_index);
    return group < materials.size() && materials[group] ? &*materials[group] : nullptr;
}

ToolColor shade_surface(ToolShadePoint const& point) {
    GMathVec3<double> uvw;
    if (point.appearance.texture && find_uv(point, uvw)) {
        return point.appearance.texture->get_color(uvw.x, uvw.y);
    }
    ToolMaterial const* const material = find_material(point);
    if (material != nullptr && material->texture && find_uv(point, uvw)) {
        return material->texture->get_color(uvw.x * material->uv_scale.x + material->uv_offset.x,
                                            uvw.y * material->uv_scale.y + material->uv_offset.y);
    }
    return has_color_map(point)  ? get_map_color(point)
           : material != nullptr ? material->color
                                 : get_clay();
}

ToolColor shade_normal(ToolShadePoint const& point) {
    GMathVec3<float> const n(point.normal);
    return from_display(n.x * 0.5f + 0.5f, n.y * 0.5f + 0.5f, n.z * 0.5f + 0.5f);
}

// Checks of 1/32, each row of u and of v in its own tint, so that turned and mirrored maps show.
ToolColor shade_uv(ToolShadePoint const& point) {
    GMathVec3<double> uvw;
    if (!find_uv(point, uvw)) {
        return from_display(0.45f, 0.45f, 0.45f);
    }
    double const u = uvw.x - std::floor(uvw.x);
    double const v = uvw.y - std::floor(uvw.y);
    bool const is_dark = std::fmod(std::floor(u * 32) + std::floor(v * 32), 2.0) != 0.0;
    ToolColor const tint = get_hue(0.55 + 0.45 * u, 0.55f, 0.55f + 0.40f * static_cast<float>(v));
    return is_dark ? tint * 0.45f : tint;
}

ToolColor shade_color(ToolShadePoint const& point) {
    return has_color_map(point) ? get_map_color(point) : from_display(0.45f, 0.45f, 0.45f);
}

// Neighbouring numbers get hues far apart, by steps of the golden ratio.
ToolColor get_numbered_color(unsigned int const& number) {
    constexpr double golden_step = 0.61803398874989485;
    double const tone = std::fmod(number * 0.37, 1.0);
    return get_hue(0.05 + number * golden_step, 0.45f + 0.2f * static_cast<float>(tone),
                   0.88f - 0.2f * static_cast<float>(tone));
}

ToolColor shade_group(ToolShadePoint const& point) {
    return get_numbered_color(
        point.geometry.get_primitive_shading_group_index(point.fragment.primitive_index));
}

ToolColor shade_primitive(ToolShadePoint const& point) {
    return get_numbered_color(point.fragment.primitive_index);
}

ToolColor shade_facing(ToolShadePoint const& point) {
    return point.is_front ? from_display(0.36f, 0.62f, 0.86f) : from_display(0.90f, 0.36f, 0.28f);
}

ToolColor shade_property(ToolShadePoint const& point) {
    return get_property_color(point.appearance.property, point.ctx, point.fragment);
}

ToolColor shade_by_list(ToolShadePoint const& point) {
    return point.appearance.primitive_colors[point.fragment.primitive_index];
}

constexpr std::string_view property_prefix = "property:";

}  // namespace

ToolShadeMode const tool_primitive_color_mode = {"", "", true, &shade_by_list};

std::vector<ToolShadeMode> const& get_shade_modes() {
    static std::vector<ToolShadeMode> const s_modes = {
        {"shaded", "in the colors of textures, color map or materials, or as clay", true,
         &shade_surface},
        {"normal", "x, y, z of the shading normal as red, green, blue", false, &shade_normal},
        {"uv", "a checker on the uv map", true, &shade_uv},
        {"color", "the color map alone, without light", false, &shade_color},
        {"group", "a color by shading group", true, &shade_group},
        {"primitive", "a color by primitive", true, &shade_primitive},
        {"facing", "front sides blue, back sides red", true, &shade_facing},
        {"property:NAME", "a property, in false colors or as a color", false, &shade_property},
    };
    return s_modes;
}

ToolShadeMode const* find_shade_mode(std::string const& name) {
    bool const is_property = name.starts_with(property_prefix);
    for (ToolShadeMode const& mode : get_shade_modes()) {
        if (is_property ? mode.get_color == &shade_property : mode.name == name) {
            return &mode;
        }
    }
    return nullptr;
}

bool shows_property(std::string const& name, std::string& property) {
    bool const is_shown = name.starts_with(property_prefix);
    property = is_shown ? name.substr(property_prefix.size()) : std::string();
    return is_shown;
}
