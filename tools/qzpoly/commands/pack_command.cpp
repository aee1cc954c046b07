#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/terminal/output_file.h>

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>

namespace {

struct PackOptions {
    ToolMeshOptions mesh;
    std::string block_file;
};

int run_pack(PackOptions const& options, ToolMessages& messages) {
    ToolMesh mesh;
    if (!load_mesh(options.mesh, messages, mesh)) {
        return tool_failure;
    }
    unsigned long long size = 0;
    std::unique_ptr<unsigned char, decltype(&std::free)> const block(mesh.mesh->serialize(size),
                                                                     &std::free);
    std::string const name = options.block_file.empty() ? mesh.name + ".block" : options.block_file;
    if (!block) {
        return messages.fail("out of memory");
    }
    if (!write_file(name, block.get(), size, messages)) {
        return tool_failure;
    }
    std::printf("%s: %llu bytes\n", make_printable(name).c_str(), size);
    return tool_success;
}

}  // namespace

void add_pack_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<PackOptions>();
    CLI::App* const command = app.add_subcommand(
        "pack", "Write a mesh's byte block: positions, velocities and polygons, nothing else");
    add_polygon_options(*command, options->mesh, ToolFileNeed::OPTIONAL);
    command->add_option("-o,--output", options->block_file,
                        "File to write [the model's name with .block]");
    command->footer("Examples:\n"
                    "  qzpoly pack ship.obj -o ship.block\n"
                    "  qzpoly render ship.block");
    command->callback(
        [options, &session] { session.status = run_pack(*options, session.messages); });
}
