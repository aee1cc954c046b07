#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/models/mesh_facts.h>
#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/pictures/surface_options.h>
#include <tools/qzpoly/terminal/json_out.h>

#include <CLI/CLI.hpp>

#include <cstdio>

namespace {

constexpr char const* not_in_block =
    "normals, shading groups, maps, creases and edge visibility are not in a block";

struct InfoOptions {
    ToolMeshOptions mesh;
    ToolSurfaceOptions surface;
    bool is_json = false;
};

template <typename... Parts>
void print_line(Parts const&... parts) {
    std::string const line = make_printable(make_text(parts...)) + '\n';
    std::fwrite(line.data(), 1, line.size(), stdout);
}

// As floats, which is what boxes are made of, and shorter.
std::string write_point(GMathVec3<double> const& point) {
    GMathVec3<float> const p(point);
    return make_text("(", p.x, ", ", p.y, ", ", p.z, ")");
}

std::string write_box(GMathBbox3<double> const& box) {
    return box.is_empty() ? "nothing"
                          : write_point(box.minimum) + " to " + write_point(box.maximum);
}

void print_text(ToolMesh const& mesh, ToolMeshFacts const& facts) {
    print_line("file        ", std::string_view(mesh.kind));
    print_line("vertices    ", facts.vertex_count);
    print_line("polygons    ", facts.polygon_count);
    for (auto const& [corners, count] : facts.polygons_by_corners) {
        print_line("            ", count, " of ", corners, " corners");
    }
    print_line("primitives  ", facts.primitive_count, ": ", facts.triangle_count, " triangles, ",
               facts.quad_count, " quads");
    if (facts.degenerate_count != 0) {
        print_line("            ", facts.degenerate_count,
                   " degenerate, of polygons that cannot be cut well");
    }
    for (ToolGroupFacts const& group : facts.groups) {
        print_line("group       ", std::string_view(group.name), ": ", group.polygon_count,
                   " polygons, ", std::string_view(write_box(group.bbox)));
    }
    for (ToolMapFacts const& map : facts.maps) {
        print_line(map.kind, " map ", std::string_view(map.name), ": ", map.value_count,
                   " values, ", map.is_by_vertex ? "by vertex" : "by corner");
    }
    for (unsigned int i = 0; i < mesh.mesh->get_property_count(); ++i) {
        GeometryProperty const& property = mesh.mesh->get_property(i);
        print_line("property    ", property.get_name(), ": ", property.get_value_count(),
                   " items of ", property.get_value_extent(), ", ", property.get_index_count(),
                   " indices, ", property.get_time_sampling().get_sample_count(), " times");
    }
    print_line("creases     ", facts.crease_count);
    print_line("box         ", std::string_view(write_box(facts.bbox)));
    print_line("area        ", facts.area);
    print_line("key         ", std::string_view(facts.key));
    if (mesh.is_block) {
        print_line("not kept    ", not_in_block, "; nor is the key of the mesh it was made from");
    }
    std::printf("seconds     %.3f\n", mesh.seconds);
}

ToolJson list_properties(PolyMesh const& mesh) {
    ToolJson properties = ToolJson::array();
    for (unsigned int i = 0; i < mesh.get_property_count(); ++i) {
        GeometryProperty const& property = mesh.get_property(i);
        properties.push_back({{"name", property.get_name().get_data()},
                              {"items", property.get_value_count()},
                              {"extent", property.get_value_extent()},
                              {"indices", property.get_index_count()},
                              {"times", property.get_time_sampling().get_sample_count()}});
    }
    return properties;
}

ToolJson make_json(ToolMesh const& mesh, ToolMeshFacts const& facts,
                   std::vector<std::string> const& warnings) {
    ToolJson corners = ToolJson::object();
    for (auto const& [corner_count, count] : facts.polygons_by_corners) {
        corners[std::to_string(corner_count)] = count;
    }
    ToolJson groups = ToolJson::array();
    for (ToolGroupFacts const& group : facts.groups) {
        groups.push_back({{"name", group.name},
                          {"polygons", group.polygon_count},
                          {"box", make_json(group.bbox)}});
    }
    ToolJson maps = ToolJson::array();
    for (ToolMapFacts const& map : facts.maps) {
        maps.push_back({{"kind", map.kind},
                        {"name", map.name},
                        {"values", map.value_count},
                        {"by", map.is_by_vertex ? "vertex" : "corner"}});
    }
    return {{"kind", mesh.kind},
            {"not_kept", mesh.is_block ? ToolJson(not_in_block) : ToolJson(nullptr)},
            {"vertices", facts.vertex_count},
            {"polygons", facts.polygon_count},
            {"polygons_by_corners", corners},
            {"primitives", facts.primitive_count},
            {"triangles", facts.triangle_count},
            {"quads", facts.quad_count},
            {"degenerate_triangles", facts.degenerate_count},
            {"groups", groups},
            {"maps", maps},
            {"properties", list_properties(*mesh.mesh)},
            {"creases", facts.crease_count},
            {"box", make_json(facts.bbox)},
            {"area", facts.area},
            {"key", facts.key},
            {"seconds", mesh.seconds},
            {"warnings", warnings}};
}

int run_info(InfoOptions const& options, ToolMessages& messages) {
    ToolMesh mesh;
    ToolSurface surface;  // holds the properties
    if (!load_mesh(options.mesh, messages, mesh)) {
        return tool_failure;
    }
    if (!make_surface(options.surface, *mesh.mesh, messages, surface)) {
        return tool_failure;
    }
    ToolMeshFacts const facts = find_facts(*mesh.mesh);
    if (options.is_json) {
        print_json(make_json(mesh, facts, messages.get_warnings()));
    } else {
        print_text(mesh, facts);
    }
    return tool_success;
}

}  // namespace

void add_info_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<InfoOptions>();
    CLI::App* const command =
        app.add_subcommand("info", "Tell what is in a file and what was built");
    add_mesh_options(*command, options->mesh, ToolFileNeed::REQUIRED);
    add_property_option(*command, options->surface);
    command->add_flag("--json", options->is_json, "As JSON");
    command->footer("Examples:\n"
                    "  qzpoly info ship.obj\n"
                    "  qzpoly info ship.lwo --item Hull --json");
    command->callback(
        [options, &session] { session.status = run_info(*options, session.messages); });
}
