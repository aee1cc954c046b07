#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/pictures/camera.h>
#include <tools/qzpoly/pictures/visibility.h>
#include <tools/qzpoly/terminal/numbers.h>

#include <CLI/CLI.hpp>

#include <cstdio>

namespace {

struct VisibleOptions {
    ToolMeshOptions mesh;
    ToolCameraOptions camera;
    double near = 0;
    double far = 0;  // 0: behind everything
};

// Counts once more in the plain way.
bool check(ToolVisibility const& found, PolyMesh const& mesh, ToolFrustum const& frustum,
           ToolMessages& messages) {
    ToolVisibility const plain = count_visible_plainly(mesh, frustum);
    if (found == plain) {
        return true;
    }
    messages.fail(make_text("the plain count differs: ", plain.overlapping_count, " overlapping, ",
                            plain.contained_count, " contained, ", plain.vertex_count,
                            " vertices"));
    return false;
}

int run_visible(VisibleOptions const& options, ToolMessages& messages) {
    if (options.far != 0 && options.near >= options.far) {
        refuse_option("--near", "is not before --far");
    }
    ToolMesh mesh;
    if (!load_mesh(options.mesh, messages, mesh)) {
        return tool_failure;
    }
    CtxEval const ctx;
    ToolCamera camera;
    if (!make_camera(options.camera, compute_extent(*mesh.mesh, ctx, {}), messages, camera)) {
        return tool_failure;
    }
    ToolFrustum const frustum = make_frustum(camera, options.near, options.far);
    ToolVisibility const found = count_visible(*mesh.mesh, ctx, frustum);
    std::printf("%u primitives: %u overlap the view, %u lie within it\n"
                "%u vertices: %u belong to overlapping primitives\n",
                mesh.mesh->get_primitive_count(), found.overlapping_count, found.contained_count,
                mesh.mesh->get_vertex_count(), found.vertex_count);
    return check(found, *mesh.mesh, frustum, messages) ? tool_success : tool_failure;
}

}  // namespace

void add_visible_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<VisibleOptions>();
    CLI::App* const command =
        app.add_subcommand("visible", "Count what a camera sees, hidden or not");
    add_mesh_options(*command, options->mesh, ToolFileNeed::REQUIRED);
    add_camera_options(*command, options->camera);
    command->add_option("--near", options->near, "Distance where the view begins")
        ->check(check_finite)
        ->check(CLI::NonNegativeNumber)
        ->group("Camera");
    command->add_option("--far", options->far, "Distance where it ends [behind everything]")
        ->check(check_finite)
        ->check(CLI::PositiveNumber)
        ->group("Camera");
    command->footer("Examples:\n"
                    "  qzpoly visible ship.obj --camera front\n"
                    "  qzpoly visible ship.obj --eye 0 2 9 --near 1 --far 20");
    command->callback(
        [options, &session] { session.status = run_visible(*options, session.messages); });
}
