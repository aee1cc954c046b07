#pragma once

#include <tools/qzpoly/terminal/messages.h>

#include <platform/qz_geometry.h>

#include <string>

// What an OBJ file can hold, as loaders give it.
struct ToolObjContents {
    CoreArray<GMathVec3<float>> positions;
    CoreArray<unsigned int> corners;
    CoreArray<unsigned int> corner_counts;
    CoreArray<unsigned int> groups;
    CoreArray<CoreString> group_names;
    CoreArray<GeometryUvMap> uv_maps;
    CoreArray<GeometryNormalMap> normal_maps;
    CoreArray<GeometryColorMap> color_maps;
    CoreArray<int> crease_indices;
    CoreArray<float> crease_sharpnesses;
};

// The text of an OBJ file with the polygons, the uv map of a number, the first normal and color
// map, groups and creases; numbers in the fewest digits that read back. Warns about what an OBJ
// file cannot hold.
std::string write_obj(ToolObjContents const& contents, unsigned int const& uv_map,
                      ToolMessages& messages);
