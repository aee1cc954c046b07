#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/models/input_file.h>
#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/models/obj_statements.h>
#include <tools/qzpoly/models/obj_writer.h>
#include <tools/qzpoly/terminal/numbers.h>
#include <tools/qzpoly/terminal/output_file.h>
#include <tools/qzpoly/terminal/terminal.h>

#include <platform/qz_lwo.h>
#include <platform/qz_obj.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>

namespace {

struct ConvertOptions {
    ToolMeshOptions mesh;
    std::string output;
    unsigned int uv_map = 0;
};

// Blocks hold points and polygons alone.
void take_polygons(PolyMesh const& mesh, ToolObjContents& contents) {
    mesh.get_point_cloud()->get_positions(contents.positions);
    mesh.get_polygon_vertex_indices(contents.corners);
    mesh.get_polygon_vertex_count(contents.corner_counts);
    mesh.get_polygon_shading_groups(contents.groups);
    contents.group_names = mesh.get_shading_group_names();
}

// Straight from the file: a mesh keeps its maps in fewer bits.
bool load_contents(ToolMesh const& mesh, std::string const& item, ToolObjContents& contents) {
    CoreString const path{std::string_view(mesh.path)};
    ToolProgress progress("loading");
    if (mesh.is_light_wave) {
        return Lwo::load(path, CoreString(std::string_view(item)), contents.positions,
                         contents.corners, contents.corner_counts, contents.groups,
                         contents.group_names, contents.uv_maps, contents.normal_maps,
                         &progress.get_bar());
    }
    if (!mesh.is_obj()) {
        take_polygons(*mesh.mesh, contents);
        return true;
    }
    ResourceImportData* data = nullptr;
    bool const is_loaded =
        Obj::load(path, contents.positions, contents.corners, contents.corner_counts,
                  contents.groups, contents.group_names, contents.uv_maps, contents.normal_maps,
                  contents.color_maps, data, &progress.get_bar());
    std::unique_ptr<ResourceImportData> const owner(data);
    if (is_loaded) {
        contents.crease_indices = owner->crease_indices;
        contents.crease_sharpnesses = owner->crease_sharpnesses;
    }
    return is_loaded;
}

// Tells the statements of an OBJ file that a mesh has no place for.
void warn_of_statements(std::string const& path, ToolMessages& messages) {
    constexpr std::string_view kept[] = {"v", "vt", "vn", "f", "usemtl", "ec"};
    std::string text;
    read_input_file(path, tool_no_size_limit, text);
    std::map<std::string_view, unsigned int> counts;
    ToolObjStatements statements(text);
    ToolObjStatement statement;
    while (statements.find_next(statement)) {
        bool const is_crease = statement.keyword == "t" && statement.rest.starts_with("crease");
        if (!is_crease &&
            std::find(std::begin(kept), std::end(kept), statement.keyword) == std::end(kept)) {
            ++counts[statement.keyword.substr(0, 8)];
        }
    }
    constexpr std::size_t most_told = 12;
    std::string told;
    for (auto const& [keyword, count] : counts) {
        if (told.size() < most_told * 8) {
            told += make_text(told.empty() ? "" : ", ", count, " of ", keyword);
        }
    }
    if (!told.empty()) {
        messages.warn(make_text("statements that are left out: ", std::string_view(told)));
    }
}

void warn_of_losses(ToolMesh const& mesh, ToolMessages& messages) {
    if (mesh.is_obj()) {
        warn_of_statements(mesh.path, messages);
    }
    if (mesh.mesh->get_point_cloud()->has_velocities()) {
        messages.warn("velocities are left out");
    }
    CoreArray<CoreString> names;
    CoreArray<GMathVec3<float>> colors;
    if (mesh.is_light_wave) {
        Lwo::load_surface_colors(CoreString(std::string_view(mesh.path)), names, colors);
    }
    if (!colors.is_empty()) {
        messages.warn("colors of surfaces are left out");
    }
}

int run_convert(ConvertOptions const& options, ToolMessages& messages) {
    ToolMesh mesh;
    ToolObjContents contents;
    std::error_code error;
    if (std::filesystem::exists(options.mesh.file, error) &&
        !std::filesystem::is_regular_file(options.mesh.file, error)) {
        return messages.fail(make_text(std::string_view(options.mesh.file),
                                       " is no regular file, and it is read twice"));
    }
    if (!load_mesh(options.mesh, messages, mesh)) {
        return tool_failure;
    }
    if (!load_contents(mesh, options.mesh.item, contents)) {
        return messages.fail(make_text("cannot load ", std::string_view(options.mesh.file)));
    }
    if (options.uv_map != 0 && options.uv_map >= contents.uv_maps.get_count()) {
        refuse_option("--uv-map", make_text("there is no ", options.uv_map, ": the mesh has ",
                                            contents.uv_maps.get_count()));
    }
    warn_of_losses(mesh, messages);
    std::string const text = write_obj(contents, options.uv_map, messages);
    if (!write_file(options.output, text.data(), text.size(), messages)) {
        return tool_failure;
    }
    std::printf("%s: %zu bytes\n", make_printable(options.output).c_str(), text.size());
    return tool_success;
}

}  // namespace

void add_convert_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<ConvertOptions>();
    CLI::App* const command =
        app.add_subcommand("convert", "Write a mesh as an OBJ file that gives the same mesh");
    add_polygon_options(*command, options->mesh, ToolFileNeed::REQUIRED);
    command->add_option("OUT", options->output, "OBJ file to write")->required();
    command->add_option("--uv-map", options->uv_map, "Number of the uv map to keep, from 0");
    command->footer(
        "Kept bit by bit: points, polygons, groups (as usemtl), one uv map, one normal map, "
        "colors\n"
        "of points, and creases. An OBJ file cannot hold the names of maps, further maps, layers\n"
        "(all become one mesh), and names of groups with blanks at an end or line ends inside.\n"
        "Also left out, with a warning: velocities, surfaces and materials, smoothing groups,\n"
        "objects, lines and points that are drawn, unknown statements.\n\n"
        "Examples:\n"
        "  qzpoly convert ship.lwo ship.obj\n"
        "  qzpoly convert ship.lwo hull.obj --item Hull --uv-map 1");
    command->callback(
        [options, &session] { session.status = run_convert(*options, session.messages); });
}
