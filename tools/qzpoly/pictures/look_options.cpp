#include <tools/qzpoly/pictures/look_options.h>

#include <tools/qzpoly/pictures/materials.h>
#include <tools/qzpoly/terminal/numbers.h>

#include <CLI/CLI.hpp>

#include <charconv>
#include <thread>

namespace {

struct NamedColor {
    char const* name;
    unsigned int rgb;
};
constexpr NamedColor named_colors[] = {
    {"white", 0xFFFFFF}, {"black", 0x000000}, {"grey", 0x808080}, {"blue", 0x30507A}};

// False for what is no color.
bool read_color(std::string const& text, ToolColor& color) {
    unsigned int rgb = 0;
    char const* const end = text.data() + text.size();
    bool is_color = text.size() == 6 && std::from_chars(text.data(), end, rgb, 16).ptr == end;
    for (NamedColor const& named : named_colors) {
        if (text == named.name) {
            rgb = named.rgb;
            is_color = true;
        }
    }
    auto const get_part = [&](unsigned int const& shift) {
        return static_cast<float>(rgb >> shift & 0xFF) / 255.0f;
    };
    color = from_display(get_part(16), get_part(8), get_part(0));
    return is_color;
}

std::string check_color(std::string const& text) {
    ToolColor color;
    return read_color(text, color)
               ? std::string()
               : "no color: " + text + "; white, black, grey, blue, or RRGGBB in hexadecimal";
}

// Says so if something was asked for that the mesh does not have.
void check_maps(ToolLookOptions const& options, PolyMesh const& mesh, ToolMessages& messages) {
    struct Row {
        char const* option;
        unsigned int map;
        unsigned int count;
    };
    for (Row const& row : {Row{"--uv-map", options.uv_map, mesh.get_uv_map_count()},
                           Row{"--color-map", options.color_map, mesh.get_color_map_count()}}) {
        if (row.map != 0 && row.map >= row.count) {
            refuse_option(row.option,
                          make_text("there is no ", row.map, ": the mesh has ", row.count));
        }
    }
    if ((options.shade_mode == "uv" || !options.texture.empty()) && mesh.get_uv_map_count() == 0) {
        messages.warn("the mesh has no uv map");
    }
    if (options.shade_mode == "color" && mesh.get_color_map_count() == 0) {
        messages.warn("the mesh has no color map");
    }
}

// Finds the property that is to be shown; false after saying that there is none.
bool find_property(ToolLookOptions const& options, GeometryObject const& geometry,
                   CtxEval const& ctx, ToolMessages& messages, ToolPropertyView& view) {
    std::string name;
    if (!shows_property(options.shade_mode, name)) {
        return true;
    }
    GeometryProperty const* const property =
        geometry.find_property(CoreString(std::string_view(name)));
    if (property == nullptr) {
        messages.fail(make_text("no --property is named '", std::string_view(name), "'"));
        return false;
    }
    view = make_property_view(geometry, ctx, *property);
    return true;
}

bool make_appearance(ToolLookOptions const& options, ToolMesh const& mesh, ToolMessages& messages,
                     ToolAppearance& appearance) {
    appearance.uv_map = options.uv_map;
    appearance.color_map = options.color_map;
    if (options.shade_mode != get_shade_modes()[0].name) {
        if (!options.texture.empty()) {
            refuse_option("--texture", make_text("needs --shade ", get_shade_modes()[0].name));
        }
        return true;
    }
    if (!options.ignores_materials) {
        appearance.materials = load_materials(mesh, messages);
    }
    if (!options.texture.empty()) {
        std::string reason;
        std::size_t size = 0;
        appearance.texture = load_texture(options.texture, tool_largest_texture, size, reason);
        if (!appearance.texture) {
            messages.fail(make_text("cannot read ", std::string_view(options.texture), ": ",
                                    std::string_view(reason)));
            return false;
        }
    }
    return true;
}

}  // namespace

void add_look_options(CLI::App& command, ToolLookOptions& options, std::string const& usual_samples,
                      bool const& has_properties) {
    options.thread_count = std::max(1u, std::thread::hardware_concurrency());
    std::string meanings = "Colors:";
    auto const is_known = [has_properties](std::string const& name) {
        std::string property;
        return find_shade_mode(name) != nullptr &&
               (has_properties || !shows_property(name, property));
    };
    for (ToolShadeMode const& mode : get_shade_modes()) {
        if (is_known(mode.name)) {
            meanings +=
                make_text(meanings.back() == ':' ? " " : "; ", mode.name, ": ", mode.meaning);
        }
    }
    command.add_option("--shade", options.shade_mode, meanings)
        ->check([is_known](std::string const& name) {
            return is_known(name) ? std::string() : "no such mode: " + name;
        })
        ->capture_default_str();
    command
        .add_option("--texture", options.texture,
                    "A picture over the whole surface, laid by its uv map")
        ->type_name("PNG");
    command.add_flag("--no-materials", options.ignores_materials,
                     "Leave the material libraries and the surface colors of the file alone");
    command.add_option("--background", options.background, "white, black, grey, blue, or RRGGBB")
        ->type_name("COLOR")
        ->check(&check_color);
    command
        .add_option("--ambient-occlusion", options.occlusion_rays,
                    "Light by how open each place is, found with so many rays a sample [8]")
        ->type_name("[RAYS]")
        ->check(CLI::Range(1u, 256u));
    command
        .add_option("--samples", options.samples,
                    make_text("Rays for a pixel [", std::string_view(usual_samples), "]"))
        ->check(CLI::Range(1u, 4096u));
    command.add_option("--threads", options.thread_count, "Render threads [all cores]")
        ->check(CLI::Range(1u, 1024u));
}

void add_map_options(CLI::App& command, ToolLookOptions& options) {
    command.add_option("--uv-map", options.uv_map, "Number of the uv map, from 0");
    command.add_option("--color-map", options.color_map, "Number of the color map, from 0");
}

bool make_look(ToolLookOptions const& options, ToolMesh const& mesh, GeometryObject const& geometry,
               CtxEval const& ctx, unsigned int const& usual_samples, ToolMessages& messages,
               ToolRenderSettings& settings) {
    check_maps(options, *mesh.mesh, messages);
    ToolColor background;
    if (read_color(options.background, background)) {
        settings.background = background;
    }
    settings.shade_mode = find_shade_mode(options.shade_mode);
    if (options.occlusion_rays != 0 && !settings.shade_mode->is_lit) {
        refuse_option("--ambient-occlusion", make_text("there is no light with --shade ",
                                                       std::string_view(options.shade_mode)));
    }
    settings.occlusion_rays = options.occlusion_rays;
    settings.samples_per_pixel = options.samples != 0 ? options.samples : usual_samples;
    settings.thread_count = options.thread_count;
    return make_appearance(options, mesh, messages, settings.appearance) &&
           find_property(options, geometry, ctx, messages, settings.appearance.property);
}
