#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/models/motion.h>
#include <tools/qzpoly/pictures/camera.h>
#include <tools/qzpoly/pictures/look_options.h>
#include <tools/qzpoly/pictures/scene.h>
#include <tools/qzpoly/pictures/surface_options.h>
#include <tools/qzpoly/terminal/numbers.h>
#include <tools/qzpoly/terminal/stopwatch.h>
#include <tools/qzpoly/terminal/terminal.h>

#include <CLI/CLI.hpp>

#include <cstdio>

namespace {

constexpr unsigned int usual_sample_count = 12;
constexpr unsigned int usual_moving_sample_count = 32;

struct RenderOptions {
    ToolMeshOptions mesh;
    ToolCameraOptions camera;
    ToolMotionOptions motion;
    ToolSurfaceOptions surface;
    ToolLookOptions look;
    std::string output;
    bool has_edges = false;
    bool is_exact = false;
    bool is_brute_force = false;
};

void add_picture_options(CLI::App& command, RenderOptions& options) {
    command.add_option("-o,--output", options.output, "PNG file [FILE's name.png]");
    add_look_options(command, options.look, "12; in motion 32", true);
    add_map_options(command, options.look);
    command.add_flag("--edges", options.has_edges, "Draw the edges of polygons");
    command.add_flag("--hard-edges", options.surface.has_hard_edges,
                     "Draw the edges that --smooth finds too sharp to smooth");
    command.add_flag("--exact", options.is_exact, "Test rays without a tolerance at edges");
    // Asks every primitive for every ray: what any faster search must give.
    command.add_flag("--brute-force", options.is_brute_force)->group("");
}

GMathVec3<double> get_vertical(ToolCameraOptions const& options) {
    return gmath_unit(GMathVec3<double>(options.up[0], options.up[1], options.up[2]));
}

std::vector<ToolEdgeLayer> list_edges(RenderOptions const& options, PolyMesh const& mesh) {
    std::vector<ToolEdgeLayer> layers;
    if (options.has_edges || options.surface.has_hard_edges) {
        ToolEdges edges =
            options.has_edges ? list_visible_edges(mesh) : ToolEdges(mesh.get_primitive_count());
        CoreArray<unsigned char> hard_edges;
        if (options.surface.has_hard_edges) {
            PolyMeshSmoothed::find_hard_edges(mesh, options.surface.smoothing_angle, hard_edges);
        }
        for (unsigned int i = 0; i < hard_edges.get_count(); ++i) {
            edges[i] = static_cast<unsigned char>(edges[i] | hard_edges[i]);
        }
        layers.push_back({std::move(edges), std::nullopt});
    }
    return layers;
}

// Draws the mesh; false after the reason has been shown.
bool draw(RenderOptions const& options, ToolMesh const& mesh, GeometryObject const& geometry,
          std::vector<double> const& shutter_times, ToolMessages& messages, ToolImage& image) {
    ToolScene scene(geometry, shutter_times);
    ToolCamera camera;
    if (!make_camera(options.camera, scene.get_extent(), messages, camera)) {
        return false;
    }
    ToolRenderSettings settings;
    if (!shutter_times.empty()) {
        settings.shutter_open = shutter_times.front();
        settings.shutter_close = shutter_times.back();
    }
    settings.edge_layers = list_edges(options, *mesh.mesh);
    if (!make_look(options.look, mesh, geometry, scene.get_ctx(),
                   shutter_times.size() > 1 ? usual_moving_sample_count : usual_sample_count,
                   messages, settings) ||
        !scene.prepare(options.is_exact ? GeometryRaytraceCtx::TEST_EXACT
                                        : GeometryRaytraceCtx::TEST_TOLERANT,
                       options.is_brute_force, settings.thread_count, messages)) {
        return false;
    }
    ToolProgress progress("rendering");
    progress.get_bar().start();
    if (!scene.draw(camera, settings, progress.get_bar(), messages, image)) {
        return false;
    }
    draw_legend(settings.appearance.property, image);
    return true;
}

int run_render(RenderOptions const& options, ToolMessages& messages) {
    ToolStopwatch const watch;
    ToolMesh mesh;
    std::vector<double> shutter_times;
    ToolImage image;
    ToolSurface surface;
    if (!load_moving_mesh(options.mesh, options.motion, get_vertical(options.camera), messages,
                          mesh, shutter_times)) {
        return tool_failure;
    }
    if (!make_surface(options.surface, *mesh.mesh, messages, surface) ||
        !draw(options, mesh, *surface.geometry, shutter_times, messages, image)) {
        return tool_failure;
    }
    std::string const path = options.output.empty() ? mesh.name + ".png" : options.output;
    if (!write_png(image, path, messages)) {
        return tool_failure;
    }
    std::printf("%s: %u x %u, %u primitives, %.2f s\n", make_printable(path).c_str(), image.width,
                image.height, mesh.mesh->get_primitive_count(), watch.get_seconds());
    return tool_success;
}

}  // namespace

void add_render_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<RenderOptions>();
    CLI::App* const command = app.add_subcommand("render", "Render a picture");
    add_mesh_options(*command, options->mesh, ToolFileNeed::OPTIONAL);
    add_picture_options(*command, *options);
    add_surface_options(*command, options->surface);
    command->get_option("--hard-edges")->needs(command->get_option("--smooth"));
    add_camera_options(*command, options->camera);
    add_motion_options(*command, options->motion);
    command->footer(
        "Examples:\n"
        "  qzpoly render ship.obj -o ship.png\n"
        "  qzpoly render ship.lwo --camera three-quarter --smooth 30 --background white\n"
        "  qzpoly render ship.obj --texture hull.png --ambient-occlusion\n"
        "  qzpoly render --sphere 32 16 --shade uv --edges\n"
        "  qzpoly render --frames pose1.obj pose2.obj --shutter 0 1");
    command->callback(
        [options, &session] { session.status = run_render(*options, session.messages); });
}
