#include <tools/qzpoly/commands/commands.h>

#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/pictures/look_options.h>
#include <tools/qzpoly/pictures/picture_text.h>
#include <tools/qzpoly/pictures/scene.h>
#include <tools/qzpoly/terminal/numbers.h>
#include <tools/qzpoly/terminal/terminal.h>

#include <platform/qz_lwo.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr unsigned int usual_sample_count = 8;
constexpr unsigned int label_height = tool_letter_height + 6;
constexpr unsigned int gap = 2;
constexpr std::size_t largest_sheet = std::size_t(1) << 28;  // pixels

struct SheetOptions {
    ToolCameraOptions camera;
    ToolLookOptions look;
    std::vector<std::string> paths;
    std::string output = "sheet.png";
    unsigned int columns = 0;  // 0: about as many as rows
    bool has_edges = false;
};

bool is_model(fs::path const& path) {
    std::string ending = path.extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(), [](char const& c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return ending == ".obj" || Lwo::is_valid(CoreString(std::string_view(path.native())));
}

// The files that are named, and the models in the folders that are; false after the reason has been
// shown.
bool list_files(std::vector<std::string> const& paths, ToolMessages& messages,
                std::vector<std::string>& files) {
    for (std::string const& path : paths) {
        std::error_code error;
        if (!fs::is_directory(path, error)) {
            files.push_back(path);
            continue;
        }
        std::vector<std::string> found;
        for (fs::directory_iterator entry(path, error), end; !error && entry != end;
             entry.increment(error)) {
            std::error_code ignored;
            if (entry->is_regular_file(ignored) && is_model(entry->path())) {
                found.push_back(entry->path().string());
            }
        }
        if (error) {
            messages.fail(make_text("cannot read ", std::string_view(path), ": ",
                                    std::string_view(error.message())));
            return false;
        }
        std::sort(found.begin(), found.end());  // folders are in no order
        files.insert(files.end(), found.begin(), found.end());
    }
    if (files.empty()) {
        messages.fail("there are no models");
    }
    return !files.empty();
}

bool draw_model(SheetOptions const& options, ToolMeshOptions const& mesh_options,
                ToolMessages& messages, ToolImage& image) {
    ToolMesh mesh;
    ToolCamera camera;
    ToolRenderSettings settings;
    if (!load_mesh(mesh_options, messages, mesh)) {
        return false;
    }
    ToolScene scene(*mesh.mesh, {});
    if (options.has_edges) {
        settings.edge_layers.push_back({list_visible_edges(*mesh.mesh), std::nullopt});
    }
    if (!make_camera(options.camera, scene.get_extent(), messages, camera) ||
        !make_look(options.look, mesh, *mesh.mesh, scene.get_ctx(), usual_sample_count, messages,
                   settings) ||
        !scene.prepare(GeometryRaytraceCtx::TEST_TOLERANT, false, settings.thread_count,
                       messages)) {
        return false;
    }
    ToolProgress progress("rendering");
    progress.get_bar().start();
    return scene.draw(camera, settings, progress.get_bar(), messages, image);
}

void copy_image(ToolImage const& from, unsigned int const& left, unsigned int const& top,
                ToolImage& to) {
    for (unsigned int y = 0; y < from.height; ++y) {
        std::copy_n(&from.bytes[std::size_t(3) * y * from.width], std::size_t(3) * from.width,
                    &to.bytes[3 * ((std::size_t(top) + y) * to.width + left)]);
    }
}

// The end of a name that is too long tells more than its beginning.
std::string shorten(std::string const& name, std::size_t const& most) {
    return name.size() <= most
               ? name
               : ".." + name.substr(name.size() + 2 - std::max<std::size_t>(most, 2));
}

// Draws a model with its name beneath, or what is there in place of it.
bool draw_cell(SheetOptions const& options, ToolMeshOptions const& mesh_options,
               unsigned int const& left, unsigned int const& top, ToolMessages& messages,
               ToolImage& sheet) {
    unsigned int const width = options.camera.size[0];
    unsigned int const height = options.camera.size[1];
    ToolImage image;
    bool const is_drawn = draw_model(options, mesh_options, messages, image);
    ToolColor const fault_color = from_display(0.75f, 0.1f, 0.1f);
    if (is_drawn) {
        copy_image(image, left, top, sheet);
    } else {
        fill(sheet, left, top, width, height, from_display(0.96f, 0.88f, 0.86f));
        draw_text(sheet, shorten("cannot be drawn", width / tool_letter_advance), left + 4,
                  top + height / 2, 1, fault_color);
    }
    std::string const name = shorten(fs::path(mesh_options.file).filename().string(),
                                     (width - std::min(width, 8u)) / tool_letter_advance);
    draw_text(sheet, name, left + 4, top + height + 4, 1,
              is_drawn ? ToolColor(0, 0, 0) : fault_color);
    return is_drawn;
}

int run_sheet(SheetOptions const& options, ToolMessages& messages) {
    ToolMeshOptions mesh_options;
    std::vector<std::string>& files = mesh_options.files;
    if (!list_files(options.paths, messages, files)) {
        return tool_failure;
    }
    std::size_t const columns =
        options.columns != 0
            ? std::min<std::size_t>(options.columns, files.size())
            : static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(files.size()))));
    std::size_t const rows = (files.size() + columns - 1) / columns;
    std::size_t const step_across = options.camera.size[0] + gap;
    std::size_t const step_down = options.camera.size[1] + label_height + gap;
    if (columns * step_across > largest_sheet / (rows * step_down)) {
        return messages.fail(make_text("too many pictures for one sheet: ", files.size()));
    }
    ToolImage sheet(static_cast<unsigned int>(columns * step_across - gap),
                    static_cast<unsigned int>(rows * step_down - gap));
    fill(sheet, 0, 0, sheet.width, sheet.height, ToolColor(1, 1, 1));
    std::size_t drawn_count = 0;
    std::size_t place = 0;
    int const status = visit_files(mesh_options, messages, [&](ToolMeshOptions const& one) {
        bool const is_drawn =
            draw_cell(options, one, static_cast<unsigned int>(place % columns * step_across),
                      static_cast<unsigned int>(place / columns * step_down), messages, sheet);
        drawn_count += is_drawn ? 1 : 0;
        ++place;
        return is_drawn ? tool_success : tool_failure;
    });
    if (is_interrupted() || !write_png(sheet, options.output, messages)) {
        return tool_failure;
    }
    std::printf("%s: %zu of %zu models, %u x %u\n", make_printable(options.output).c_str(),
                drawn_count, files.size(), sheet.width, sheet.height);
    return status;
}

}  // namespace

void add_sheet_command(CLI::App& app, ToolSession& session) {
    auto const options = std::make_shared<SheetOptions>();
    options->camera.size = {240, 180};
    CLI::App* const command =
        app.add_subcommand("sheet", "Render many models side by side, with their names");
    command
        ->add_option("PATH", options->paths, "Folders, whose models are taken by name, and files")
        ->required();
    command->add_option("-o,--output", options->output, "PNG file")->capture_default_str();
    command->add_option("--columns", options->columns, "Pictures side by side [as many as rows]")
        ->check(CLI::Range(1u, 1000u));
    add_look_options(*command, options->look, "8", false);
    command->add_flag("--edges", options->has_edges, "Draw the edges of polygons");
    add_camera_options(*command, options->camera);
    command->get_option("--size")->description("Each picture in pixels");
    command->footer(
        "A file that cannot be drawn has a red field in its place, and its reason on standard\n"
        "error. Exit status: 0 all drawn, 1 some not, 2 wrong usage.\n\n"
        "Examples:\n"
        "  qzpoly sheet models -o models.png\n"
        "  qzpoly sheet old new --columns 6 --edges --camera three-quarter");
    command->callback(
        [options, &session] { session.status = run_sheet(*options, session.messages); });
}
