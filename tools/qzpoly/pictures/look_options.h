#pragma once

#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/pictures/renderer.h>

#include <string>

// How pictures of a mesh look, as the command line tells it.
struct ToolLookOptions {
    std::string shade_mode = get_shade_modes()[0].name;
    unsigned int uv_map = 0;
    unsigned int color_map = 0;
    std::string texture;              // a PNG file; empty: none
    bool ignores_materials = false;   // those of the file
    std::string background;           // empty: the usual one
    unsigned int occlusion_rays = 0;  // a sample; 0: the usual light
    unsigned int samples = 0;         // rays for a pixel; 0: the usual number
    unsigned int thread_count = 1;
};

// `has_properties`: the command can attach properties, to be shown.
void add_look_options(CLI::App& command, ToolLookOptions& options, std::string const& usual_samples,
                      bool const& has_properties);
void add_map_options(CLI::App& command, ToolLookOptions& options);

// Takes them over, with the mesh's materials and a property of the geometry if one is to be shown.
// False after the reason has been shown.
bool make_look(ToolLookOptions const& options, ToolMesh const& mesh, GeometryObject const& geometry,
               CtxEval const& ctx, unsigned int const& usual_samples, ToolMessages& messages,
               ToolRenderSettings& settings);
