#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/check/fault_picture.h>
#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/models/obj_statements.h>
#include <tools/qzpoly/terminal/json_out.h>
#include <tools/qzpoly/terminal/numbers.h>
#include <tools/qzpoly/terminal/terminal.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>

namespace {

struct CheckOptions {
    ToolMeshOptions mesh;
    ToolCameraOptions camera;
    std::vector<std::string> ignored;
    std::string picture;
    unsigned int place_count = 3;
    bool is_json = false;
};

// The line of a number, where lines are known; else 0.
unsigned long long find_line(std::vector<unsigned long long> const& lines,
                             unsigned int const& number) {
    return number < lines.size() ? lines[number] : 0;
}

unsigned long long find_line(ToolObjLines const& lines, ToolFaultPlace const& place) {
    return place.polygon != ToolFaultPlace::none ? find_line(lines.of_polygons, place.polygon)
                                                 : find_line(lines.of_vertices, place.vertex);
}

std::string tell_place(PolyMesh const& mesh, ToolFaultPlace const& place,
                       ToolObjLines const& lines) {
    constexpr unsigned int none = ToolFaultPlace::none;
    std::string text;
    if (place.other_vertex != none) {
        text = make_text("vertices ", place.vertex, " and ", place.other_vertex, " of ");
    }
    text += place.polygon != none ? make_text("polygon ", place.polygon)
                                  : make_text("vertex ", place.vertex);
    if (unsigned long long const line = find_line(lines, place)) {
        text += make_text(", line ", line);
    }
    if (place.map != none) {
        text += make_text(", in uv map ", mesh.get_uv_map_name(place.map));
    }
    return text;
}

void print_text(std::string const& name, PolyMesh const& mesh, ToolFaults const& faults,
                ToolObjLines const& lines) {
    bool const is_colored = has_colors(stdout);
    bool is_clean = true;
    for (std::size_t kind = 0; kind < tool_fault_kind_count; ++kind) {
        ToolFaults::Row const& row = faults.rows[kind];
        if (row.count == 0) {
            continue;
        }
        if (is_clean) {
            std::printf("%s\n", make_printable(name).c_str());
        }
        is_clean = false;
        ToolFaultMeaning const& meaning = get_meaning(static_cast<ToolFaultKind>(kind));
        std::printf("%s%8u %s%s: %s\n", is_colored ? "\033[1;31m" : "", row.count, meaning.name,
                    is_colored ? "\033[0m" : "", meaning.meaning);
        for (ToolFaultPlace const& place : row.places) {
            std::printf("         %s\n", make_printable(tell_place(mesh, place, lines)).c_str());
        }
        if (row.count > row.places.size() && !row.places.empty()) {
            std::printf("         ...\n");
        }
    }
    if (is_clean) {
        std::printf("%s: clean\n", make_printable(name).c_str());
    }
}

ToolJson make_json(PolyMesh const& mesh, ToolFaultPlace const& place, ToolObjLines const& lines) {
    constexpr unsigned int none = ToolFaultPlace::none;
    ToolJson json = ToolJson::object();
    if (place.polygon != none) {
        json["polygon"] = place.polygon;
    }
    if (place.other_vertex != none) {
        json["vertices"] = {place.vertex, place.other_vertex};
    } else if (place.vertex != none) {
        json["vertex"] = place.vertex;
    }
    if (place.map != none) {
        json["uv_map"] = std::string(mesh.get_uv_map_name(place.map).get_view());
    }
    if (unsigned long long const line = find_line(lines, place)) {
        json["line"] = line;
    }
    return json;
}

// Lists kinds without a fault too, so that scripts need not ask whether they are there.
ToolJson make_json(std::string const& name, PolyMesh const& mesh, ToolFaults const& faults,
                   ToolObjLines const& lines) {
    ToolJson json = {{"file", name}, {"faults", ToolJson::object()}};
    for (std::size_t kind = 0; kind < tool_fault_kind_count; ++kind) {
        ToolJson places = ToolJson::array();
        for (ToolFaultPlace const& place : faults.rows[kind].places) {
            places.push_back(make_json(mesh, place, lines));
        }
        json["faults"][get_meaning(static_cast<ToolFaultKind>(kind)).name] = {
            {"count", faults.rows[kind].count}, {"places", places}};
    }
    return json;
}

bool write_picture(CheckOptions const& options, PolyMesh const& mesh, ToolFaults const& faults,
                   ToolMessages& messages) {
    ToolImage image;
    return options.picture.empty() || (draw_faults(mesh, faults, options.camera, messages, image) &&
                                       write_png(image, options.picture, messages));
}

// Checks one mesh; returns its status.
int check_mesh(CheckOptions const& options, ToolMeshOptions const& mesh_options,
               ToolMessages& messages, ToolJson& json) {
    ToolMesh mesh;
    std::string const& file = mesh_options.file;
    if (!load_mesh(mesh_options, messages, mesh)) {
        json.push_back({{"file", file}, {"faults", nullptr}});
        return tool_failure;
    }
    std::vector<ToolFaultKind> ignored;
    for (std::string const& name : options.ignored) {
        ignored.push_back(find_fault_kind(name));
    }
    ToolFaults const faults = find_faults(*mesh.mesh, ignored, options.place_count);
    bool const is_clean = std::all_of(faults.rows.begin(), faults.rows.end(),
                                      [](ToolFaults::Row const& row) { return row.count == 0; });
    ToolObjLines const lines = mesh.is_obj() && !is_clean
                                   ? find_obj_lines(mesh.path, mesh.mesh->get_polygon_count(),
                                                    mesh.mesh->get_vertex_count())
                                   : ToolObjLines();
    std::string const name = file.empty() ? mesh.name : file;
    if (options.is_json) {
        json.push_back(make_json(name, *mesh.mesh, faults, lines));
    } else {
        print_text(name, *mesh.mesh, faults, lines);
        std::fflush(stdout);
    }
    bool const is_drawn = write_picture(options, *mesh.mesh, faults, messages);
    return is_clean && is_drawn ? tool_success : tool_failure;
}

int run_check(CheckOptions const& options, ToolMessages& messages) {
    ToolJson json = ToolJson::array();
    if (options.mesh.files.size() > 1 && !options.picture.empty()) {
        refuse_option("--picture", "takes one FILE");
    }
    int const status =
        visit_files(options.mesh, messages, [&](ToolMeshOptions const& mesh_options) {
            return check_mesh(options, mesh_options, messages, json);
        });
    if (options.is_json && !is_interrupted()) {
        print_json(json);
    }
    return status;
}

}  // namespace

