#include <tools/qzpoly/models/mesh_source.h>

#include <tools/qzpoly/terminal/numbers.h>
#include <tools/qzpoly/terminal/stopwatch.h>
#include <tools/qzpoly/terminal/terminal.h>

#include <platform/qz_lwo.h>
#include <platform/qz_sys.h>
#include <poly/module/poly_helpers.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace {

constexpr char const* own_model_name = "rocket.obj";
constexpr double largest_sphere_count = 8192;  // segments or rings; 67 million polygons

std::filesystem::path get_program_folder() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

// The project's own model, which lies beside the program's folder wherever that is.
std::string find_own_model() {
    std::filesystem::path const path = get_program_folder() / QZPOLY_OWN_MODELS / own_model_name;
    std::error_code error;
    return std::filesystem::is_regular_file(path, error) ? path.lexically_normal().string() : "";
}

bool is_sphere_count(double const& value) {
    return value >= 0 && value <= largest_sphere_count && value == std::floor(value);
}

void make_sphere(std::vector<double> const& values, ToolMesh& mesh) {
    if (!is_sphere_count(values[0]) || !is_sphere_count(values[1]) ||
        (values.size() != 2 && values.size() != 5)) {
        refuse_option("--sphere", make_text("takes S and R, whole numbers from 0 to ",
                                            largest_sphere_count, ", and three radii or none"));
    }
    bool const has_radii = values.size() == 5;
    GMathVec3<double> const radii =
        has_radii ? GMathVec3<double>(values[2], values[3], values[4]) : GMathVec3<double>(1, 1, 1);
    mesh.mesh.reset(PolyHelpers::create_poly_sphere(static_cast<unsigned int>(values[0]),
                                                    static_cast<unsigned int>(values[1]), radii));
    mesh.name = "sphere";
    mesh.kind = "procedural sphere";
}

bool refuse(CoreString const& reason) {
    CoreLogHandler::get_main().log(2, CoreLogStream() << reason << "\n");
    return false;
}

// A byte block begins with its own size.
bool is_block(CoreString const& path) {
    SysFile file;
    unsigned int stated_size = 0;
    std::error_code error;  // a pipe must not be opened here: what is read from it is gone
    return std::filesystem::is_regular_file(path.get_data(), error) &&
           file.open(path, SysFile::MODE_READ) &&
           file.read(&stated_size, sizeof stated_size) == sizeof stated_size &&
           stated_size == file.get_size();
}

bool load_block(CoreString const& path, PolyMesh& mesh) {
    SysFile file;
    file.open(path, SysFile::MODE_READ);
    CoreArray<unsigned char> block(static_cast<unsigned int>(file.get_size()));
    std::size_t const size = file.read(block.get_data(), block.get_count());
    return file.has_failed() ? refuse(file.get_error()) : mesh.deserialize(block.get_data(), size);
}

// The one place that tells kinds of file apart, always by their contents.
bool load_file(std::string const& name, ToolMeshOptions const& options, ToolMesh& mesh) {
    CoreString const path(std::string_view{name});
    mesh.mesh = std::make_unique<PolyMesh>();
    mesh.name = std::filesystem::path(name).stem().string();
    mesh.is_block = is_block(path);
    mesh.path = name;
    mesh.is_light_wave = Lwo::is_valid(path);
    mesh.kind = mesh.is_block        ? "byte block"
                : mesh.is_light_wave ? "LightWave object"
                                     : "Wavefront OBJ";
    if (!options.item.empty() && !mesh.is_light_wave) {
        return refuse("only LightWave objects have items");
    }
    if (mesh.is_block) {
        return options.is_unchecked ? refuse("the 4-gons of a byte block are always checked")
                                    : load_block(path, *mesh.mesh);
    }
    ToolProgress load_progress("loading");
    AppProgressBar build_progress("building");
    return mesh.mesh->import_from_file(path, CoreString(std::string_view(options.item)), 0.0,
                                       &load_progress.get_bar(),
                                       options.is_unchecked ? nullptr : &build_progress);
}

void show_import_warnings(PolyMesh const& mesh, ToolMessages& messages) {
    if (ResourceImportData const* const data = mesh.get_import_data()) {
        for (CoreString const& warning : data->warnings) {
            messages.warn(warning.get_view());
        }
    }
}

}  // namespace

void add_polygon_options(CLI::App& command, ToolMeshOptions& options, ToolFileNeed const& need) {
    std::string const meaning =
        make_text("Wavefront OBJ file, LightWave object, or byte block of `pack`",
                  need == ToolFileNeed::REQUIRED ? "" : " [the project's rocket]");
    CLI::Option* const file = need == ToolFileNeed::SEVERAL
                                  ? command.add_option("FILE", options.files, meaning)
                                  : command.add_option("FILE", options.file, meaning);
    file->check([](std::string const& name) { return std::string(name.empty() ? "no name" : ""); });
    command
        .add_option("--item", options.item, "The layers of this name of a LightWave object [all]")
        ->type_name("NAME");
    if (need == ToolFileNeed::REQUIRED) {
        file->required();
        return;
    }
    command
        .add_option("--sphere", options.sphere,
                    "A sphere of S segments and R rings in place of a file, with its radii")
        ->type_name("S R [RX RY RZ]")
        ->expected(2, 5)
        ->check(check_finite)
        ->excludes(file)
        ->excludes(command.get_option("--item"));
}

void add_mesh_options(CLI::App& command, ToolMeshOptions& options, ToolFileNeed const& need) {
    add_polygon_options(command, options, need);
    command.add_flag("--no-check-quads", options.is_unchecked,
                     "Keep every 4-gon as a quad, even one that is not convex");
}

bool load_mesh(ToolMeshOptions const& options, ToolMessages& messages, ToolMesh& mesh) {
    ToolStopwatch const watch;
    if (!options.sphere.empty()) {
        make_sphere(options.sphere, mesh);
        mesh.seconds = watch.get_seconds();
        return true;
    }
    std::string const file = options.file.empty() ? find_own_model() : options.file;
    if (file.empty()) {
        messages.fail(make_text("the model ", own_model_name, " is not where it belongs"));
        return false;
    }
    if (!load_file(file, options, mesh) || is_interrupted()) {
        messages.fail(make_text("cannot load ", std::string_view(file)));
        return false;
    }
    show_import_warnings(*mesh.mesh, messages);
    messages.warn_of_refusals();  // points that are no numbers
    mesh.seconds = watch.get_seconds();
    return true;
}

int visit_files(ToolMeshOptions const& options, ToolMessages& messages,
                std::function<int(ToolMeshOptions const&)> const& visit) {
    int status = tool_success;
    ToolMeshOptions one = options;
    std::size_t const count = std::max<std::size_t>(options.files.size(), 1);
    for (std::size_t i = 0; i < count && !is_interrupted(); ++i) {
        one.file = options.files.empty() ? "" : options.files[i];
        messages.begin_file(count > 1 ? one.file : "");
        status = std::max(status, visit(one));
    }
    return is_interrupted() ? tool_failure : status;
}
