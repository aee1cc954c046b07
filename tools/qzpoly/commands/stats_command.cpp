#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/terminal/numbers.h>

#include <poly/smoothed/poly_mesh_smoothed.h>

#include <CLI/CLI.hpp>

#include <cstdio>

namespace {

struct StatsOptions {
    ToolMeshOptions mesh;
    double smoothing_angle = 0.0;
    bool is_smooth = false;
};

void print_to_stdout(void*, unsigned int const&, CoreString const& message) {
    std::fwrite(message.get_data(), 1, message.get_length(), stdout);
}

int run_stats(StatsOptions const& options, ToolMessages& messages) {
    ToolMesh mesh;
    if (!load_mesh(options.mesh, messages, mesh)) {
        return tool_failure;
    }
    PolyMeshSmoothed smoothed;
    if (options.is_smooth) {
        smoothed.set(*mesh.mesh, options.smoothing_angle, 0xFFFFFFFFu, nullptr);
    }
    CoreLogHandler::get_main().set_sink(print_to_stdout, nullptr);
    mesh.mesh->print_stats();
    if (options.is_smooth) {
        smoothed.print_stats();
    }
    return tool_success;
}

}  // namespace

void add_stats_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<StatsOptions>();
    CLI::App* const command =
        app.add_subcommand("stats", "Tell how many bytes each part of a mesh takes");
    add_mesh_options(*command, options->mesh, ToolFileNeed::OPTIONAL);
    CLI::Option const* const smooth = add_smooth_option(
        *command, options->smoothing_angle, "Also of the normals smoothed up to this angle");
    command->footer("Examples:\n"
                    "  qzpoly stats ship.obj\n"
                    "  qzpoly stats ship.obj --smooth 30");
    command->callback([options, smooth, &session] {
        options->is_smooth = smooth->count() != 0;
        session.status = run_stats(*options, session.messages);
    });
}