void add_check_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<CheckOptions>();
    CLI::App* const command =
        app.add_subcommand("check", "Find what is wrong with a file, and where");
    std::string footer = "Kinds of faults:\n";
    std::string names;
    for (std::size_t kind = 0; kind < tool_fault_kind_count; ++kind) {
        ToolFaultMeaning const& meaning = get_meaning(static_cast<ToolFaultKind>(kind));
        footer += make_text("  ", meaning.name, ": ", meaning.meaning, "\n");
        names += make_text(names.empty() ? "" : ", ", meaning.name);
    }
    add_mesh_options(*command, options->mesh, ToolFileNeed::SEVERAL);
    command->add_option("--ignore", options->ignored, "A kind that is no fault; may be repeated")
        ->type_name("KIND")
        ->allow_extra_args(false)
        ->check([names](std::string const& name) {
            return find_fault_kind(name) != ToolFaultKind::COUNT
                       ? std::string()
                       : "no such kind: " + name + "; there are " + names;
        });
    command->add_option("--places", options->place_count, "How many places to tell of each kind")
        ->check(CLI::Range(0u, 1000000u))
        ->capture_default_str();
    command->add_flag("--json", options->is_json, "As JSON");
    command->add_option("--picture", options->picture, "Draw the faults of one FILE")
        ->type_name("PNG");
    add_camera_options(*command, options->camera);
    command->footer(footer +
                    "Polygons and vertices are numbered from 0, lines from 1.\n"
                    "Exit status: 0 clean, 1 faults found or a file not read, 2 wrong usage.\n\n"
                    "Examples:\n"
                    "  qzpoly check ship.obj\n"
                    "  qzpoly check ship.lwo --picture faults.png --camera three-quarter\n"
                    "  qzpoly check --json --ignore border-edge --ignore uv-outside *.obj");
    command->callback(
        [options, &session] { session.status = run_check(*options, session.messages); });
}
