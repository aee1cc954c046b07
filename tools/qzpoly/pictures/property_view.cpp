#include <tools/qzpoly/pictures/property_view.h>

#include <tools/qzpoly/pictures/picture_text.h>
#include <tools/qzpoly/terminal/messages.h>

#include <algorithm>
#include <cmath>

namespace {

ToolColor get_no_value_color() { return from_display(0.45f, 0.45f, 0.45f); }

float clamp_to_unit(double const& value) {
    return value > 0.0 ? static_cast<float>(std::min(value, 1.0)) : 0.0f;
}

// From blue over green to red.
ToolColor get_false_color(double const& fraction) {
    double const f = std::clamp(fraction, 0.0, 1.0);
    auto const ramp = [&](double const& centre) {
        return clamp_to_unit(1.5 - std::fabs(f - centre) * 4.0);
    };
    return from_display(ramp(0.80), ramp(0.5), ramp(0.20));
}

}  // namespace

ToolPropertyView make_property_view(GeometryObject const& geometry, CtxEval const& ctx,
                                    GeometryProperty const& property) {
    constexpr double corners[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    ToolPropertyView view{&property, property.get_value_extent() == 3, INFINITY, -INFINITY};
    GMathTimeSampling const& times = property.get_time_sampling();
    GeometryFragment fragment;
    for (unsigned int primitive = 0; primitive < geometry.get_primitive_count(); ++primitive) {
        fragment.primitive_index = primitive;
        bool const is_quad = geometry.get_primitive_edge_count(primitive) == 4;
        for (unsigned int k = 0; k < 4 * times.get_sample_count(); ++k) {
            // (1, 1) lies off a triangle, whose corner 2 is (0, 1).
            bool const is_off = !is_quad && k % 4 == 2;
            fragment.s = is_off ? 0 : corners[k % 4][0];
            fragment.t = corners[k % 4][1];
            fragment.time = times.get_sample_time(k / 4);
            double value[1];
            unsigned int const count =
                property.evaluate(ctx, fragment, value, nullptr, nullptr, nullptr, 1);
            if (count != 0 && std::isfinite(value[0])) {
                view.lowest = std::min(view.lowest, value[0]);
                view.highest = std::max(view.highest, value[0]);
            }
        }
    }
    return view;
}

ToolColor get_property_color(ToolPropertyView const& view, CtxEval const& ctx,
                             GeometryFragment const& fragment) {
    double value[3] = {0, 0, 0};
    unsigned int const count =
        view.property->evaluate(ctx, fragment, value, nullptr, nullptr, nullptr, 3);
    if (count == 0) {
        return get_no_value_color();
    }
    if (view.is_color) {
        return from_display(clamp_to_unit(value[0]), clamp_to_unit(value[1]),
                            clamp_to_unit(value[2]));
    }
    double const range = view.highest - view.lowest;
    return std::isfinite(value[0])
               ? get_false_color(range > 0 ? (value[0] - view.lowest) / range : 0.5)
               : get_no_value_color();
}

void draw_legend(ToolPropertyView const& view, ToolImage& image) {
    if (view.property == nullptr || view.is_color || !(view.lowest <= view.highest)) {
        return;
    }
    unsigned int const scale = std::max(1u, image.height / 300);
    unsigned int const margin = 8 * scale;
    unsigned int const height = 8 * scale;
    unsigned int const width = std::min(120 * scale, image.width - std::min(image.width, margin));
    unsigned int const drop = margin + height + (tool_letter_height + 2) * scale;
    unsigned int const top = image.height - std::min(image.height, drop);
    for (unsigned int x = 0; x < width; ++x) {
        fill(image, margin + x, top, 1, height, get_false_color((x + 0.5) / width));
    }
    std::string const highest = make_text(static_cast<float>(view.highest));
    unsigned int const text_width =
        tool_letter_advance * scale * static_cast<unsigned int>(highest.size());
    unsigned int const text_top = top + height + 2 * scale;
    ToolColor const black(0, 0, 0);
    draw_text(image, make_text(static_cast<float>(view.lowest)), margin, text_top, scale, black);
    draw_text(image, highest, margin + width - std::min(width, text_width), text_top, scale, black);
}
