#include <tools/qzpoly/pictures/surface_options.h>

#include <tools/qzpoly/models/property_file.h>
#include <tools/qzpoly/terminal/numbers.h>

#include <CLI/CLI.hpp>

void add_surface_options(CLI::App& command, ToolSurfaceOptions& options) {
    options.smooth = add_smooth_option(command, options.smoothing_angle,
                                       "Smooth the normals across edges below this angle");
    command.add_option("--normal-map", options.normal_map,
                       "Shade with this normal map of the file, from 0");
    add_property_option(command, options);
}

void add_property_option(CLI::App& command, ToolSurfaceOptions& options) {
    command
        .add_option("--property", options.property_files,
                    "Attach the property of a JSON file; may be repeated")
        ->type_name("FILE")
        ->allow_extra_args(false);
}

bool make_surface(ToolSurfaceOptions const& options, PolyMesh& mesh, ToolMessages& messages,
                  ToolSurface& surface) {
    bool const has_normal_map = options.normal_map != 0xFFFFFFFFu;
    if (has_normal_map && options.normal_map >= mesh.get_normal_map_count()) {
        refuse_option("--normal-map", make_text("there is no ", options.normal_map,
                                                ": the mesh has ", mesh.get_normal_map_count()));
    }
    bool const is_smoothed = options.smooth != nullptr && options.smooth->count() != 0;
    if (has_normal_map && is_smoothed && !options.has_hard_edges) {
        refuse_option("--smooth", "is not used beside --normal-map");
    }
    surface.geometry = &mesh;
    if (has_normal_map || is_smoothed) {
        surface.smoothed = std::make_unique<PolyMeshSmoothed>();
        surface.smoothed->set(mesh, options.smoothing_angle, options.normal_map, nullptr);
        surface.geometry = surface.smoothed.get();
    }
    GeometryObject& owner = surface.smoothed ? static_cast<GeometryObject&>(*surface.smoothed)
                                             : static_cast<GeometryObject&>(mesh);
    for (std::string const& file : options.property_files) {
        std::unique_ptr<PolyMeshProperty> property = load_property(file, mesh, messages);
        if (!property) {
            return false;
        }
        owner.add_property(*property);
        surface.properties.push_back(std::move(property));
    }
    return true;
}
