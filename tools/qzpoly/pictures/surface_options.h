#pragma once

#include <tools/qzpoly/terminal/messages.h>

#include <poly/property/poly_mesh_property.h>
#include <poly/smoothed/poly_mesh_smoothed.h>

#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

// How the surface of a mesh is shaded and what is attached to it, as the command line tells it.
struct ToolSurfaceOptions {
    double smoothing_angle = 0;             // in degrees
    CLI::Option const* smooth = nullptr;    // whether it was given
    bool has_hard_edges = false;            // edges that are hard at the angle are drawn
    unsigned int normal_map = 0xFFFFFFFFu;  // of the mesh; an imported one is never used unasked
    std::vector<std::string> property_files;
};

// A mesh, perhaps seen through smoothed normals, with its properties. Refers to the mesh.
struct ToolSurface {
    std::unique_ptr<PolyMeshSmoothed> smoothed;
    std::vector<std::unique_ptr<PolyMeshProperty>> properties;
    GeometryObject const* geometry = nullptr;
};

void add_surface_options(CLI::App& command, ToolSurfaceOptions& options);
void add_property_option(CLI::App& command, ToolSurfaceOptions& options);

// False after the reason has been shown.
bool make_surface(ToolSurfaceOptions const& options, PolyMesh& mesh, ToolMessages& messages,
                  ToolSurface& surface);
