#pragma once

#include <tools/qzpoly/terminal/messages.h>

#include <poly/mesh/poly_mesh.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

// Which mesh a subcommand works on, as the command line tells it.
struct ToolMeshOptions {
    std::string file;
    std::vector<std::string> files;  // where there may be several; then `file` is left alone
    std::vector<double> sphere;      // segments, rings and perhaps three radii; empty: no sphere
    std::string item;                // layers of a LightWave object; empty: all
    bool is_unchecked = false;       // keeps every 4-gon as a quad, convex or not
};

struct ToolMesh {
    std::unique_ptr<PolyMesh> mesh;
    std::string name;  // of the file without folder and ending; what outputs are called after
    std::string path;  // of the file; empty for a sphere
    std::string kind;  // of the file, in words
    bool is_block = false;
    bool is_light_wave = false;

    bool is_obj() const { return !path.empty() && !is_block && !is_light_wave; }
    double seconds = 0;  // that loading and building took
};

enum class ToolFileNeed { REQUIRED, OPTIONAL, SEVERAL };

// Adds FILE and the options of loading; where no file is required also --sphere. The first is for
// commands that use the polygons alone, the second also has how they are made into primitives.
void add_polygon_options(CLI::App& command, ToolMeshOptions& options, ToolFileNeed const& need);
void add_mesh_options(CLI::App& command, ToolMeshOptions& options, ToolFileNeed const& need);

// Loads what the options name, the project's own small model if they name nothing. False after the
// reason has been shown.
bool load_mesh(ToolMeshOptions const& options, ToolMessages& messages, ToolMesh& mesh);

// Visits the options of one of several files after the other, or of the one mesh there is without a
// file. The worst status of the visits; they fail at an interrupt.
int visit_files(ToolMeshOptions const& options, ToolMessages& messages,
                std::function<int(ToolMeshOptions const&)> const& visit);
