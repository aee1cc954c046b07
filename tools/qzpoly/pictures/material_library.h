#pragma once

#include <tools/qzpoly/pictures/texture_statement.h>
#include <tools/qzpoly/terminal/messages.h>

#include <platform/qz_gmath.h>

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// What a material library of an OBJ file says of one group of polygons.
struct ToolLibraryMaterial {
    unsigned int group;
    GMathVec3<float> diffuse;  // any numbers
    ToolTextureStatement texture;
};

// Where a file lies that another one names: below its folder, whatever the name. Of absolute paths
// and those that lead upwards, the last part alone counts.
std::string find_beside(std::filesystem::path const& folder, std::string name);

// The paths of the libraries that an OBJ file names and that are there; those that are not are
// warned about. Names behind the first 16 MiB of the file are not found.
std::vector<std::string> find_material_libraries(std::string const& obj_path,
                                                 ToolMessages& messages);

// Reads the materials of some groups, which are given by name. What cannot be read is warned about.
std::vector<ToolLibraryMaterial>
read_material_library(std::string const& path, std::map<std::string_view, unsigned int> groups,
                      ToolMessages& messages);
