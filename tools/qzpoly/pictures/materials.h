#pragma once

#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/pictures/shading.h>

// The materials of a mesh's groups: of an OBJ file those of the libraries that it names, of a
// LightWave object its surfaces' colors. What is missing or broken is a warning, and leaves groups
// without a material. Only files below the folder of the model are opened.
std::vector<std::optional<ToolMaterial>> load_materials(ToolMesh const& mesh,
                                                        ToolMessages& messages);
