#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/models/motion.h>
#include <tools/qzpoly/pictures/surface_options.h>
#include <tools/qzpoly/terminal/json_out.h>
#include <tools/qzpoly/terminal/numbers.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <iostream>

namespace {

using Vec = std::vector<double>;

// A place on the surface, or a ray.
struct Probe {
    unsigned int primitive = 0;
    Vec st = {0.0, 0.0};
    Vec ray;  // origin and direction; empty: a place
    double time = 0.0;
    bool is_exact = false;
};

struct ProbeOptions {
    ToolMeshOptions mesh;
    ToolMotionOptions motion;
    ToolSurfaceOptions surface;
    Probe probe;
    bool is_json = false;
    bool is_batch = false;
};

std::vector<CLI::Option*> add_probe_options(CLI::App& command, Probe& probe) {
    CLI::Option* const primitive =
        command.add_option("--primitive", probe.primitive, "Probe the surface on this primitive");
    CLI::Option* const st = command.add_option("--st", probe.st, "Where on it [0 0]");
    st->expected(2)->check(check_finite)->type_name("S T");
    CLI::Option* const ray =
        command.add_option("--ray", probe.ray, "Probe by a ray: its origin and direction");
    ray->expected(6)->check(check_finite)->type_name("OX OY OZ DX DY DZ");
    ray->excludes(primitive)->excludes(st);
    return {
        primitive, st, ray,
        command.add_flag("--exact", probe.is_exact, "Test the ray without a tolerance at edges")
            ->needs(ray),
        command.add_option("--time", probe.time, "When [0]")->check(check_finite)};
}

template <typename T>
ToolJson list(GMathVec3<T> const& v) {
    return ToolJson::array({v.x, v.y, v.z});
}

ToolJson list_uvs(GeometryObject const& geometry, CtxEval const& ctx,
                  GeometryFragment const& fragment) {
    ToolJson maps = ToolJson::array();
    for (unsigned int map = 0; map < geometry.get_uv_map_count(); ++map) {
        GMathVec3<double> uvw;
        GMathVec3<double> uvw_ds;
        GMathVec3<double> uvw_dt;
        geometry.compute_fragment_uvw(ctx, fragment, map, uvw, uvw_ds, uvw_dt);
        maps.push_back({{"name", geometry.get_uv_map_name(map).get_data()},
                        {"uvw", list(uvw)},
                        {"ds", list(uvw_ds)},
                        {"dt", list(uvw_dt)}});
    }
    return maps;
}

ToolJson list_colors(GeometryObject const& geometry, CtxEval const& ctx,
                     GeometryFragment const& fragment) {
    ToolJson maps = ToolJson::array();
    for (unsigned int map = 0; map < geometry.get_color_map_count(); ++map) {
        GMathVec4<float> color;
        geometry.compute_fragment_color(ctx, fragment, map, color);
        maps.push_back({{"name", geometry.get_color_map_name(map).get_data()},
                        {"rgba", ToolJson::array({color.x, color.y, color.z, color.w})}});
    }
    return maps;
}

ToolJson list_properties(GeometryObject const& geometry, CtxEval const& ctx,
                         GeometryFragment const& fragment) {
    ToolJson properties = ToolJson::array();
    for (unsigned int i = 0; i < geometry.get_property_count(); ++i) {
        GeometryProperty const& property = geometry.get_property(i);
        Vec values(property.get_value_extent());
        Vec ds(values.size());
        Vec dt(values.size());
        unsigned int const count =
            property.evaluate(ctx, fragment, values.data(), ds.data(), dt.data(), nullptr,
                              property.get_value_extent());
        for (Vec* const list : {&values, &ds, &dt}) {
            list->resize(count);
        }
        properties.push_back(
            {{"name", property.get_name().get_data()}, {"values", values}, {"ds", ds}, {"dt", dt}});
    }
    return properties;
}

ToolJson probe_place(GeometryObject const& geometry, CtxEval const& ctx, Probe const& probe) {
    GeometryFragment fragment;
    fragment.primitive_index = probe.primitive;
    fragment.s = probe.st[0];
    fragment.t = probe.st[1];
    fragment.time = probe.time;
    GeometrySample sample;
    geometry.compute_fragment_sample(ctx, fragment, sample);
    return {{"primitive", probe.primitive},
            {"st", probe.st},
            {"time", probe.time},
            {"position", list(sample.get_position())},
            {"position_ds", list(sample.get_position_ds())},
            {"position_dt", list(sample.get_position_dt())},
            {"geometric_normal", list(sample.get_geometric_normal())},
            {"normal", list(sample.get_normal())},
            {"normal_ds", list(sample.get_normal_ds())},
            {"normal_dt", list(sample.get_normal_dt())},
            {"smooth_position", list(sample.get_smooth_position())},
            {"uvs", list_uvs(geometry, ctx, fragment)},
            {"colors", list_colors(geometry, ctx, fragment)},
            {"properties", list_properties(geometry, ctx, fragment)}};
}

// Every hit that the geometry pushes, primitive after primitive.
ToolJson probe_ray(GeometryObject const& geometry, CtxEval const& ctx, Probe const& probe) {
    Vec const& v = probe.ray;
    GeometryRay ray;
    ray.ray = GMathBasicRay({v[0], v[1], v[2]}, {v[3], v[4], v[5]});
    ray.time = probe.time;
    ray.minimum_distance = -ray.maximum_distance;
    GeometryRaytraceCtx rays(&ray, nullptr, 1);
    rays.keep_mode = GeometryRaytraceCtx::KEEP_ALL;
    rays.test_mode =
        probe.is_exact ? GeometryRaytraceCtx::TEST_EXACT : GeometryRaytraceCtx::TEST_TOLERANT;
    rays.is_motion_blurred = true;
    for (unsigned int primitive = 0; primitive < geometry.get_primitive_count(); ++primitive) {
        geometry.intersect_primitive(ctx, primitive, rays);
    }
    ToolJson hits = ToolJson::array();
    for (GeometryHit const& hit : rays.all_hits) {
        hits.push_back({{"primitive", hit.primitive_index},
                        {"s", hit.s},
                        {"t", hit.t},
                        {"distance", hit.distance}});
    }
    return {{"ray", probe.ray}, {"time", probe.time}, {"exact", probe.is_exact}, {"hits", hits}};
}

ToolJson answer(GeometryObject const& geometry, CtxEval const& ctx, Probe const& probe) {
    if (!probe.ray.empty()) {
        return probe_ray(geometry, ctx, probe);
    }
    if (probe.primitive >= geometry.get_primitive_count()) {
        refuse_option("--primitive", make_text("there is no ", probe.primitive, ": the mesh has ",
                                               geometry.get_primitive_count()));
    }
    return probe_place(geometry, ctx, probe);
}

// One probe a line of standard input, in the words of the command line. False after the reason has
// been shown.
bool answer_batch(GeometryObject const& geometry, CtxEval const& ctx, ToolMessages& messages,
                  ToolJson& answers) {
    answers = ToolJson::array();
    std::string line;
    for (unsigned long long number = 1; std::getline(std::cin, line); ++number) {
        if (line.find_first_not_of(" \t\r") == std::string::npos) {
            continue;
        }
        Probe probe;
        CLI::App parser;
        parser.set_help_flag();
        add_probe_options(parser, probe);
        try {
            parse_arguments(parser, CLI::detail::split_up(line));
            answers.push_back(answer(geometry, ctx, probe));
        } catch (CLI::ParseError const& fault) {
            messages.fail(make_text("standard input, line ", number, ": ", fault.what()));
            return false;
        }
    }
    return true;
}

// A line a member; the entries of a list are lines of their own.
void print_text(ToolJson const& json, std::string const& indent) {
    for (auto const& [key, value] : json.items()) {
        bool const is_list_of_objects = value.is_array() && !value.empty() && value[0].is_object();
        if (is_list_of_objects) {
            std::printf("%s%s\n", indent.c_str(), key.c_str());
            for (ToolJson const& entry : value) {
                print_text(entry, indent + "  ");
            }
            continue;
        }
        std::string text =
            value.is_string() ? make_printable(value.get_ref<std::string const&>()) : value.dump();
        if (value.is_array()) {
            text = text.substr(1, text.size() - 2);
            std::replace(text.begin(), text.end(), ',', ' ');
        }
        std::printf("%s%-18s%s\n", indent.c_str(), key.c_str(), text.c_str());
    }
}

int run_probe(ProbeOptions const& options, ToolMessages& messages) {
    ToolMesh mesh;
    ToolSurface surface;
    Vec shutter_times;
    if (!load_moving_mesh(options.mesh, options.motion, GMathVec3<double>(0, 1, 0), messages, mesh,
                          shutter_times)) {
        return tool_failure;
    }
    if (!make_surface(options.surface, *mesh.mesh, messages, surface)) {
        return tool_failure;
    }
    CtxShader const shader_ctx = make_shader_ctx(shutter_times);
    CtxEval const ctx(&shader_ctx);
    ToolJson json;
    if (!options.is_batch) {
        json = answer(*surface.geometry, ctx, options.probe);
    } else if (!answer_batch(*surface.geometry, ctx, messages, json)) {
        return tool_failure;
    }
    if (options.is_json || options.is_batch) {
        print_json(json);
    } else {
        print_text(json, "");
    }
    return tool_success;
}

}  // namespace

void add_probe_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<ProbeOptions>();
    CLI::App* const command =
        app.add_subcommand("probe", "Tell all about one place of a surface, or what a ray meets");
    add_mesh_options(*command, options->mesh, ToolFileNeed::OPTIONAL);
    std::vector<CLI::Option*> const alone = add_probe_options(*command, options->probe);
    add_surface_options(*command, options->surface);
    add_motion_options(*command, options->motion);
    command->add_flag("--json", options->is_json, "As JSON");
    CLI::Option* const batch = command->add_flag(
        "--batch", options->is_batch,
        "Read probes from standard input, one a line, and answer with a JSON array");
    for (CLI::Option* const option : alone) {
        batch->excludes(option);
    }
    command->footer("Examples:\n"
                    "  qzpoly probe ship.obj --ray 0 0 9 0 0 -1\n"
                    "  qzpoly probe ship.obj --primitive 12");
    command->callback(
        [options, &session] { session.status = run_probe(*options, session.messages); });
}
