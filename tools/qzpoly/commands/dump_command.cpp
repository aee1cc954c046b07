#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/models/mesh_dump.h>
#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/terminal/numbers.h>

#include <CLI/CLI.hpp>

namespace {

struct DumpOptions {
    ToolMeshOptions mesh;
    std::vector<double> smoothing_angles;
    bool digests = false;
};

int run_dump(DumpOptions const& options, ToolMessages& messages) {
    ToolMesh mesh;
    if (!load_mesh(options.mesh, messages, mesh)) {
        return tool_failure;
    }
    DumpWriter writer(stdout, options.digests);
    dump_mesh(*mesh.mesh, {!options.mesh.is_unchecked, options.smoothing_angles}, writer);
    writer.finish();
    return tool_success;
}

}  // namespace

void add_dump_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<DumpOptions>();
    CLI::App* const command =
        app.add_subcommand("dump", "Print every array of a mesh, stored or computed, as JSON");
    add_mesh_options(*command, options->mesh, ToolFileNeed::OPTIONAL);
    command->add_flag("--digest", options->digests,
                      "Arrays of more than 64 entries as their count and hash");
    add_smooth_option(*command, options->smoothing_angles,
                      "Add the normals smoothed up to this angle; may be repeated")
        ->take_all();
    command->footer("Examples:\n"
                    "  qzpoly dump ship.obj > ship.json\n"
                    "  qzpoly dump ship.obj --digest --smooth 30");
    command->callback(
        [options, &session] { session.status = run_dump(*options, session.messages); });
}
