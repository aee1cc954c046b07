#include <tools/qzpoly/models/motion.h>

#include <tools/qzpoly/terminal/numbers.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

namespace {

constexpr double usual_spin_degrees = 20;

// Positions that are all in memory.
class Frames : public GeometrySampleProvider {
  public:
    std::vector<CoreArray<GMathVec3<float>>> positions;

    void fill_sample(GMathTimeSampling const&, unsigned int const& sample,
                     GMathVec3<float>* out) override {
        std::copy(positions[sample].begin(), positions[sample].end(), out);
    }
};

bool is_ascending(std::vector<double> const& times) {
    // Written so that a NaN fails.
    return std::adjacent_find(times.begin(), times.end(), [](double const& a, double const& b) {
               return !(a < b);
           }) == times.end();
}

bool is_equal(CoreArray<unsigned int> const& a, CoreArray<unsigned int> const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

// Why two meshes are no frames of one; empty if they are.
std::string tell_difference(PolyMesh const& a, PolyMesh const& b) {
    if (a.get_vertex_count() != b.get_vertex_count()) {
        return make_text(b.get_vertex_count(), " vertices in place of ", a.get_vertex_count());
    }
    CoreArray<unsigned int> of_a;
    CoreArray<unsigned int> of_b;
    a.get_polygon_vertex_count(of_a);
    b.get_polygon_vertex_count(of_b);
    if (!is_equal(of_a, of_b)) {
        return "other polygons";
    }
    a.get_polygon_vertex_indices(of_a);
    b.get_polygon_vertex_indices(of_b);
    return is_equal(of_a, of_b) ? "" : "other polygons";
}

bool load_frames(ToolMeshOptions const& mesh_options, ToolMotionOptions const& options,
                 ToolMessages& messages, PolyMesh const& mesh, Frames& frames) {
    frames.positions.resize(options.frames.size());
    mesh.get_point_cloud()->get_positions(frames.positions[0]);
    for (std::size_t i = 1; i < options.frames.size(); ++i) {
        std::string const& file = options.frames[i];
        ToolMeshOptions frame_options = mesh_options;
        frame_options.file = file;
        ToolMesh frame;
        if (!load_mesh(frame_options, messages, frame)) {
            return false;
        }
        std::string const difference = tell_difference(mesh, *frame.mesh);
        if (!difference.empty()) {
            messages.fail(make_text(std::string_view(file), " is no frame of ",
                                    std::string_view(options.frames[0]), ": it has ",
                                    std::string_view(difference)));
            return false;
        }
        frame.mesh->get_point_cloud()->get_positions(frames.positions[i]);
    }
    return true;
}

bool put_cloud(GeometryPointCloud const& cloud, ToolMessages& messages, PolyMesh& mesh) {
    if (!mesh.set_point_cloud(cloud, nullptr)) {
        messages.fail("the mesh does not take the moving points");
        return false;
    }
    return true;
}

bool set_frames(ToolMeshOptions const& mesh_options, ToolMotionOptions const& options,
                std::vector<double> const& times, ToolMessages& messages, PolyMesh& mesh) {
    auto const frames = std::make_shared<Frames>();
    if (!load_frames(mesh_options, options, messages, mesh, *frames)) {
        return false;
    }
    GeometryPointCloud cloud(*mesh.get_point_cloud(), true);
    cloud.set_deformation(GMathTimeSampling(CoreBasicArray<double>(
                              times.data(), static_cast<unsigned int>(times.size()))),
                          frames);
    return put_cloud(cloud, messages, mesh);
}

bool set_velocities(ToolMotionOptions const& options, GMathVec3<double> const& vertical,
                    ToolMessages& messages, PolyMesh& mesh) {
    double const degrees =
        options.is_spinning ? usual_spin_degrees : options.spin_degrees.value_or(0);
    GMathVec3<double> const turn = vertical * (degrees * std::numbers::pi / 180.0);
    GMathVec3<double> const shift =
        options.velocity.empty()
            ? GMathVec3<double>(0, 0, 0)
            : GMathVec3<double>(options.velocity[0], options.velocity[1], options.velocity[2]);
    GMathBbox3<double> const bbox = mesh.get_bbox();
    GMathVec3<double> const center = (bbox.minimum + bbox.maximum) * 0.5;
    CoreArray<GMathVec3<float>> positions;
    mesh.get_point_cloud()->get_positions(positions);
    for (GMathVec3<float>& p : positions) {
        p = GMathVec3<float>(shift + gmath_cross(turn, GMathVec3<double>(p) - center));
    }
    GeometryPointCloud cloud(*mesh.get_point_cloud(), true);
    cloud.set_velocities(positions);
    return put_cloud(cloud, messages, mesh);
}

// `count` times from the first to the last, both included; a single one when they are equal.
std::vector<double> make_shutter_times(double const& first, double const& last,
                                       std::size_t const& count) {
    if (first == last) {
        return {first};
    }
    std::vector<double> times;
    for (std::size_t i = 0; i < count; ++i) {
        double const f = static_cast<double>(i) / static_cast<double>(count - 1);
        times.push_back(i + 1 == count ? last : first + (last - first) * f);
    }
    return times;
}

// Of the frames; none without frames.
std::vector<double> get_times(ToolMotionOptions const& options) {
    std::size_t const frame_count = options.frames.size();
    std::vector<double> const times =
        options.times.empty()
            ? make_shutter_times(0, static_cast<double>(frame_count) - 1, frame_count)
            : options.times;
    if (!is_ascending(times) || times.size() != frame_count) {
        refuse_option("--times", "needs one time for each frame, each later than the last");
    }
    if (frame_count != 0 && !std::isfinite(times.back() - times.front())) {
        refuse_option("--times", "lie too far apart");
    }
    return times;
}

std::vector<double> get_shutter(ToolMotionOptions const& options,
                                std::vector<double> const& times) {
    if (options.shutter.empty()) {
        return times.empty() ? std::vector<double>{-0.5, 0.5}
                             : std::vector<double>{times.front(), times.back()};
    }
    if (options.shutter[0] > options.shutter[1]) {
        refuse_option("--shutter", "closes before it opens");
    }
    if (!std::isfinite(options.shutter[1] - options.shutter[0])) {
        refuse_option("--shutter", "is open too long");
    }
    return options.shutter;
}

}  // namespace

void add_motion_options(CLI::App& command, ToolMotionOptions& options) {
    std::string const group = "Motion";
    CLI::Option* const frames = command.add_option(
        "--frames", options.frames, "Files of one mesh at several times, in place of FILE");
    frames->type_name("A B...")->expected(2, 128)->group(group);
    frames->excludes(command.get_option("FILE"))->excludes(command.get_option("--sphere"));
    command.add_option("--times", options.times, "Their times [0 1 2 ...]")
        ->expected(2, 128)
        ->check(check_finite)
        ->type_name("T T...")
        ->needs(frames)
        ->group(group);
    CLI::Option* const spin_usually =
        command.add_flag("--motion", options.is_spinning, "Spin by some degrees");
    spin_usually->excludes(frames)->group(group);
    command.add_option("--spin", options.spin_degrees, "Spin about the vertical by unit of time")
        ->type_name("DEGREES")
        ->check(check_finite)
        ->excludes(frames)
        ->excludes(spin_usually)
        ->group(group);
    command.add_option("--velocity", options.velocity, "Move all vertices")
        ->type_name("X Y Z")
        ->expected(3)
        ->check(check_finite)
        ->excludes(frames)
        ->group(group);
    command
        .add_option("--shutter", options.shutter,
                    "Opens and closes [at the first and last frame, or -0.5 0.5]")
        ->type_name("T0 T1")
        ->expected(2)
        ->check(check_finite)
        ->group(group);
}

bool load_moving_mesh(ToolMeshOptions const& mesh_options, ToolMotionOptions const& options,
                      GMathVec3<double> const& vertical, ToolMessages& messages, ToolMesh& mesh,
                      std::vector<double>& shutter_times) {
    std::vector<double> const times = get_times(options);
    std::vector<double> const shutter = get_shutter(options, times);
    ToolMeshOptions first_options = mesh_options;
    if (!options.frames.empty()) {
        first_options.file = options.frames[0];
    }
    if (!load_mesh(first_options, messages, mesh)) {
        return false;
    }
    bool const has_frames = !options.frames.empty();
    if (!has_frames && !options.has_velocities()) {
        if (options.shutter.empty()) {
            return true;
        }
        if (!mesh.mesh->get_point_cloud()->has_velocities()) {  // those of a byte block
            refuse_option("--shutter",
                          "nothing moves without --frames, --motion, --spin or --velocity");
        }
    }
    shutter_times =
        make_shutter_times(shutter[0], shutter[1], std::max<std::size_t>(options.frames.size(), 2));
    if (has_frames) {
        return set_frames(mesh_options, options, times, messages, *mesh.mesh);
    }
    return !options.has_velocities() || set_velocities(options, vertical, messages, *mesh.mesh);
}

CtxShader make_shader_ctx(std::vector<double> const& shutter_times) {
    return shutter_times.empty()
               ? CtxShader()
               : CtxShader(CtxMotionBlur(GMathTimeSampling(CoreBasicArray<double>(
                     shutter_times.data(), static_cast<unsigned int>(shutter_times.size())))));
}
