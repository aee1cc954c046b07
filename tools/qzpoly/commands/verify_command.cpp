#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/terminal/json_out.h>
#include <tools/qzpoly/terminal/terminal.h>
#include <tools/qzpoly/verify/verify_rays.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <thread>

namespace {

constexpr double usual_scale = 1e7;  // figures are told per so many rays
constexpr char const* test_names[2] = {"tolerant", "exact"};
constexpr ToolVerifyPlace places[] = {
    {"near", false, false},
    {"near", false, true},
    {"far", true, false},
    {"far", true, true},
};

struct VerifyOptions {
    ToolMeshOptions mesh;
    ToolVerifySettings settings;
    bool is_near_only = false;
    bool is_json = false;
};

struct PlaceReport {
    ToolVerifyPlace place;
    std::size_t inside_count = 0;
    unsigned long long bound_fault_count = 0;
    ToolVerifyResult results[2];
};

struct MeshReport {
    std::string name;
    unsigned int triangle_count = 0;
    unsigned int unpaired_count = 0;
    bool is_closed = false;
    bool is_paired_by_position = false;
    std::string skip_reason;  // why no rays were shot; empty: they were
    std::vector<PlaceReport> places;

    unsigned long long count_bar_misses() const;
    unsigned long long count_bound_faults() const;
};

unsigned long long MeshReport::count_bar_misses() const {
    unsigned long long count = 0;
    for (PlaceReport const& place : places) {
        count += place.place.is_far
                     ? 0
                     : place.results[GeometryRaytraceCtx::TEST_EXACT].get_miss_count();
    }
    return count;
}

unsigned long long MeshReport::count_bound_faults() const {
    unsigned long long count = 0;
    for (PlaceReport const& place : places) {
        count += place.bound_fault_count;
    }
    return count;
}

double get_rate(unsigned long long const& count, unsigned long long const& rays) {
    return rays == 0 ? 0.0 : static_cast<double>(count) * usual_scale / static_cast<double>(rays);
}

void print_result(ToolVerifyPlace const& place, char const* test, ToolVerifyResult const& result) {
    unsigned long long const rays = result.get_ray_count();
    std::printf("  %-5s %-7s %-9s %10llu %9.6g %9.6g %12.6g %13.6g %12.6g\n", place.name,
                place.is_moving ? "moving" : "still", test, rays,
                get_rate(result.get_miss_count(), rays),
                get_rate(result.faces.parity_faults, result.faces.rays),
                get_rate(result.faces.silhouettes + result.edges.silhouettes, rays),
                get_rate(result.vertices.misses, result.vertices.rays),
                get_rate(result.vertices.silhouettes, result.vertices.rays));
}

void print_text(MeshReport const& report) {
    std::printf("%s: %u triangles%s\n", make_printable(report.name).c_str(), report.triangle_count,
                report.is_paired_by_position ? ", closed by position"
                : report.is_closed           ? ", closed"
                                             : "");
    if (report.skip_reason.empty()) {
        std::printf("  per 10 million rays:         rays    misses    parity  silhouettes"
                    "  at vertices:  silhouettes\n");
    } else {
        std::printf("  no rays: %s\n", report.skip_reason.c_str());
    }
    for (PlaceReport const& place : report.places) {
        for (unsigned int test = 0; test < 2 && report.skip_reason.empty(); ++test) {
            print_result(place.place, test_names[1 - test], place.results[1 - test]);
        }
    }
    std::printf("  bounds: %llu corners outside\n", report.count_bound_faults());
}

ToolJson make_json(ToolVerifyTally const& tally) {
    return {{"rays", tally.rays},
            {"misses", tally.misses},
            {"silhouettes", tally.silhouettes},
            {"parity_faults", tally.parity_faults}};
}

ToolJson make_json(std::vector<ToolVerifyFault> const& faults) {
    ToolJson json = ToolJson::array();
    for (ToolVerifyFault const& fault : faults) {
        GMathVec3<double> const o = fault.ray.ray.get_origin();
        GMathVec3<double> const d = fault.ray.ray.get_direction();
        json.push_back({{"kind", fault.is_miss ? "miss" : "parity"},
                        {"ray", {o.x, o.y, o.z, d.x, d.y, d.z}},
                        {"time", fault.ray.time},
                        {"target", {fault.target.x, fault.target.y, fault.target.z}}});
    }
    return json;
}

ToolJson make_json(MeshReport const& report) {
    ToolJson places_json = ToolJson::array();
    for (PlaceReport const& place : report.places) {
        ToolJson json = {{"place", place.place.name},
                         {"moving", place.place.is_moving},
                         {"corners_out_of_bounds", place.bound_fault_count}};
        for (unsigned int test = 0; test < 2 && report.skip_reason.empty(); ++test) {
            ToolVerifyResult const& result = place.results[1 - test];
            json[test_names[1 - test]] = {{"faces", make_json(result.faces)},
                                          {"edges", make_json(result.edges)},
                                          {"vertices", make_json(result.vertices)},
                                          {"faults", make_json(result.faults)}};
        }
        json["origins_inside"] = place.inside_count;
        places_json.push_back(std::move(json));
    }
    return {
        {"name", report.name},
        {"triangles", report.triangle_count},
        {"closed", report.is_closed},
        {"unpaired_edges", report.unpaired_count},
        {"closed_by_position", report.is_paired_by_position},
        {"no_rays", report.skip_reason.empty() ? ToolJson(nullptr) : ToolJson(report.skip_reason)},
        {"bar_misses", report.count_bar_misses()},
        {"places", places_json}};
}

std::string tell_why_no_rays(PolyMesh const& mesh, ToolVerifySurface const& surface) {
    if (!can_be_staged(mesh)) {
        return "nothing of a size to speak of";
    }
    if (surface.edges.empty()) {
        return "no triangles that share an edge";
    }
    if (!surface.is_closed()) {
        return make_text("open: ", surface.unpaired_count,
                         " edges are not shared by two primitives in opposite directions");
    }
    return has_finite_corners(mesh) ? "" : "corners that are no numbers";
}

// False after the reason has been shown.
bool verify_place(PolyMesh const& mesh, ToolVerifySurface const& surface,
                  ToolVerifySettings const& settings, bool const& shoots_rays,
                  AppProgressBar& progress, ToolMessages& messages, PlaceReport& report) {
    ToolVerifyStage const stage(mesh, report.place);
    report.bound_fault_count = count_bound_faults(stage);
    if (!shoots_rays || is_interrupted()) {
        return !is_interrupted();
    }
    CtxEval const ctx(&stage.get_shader_ctx());
    std::unique_ptr<ToolHitSearch> const search = make_embree_search(
        stage.get_mesh(), ctx, {GeometryRaytraceCtx::TEST_EXACT, stage.get_times()},
        settings.thread_count, messages);
    if (search == nullptr) {
        return false;
    }
    std::vector<ToolVerifyOrigin> inside;
    std::vector<ToolVerifyOrigin> outside;
    progress.begin_task("origins", 0.1f, false);
    bool is_complete = find_origins(stage, surface, settings.seed, settings.thread_count, progress,
                                    inside, outside);
    progress.end_task();
    report.inside_count = inside.size();
    progress.begin_task("rays", 0.9f, false);
    is_complete = is_complete && shoot_rays(stage, surface, settings, *search, inside, outside,
                                            progress, report.results);
    progress.end_task();
    return is_complete;
}

// False after the reason has been shown.
bool verify_mesh(VerifyOptions const& options, ToolMeshOptions const& mesh_options,
                 ToolMessages& messages, MeshReport& report) {
    ToolMesh mesh;
    if (!load_mesh(mesh_options, messages, mesh)) {
        return false;
    }
    report.name = mesh.name;
    ToolVerifySurface const surface = make_verify_surface(*mesh.mesh);
    report.triangle_count = static_cast<unsigned int>(surface.triangles.size());
    report.unpaired_count = surface.unpaired_count;
    report.is_closed = surface.is_closed();
    report.is_paired_by_position = surface.is_paired_by_position;
    report.skip_reason = tell_why_no_rays(*mesh.mesh, surface);
    if (!can_be_staged(*mesh.mesh)) {
        return true;
    }
    ToolProgress progress("verifying");
    progress.get_bar().start();
    for (ToolVerifyPlace const& place : places) {
        if (place.is_far && options.is_near_only) {
            continue;
        }
        progress.get_bar().begin_task(place.name, 1.0f / std::size(places), false);
        report.places.push_back({place, 0, 0, {}});
        if (!verify_place(*mesh.mesh, surface, options.settings, report.skip_reason.empty(),
                          progress.get_bar(), messages, report.places.back())) {
            return false;
        }
        progress.get_bar().end_task();
    }
    progress.get_bar().finish();
    return true;
}

int judge(MeshReport const& report, ToolMessages& messages) {
    if (report.count_bar_misses() == 0 && report.count_bound_faults() == 0) {
        return tool_success;
    }
    return messages.fail(make_text(std::string_view(report.name), ": ", report.count_bar_misses(),
                                   " misses by the exact test near the origin, ",
                                   report.count_bound_faults(), " corners out of bounds"));
}

int run_verify(VerifyOptions const& options, ToolMessages& messages) {
    ToolJson json = ToolJson::array();
    int const status =
        visit_files(options.mesh, messages, [&](ToolMeshOptions const& mesh_options) {
            MeshReport report;
            if (!verify_mesh(options, mesh_options, messages, report)) {
                return tool_failure;
            }
            options.is_json ? json.push_back(make_json(report)) : print_text(report);
            std::fflush(stdout);
            return judge(report, messages);
        });
    if (options.is_json && !is_interrupted()) {
        print_json(json);
    }
    return status;
}

}  // namespace

void add_verify_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<VerifyOptions>();
    options->settings.thread_count = std::max(1u, std::thread::hardware_concurrency());
    CLI::App* const command =
        app.add_subcommand("verify", "Count the rays that slip through closed meshes");
    add_mesh_options(*command, options->mesh, ToolFileNeed::SEVERAL);
    command->add_option("--rays", options->settings.ray_count, "Rays for a mesh and place")
        ->check(CLI::Range(1ull, 1000000000000ull))
        ->capture_default_str();
    command->add_option("--seed", options->settings.seed, "Of the random numbers")
        ->capture_default_str();
    command->add_option("--threads", options->settings.thread_count, "Threads [all cores]")
        ->check(CLI::Range(1u, 1024u));
    command->add_flag("--near", options->is_near_only, "Near the origin alone");
    command->add_flag("--json", options->is_json, "As JSON, with the first rays at fault");
    command->footer("Examples:\n"
                    "  qzpoly verify ship.obj --rays 1000000\n"
                    "  qzpoly verify --sphere 64 32 --near --json");
    command->callback(
        [options, &session] { session.status = run_verify(*options, session.messages); });
}
