#include <tools/qzpoly/commands.h>

#include <tools/qzpoly/camera.h>
#include <tools/qzpoly/mesh_source.h>
#include <tools/qzpoly/motion.h>
#include <tools/qzpoly/numbers.h>
#include <tools/qzpoly/scene.h>
#include <tools/qzpoly/stopwatch.h>
#include <tools/qzpoly/surface_options.h>
#include <tools/qzpoly/terminal.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <thread>

namespace {

constexpr unsigned int usual_sample_count = 12;
constexpr unsigned int usual_moving_sample_count = 32;

struct RenderOptions {
    ToolMeshOptions mesh;
    ToolCameraOptions camera;
    ToolMotionOptions motion;
    ToolSurfaceOptions surface;
    ToolRenderSettings settings;
    std::string shade_mode = get_shade_modes()[0].name;
    std::string output;
    unsigned int samples = 0;  // 0: the usual number
    bool has_edges = false;
    bool has_hard_edges = false;
    bool is_exact = false;
    bool is_brute_force = false;
};

void add_picture_options(CLI::App& command, RenderOptions& options) {
    std::string meanings = "Colors:";
    for (ToolShadeMode const& mode : get_shade_modes()) {
        meanings += make_text(meanings.back() == ':' ? " " : "; ", mode.name, ": ", mode.meaning);
    }
    command.add_option("-o,--output", options.output, "PNG file [FILE's name.png]");
    command.add_option("--shade", options.shade_mode, meanings)
        ->check([](std::string const& name) {
            return find_shade_mode(name) != nullptr ? std::string() : "no such mode: " + name;
        })
        ->capture_default_str();
    command.add_option("--uv-map", options.settings.appearance.uv_map,
                       "Number of the uv map, from 0");
    command.add_option("--color-map", options.settings.appearance.color_map,
                       "Number of the color map, from 0");
    command.add_flag("--edges", options.has_edges, "Draw the edges of polygons");
    command.add_flag("--hard-edges", options.has_hard_edges,
                     "Draw the edges that --smooth finds too sharp to smooth");
    command.add_flag("--exact", options.is_exact, "Test rays without a tolerance at edges");
    command.add_option("--samples", options.samples, "Rays for a pixel [12; in motion 32]")
        ->check(CLI::Range(1u, 4096u));
    command.add_option("--threads", options.settings.thread_count, "Render threads [all cores]")
        ->check(CLI::Range(1u, 1024u));
    // Asks every primitive for every ray: what any faster search must give.
    command.add_flag("--brute-force", options.is_brute_force)->group("");
}

// Says so if something was asked for that the mesh does not have.
void check_maps(RenderOptions const& options, PolyMesh const& mesh, ToolMessages& messages) {
    struct Row {
        char const* option;
        unsigned int map;
        unsigned int count;
    };
    for (Row const& row :
         {Row{"--uv-map", options.settings.appearance.uv_map, mesh.get_uv_map_count()},
          Row{"--color-map", options.settings.appearance.color_map, mesh.get_color_map_count()}}) {
        if (row.map != 0 && row.map >= row.count) {
            refuse_option(row.option,
                          make_text("there is no ", row.map, ": the mesh has ", row.count));
        }
    }
    if (options.shade_mode == "uv" && mesh.get_uv_map_count() == 0) {
        messages.warn("the mesh has no uv map");
    }
    if (options.shade_mode == "color" && mesh.get_color_map_count() == 0) {
        messages.warn("the mesh has no color map");
    }
}

GMathVec3<double> get_vertical(ToolCameraOptions const& options) {
    return gmath_unit(GMathVec3<double>(options.up[0], options.up[1], options.up[2]));
}

std::vector<ToolEdgeLayer> list_edges(RenderOptions const& options, PolyMesh const& mesh) {
    std::vector<ToolEdgeLayer> layers;
    if (options.has_edges || options.has_hard_edges) {
        ToolEdges edges =
            options.has_edges ? list_visible_edges(mesh) : ToolEdges(mesh.get_primitive_count());
        CoreArray<unsigned char> hard_edges;
        if (options.has_hard_edges) {
            PolyMeshSmoothed::find_hard_edges(mesh, options.surface.smoothing_angle, hard_edges);
        }
        for (unsigned int i = 0; i < hard_edges.get_count(); ++i) {
            edges[i] = static_cast<unsigned char>(edges[i] | hard_edges[i]);
        }
        layers.push_back({std::move(edges), std::nullopt});
    }
    return layers;
}

// Finds the property that is to be shown; false after saying that there is none.
bool find_property(RenderOptions const& options, GeometryObject const& geometry, CtxEval const& ctx,
                   ToolMessages& messages, ToolPropertyView& view) {
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

ToolRenderSettings make_settings(RenderOptions const& options,
                                 std::vector<double> const& shutter_times) {
    ToolRenderSettings settings = options.settings;
    settings.shade_mode = find_shade_mode(options.shade_mode);
    settings.samples_per_pixel = options.samples != 0       ? options.samples
                                 : shutter_times.size() > 1 ? usual_moving_sample_count
                                                            : usual_sample_count;
    if (!shutter_times.empty()) {
        settings.shutter_open = shutter_times.front();
        settings.shutter_close = shutter_times.back();
    }
    return settings;
}

// Draws the mesh; false after the reason has been shown.
bool draw(RenderOptions const& options, PolyMesh const& mesh, GeometryObject const& geometry,
          std::vector<double> const& shutter_times, ToolMessages& messages, ToolImage& image) {
    ToolScene scene(geometry, shutter_times);
    ToolCamera camera;
    if (!make_camera(options.camera, scene.get_extent(), messages, camera)) {
        return false;
    }
    ToolRenderSettings settings = make_settings(options, shutter_times);
    settings.edge_layers = list_edges(options, mesh);
    ToolPropertyView& property = settings.appearance.property;
    if (!find_property(options, geometry, scene.get_ctx(), messages, property) ||
        !scene.prepare(options.is_exact ? GeometryRaytraceCtx::TEST_EXACT
                                        : GeometryRaytraceCtx::TEST_TOLERANT,
                       options.is_brute_force, settings.thread_count, messages)) {
        return false;
    }
    ToolProgress progress("rendering");
    if (!scene.draw(camera, settings, progress.get_bar(), messages, image)) {
        return false;
    }
    if (property.property != nullptr) {
        draw_legend(property, image);
    }
    return true;
}

int run_render(RenderOptions const& options, ToolMessages& messages) {
    ToolStopwatch const watch;
    int status = tool_failure;
    ToolMesh mesh;
    std::vector<double> shutter_times;
    ToolImage image;
    ToolSurface surface;
    if (!load_moving_mesh(options.mesh, options.motion, get_vertical(options.camera), messages,
                          mesh, shutter_times, status)) {
        return status;
    }
    check_maps(options, *mesh.mesh, messages);
    if (!make_surface(options.surface, *mesh.mesh, messages, surface) ||
        !draw(options, *mesh.mesh, *surface.geometry, shutter_times, messages, image)) {
        return is_interrupted() ? tool_interrupted : tool_failure;
    }
    std::string const path = options.output.empty() ? mesh.name + ".png" : options.output;
    std::string reason;
    if (!write_png(image, path, reason)) {
        return messages.fail(
            make_text("cannot write ", std::string_view(path), ": ", std::string_view(reason)));
    }
    std::printf("%s: %u x %u, %u primitives, %.2f s\n", make_printable(path).c_str(), image.width,
                image.height, mesh.mesh->get_primitive_count(), watch.get_seconds());
    return tool_success;
}

}  // namespace

void add_render_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<RenderOptions>();
    options->settings.thread_count = std::max(1u, std::thread::hardware_concurrency());
    CLI::App* const command = app.add_subcommand("render", "Render a picture");
    add_mesh_options(*command, options->mesh, ToolFileNeed::OPTIONAL);
    add_picture_options(*command, *options);
    add_surface_options(*command, options->surface);
    command->get_option("--hard-edges")->needs(command->get_option("--smooth"));
    add_camera_options(*command, options->camera);
    add_motion_options(*command, options->motion);
    command->callback(
        [options, &session] { session.status = run_render(*options, session.messages); });
}
