#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/pictures/gif.h>
#include <tools/qzpoly/pictures/look_options.h>
#include <tools/qzpoly/pictures/scene.h>
#include <tools/qzpoly/pictures/surface_options.h>
#include <tools/qzpoly/terminal/numbers.h>
#include <tools/qzpoly/terminal/output_file.h>
#include <tools/qzpoly/terminal/terminal.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr unsigned int usual_sample_count = 8;
constexpr unsigned int shortest_delay = 2;  // hundredths of a second; players take less for more

struct TurntableOptions {
    ToolMeshOptions mesh;
    ToolCameraOptions camera;
    ToolSurfaceOptions surface;
    ToolLookOptions look;
    std::string output;
    unsigned int frame_count = 36;
    double seconds = 3;
    bool has_edges = false;
};

bool draw_frames(TurntableOptions const& options, ToolMesh const& mesh,
                 GeometryObject const& geometry, ToolMessages& messages, ToolGif& gif) {
    ToolScene scene(geometry, {});
    ToolRenderSettings settings;
    std::vector<ToolCamera> cameras;
    if (options.has_edges) {
        settings.edge_layers.push_back({list_visible_edges(geometry), std::nullopt});
    }
    if (!make_turning_cameras(options.camera, scene.get_extent(), options.frame_count, messages,
                              cameras) ||
        !make_look(options.look, mesh, geometry, scene.get_ctx(), usual_sample_count, messages,
                   settings) ||
        !scene.prepare(GeometryRaytraceCtx::TEST_TOLERANT, false, settings.thread_count,
                       messages)) {
        return false;
    }
    ToolProgress progress("rendering");
    progress.get_bar().start();
    for (ToolCamera const& camera : cameras) {
        ToolImage image;
        progress.get_bar().begin_task("frame", 1.0f / static_cast<float>(cameras.size()), false);
        if (!scene.draw(camera, settings, progress.get_bar(), messages, image)) {
            return false;
        }
        progress.get_bar().end_task();
        draw_legend(settings.appearance.property, image);
        gif.add_frame(image);
    }
    progress.get_bar().finish();
    return true;
}

int run_turntable(TurntableOptions const& options, ToolMessages& messages) {
    ToolMesh mesh;
    ToolSurface surface;
    if (!options.camera.eye.empty()) {
        refuse_option("--eye", "would not turn; give --camera or --turn");
    }
    if (!load_mesh(options.mesh, messages, mesh)) {
        return tool_failure;
    }
    double const delay = std::round(100 * options.seconds / options.frame_count);
    ToolGif gif(options.camera.size[0], options.camera.size[1],
                std::max(shortest_delay, static_cast<unsigned int>(delay)));
    if (!make_surface(options.surface, *mesh.mesh, messages, surface) ||
        !draw_frames(options, mesh, *surface.geometry, messages, gif)) {
        return tool_failure;
    }
    std::string const path = options.output.empty() ? mesh.name + ".gif" : options.output;
    std::vector<unsigned char> bytes;
    if (!gif.finish(bytes)) {
        return messages.fail("out of memory");
    }
    if (!write_file(path, bytes.data(), bytes.size(), messages)) {
        return tool_failure;
    }
    std::printf("%s: %u frames of %u x %u, %zu bytes\n", make_printable(path).c_str(),
                options.frame_count, options.camera.size[0], options.camera.size[1], bytes.size());
    return tool_success;
}

}  // namespace

void add_turntable_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<TurntableOptions>();
    options->camera.size = {480, 360};
    CLI::App* const command =
        app.add_subcommand("turntable", "Render an animated picture that walks around a model");
    add_mesh_options(*command, options->mesh, ToolFileNeed::OPTIONAL);
    command->add_option("-o,--output", options->output, "GIF file [FILE's name.gif]");
    command->add_option("--frames", options->frame_count, "Pictures of the whole turn")
        ->check(CLI::Range(1u, 3600u))
        ->capture_default_str();
    command->add_option("--seconds", options->seconds, "That the turn takes")
        ->check(CLI::Range(0.1, 600.0))
        ->check(check_finite)
        ->capture_default_str();
    add_look_options(*command, options->look, "8", true);
    add_map_options(*command, options->look);
    command->add_flag("--edges", options->has_edges, "Draw the edges of polygons");
    add_surface_options(*command, options->surface);
    add_camera_options(*command, options->camera);
    command->footer(
        "Examples:\n"
        "  qzpoly turntable ship.obj -o ship.gif\n"
        "  qzpoly turntable ship.obj --frames 72 --seconds 6 --ambient-occlusion --edges");
    command->callback(
        [options, &session] { session.status = run_turntable(*options, session.messages); });
}
