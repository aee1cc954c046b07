#pragma once

#include <platform/qz_core.h>
#include <platform/qz_geometry.h>
#include <platform/qz_gmath.h>

// What a load makes, as the outputs of Lwo::load tell.
struct LwoMesh {
    CoreArray<GMathVec3<float>> positions;
    CoreArray<unsigned int> corners;         // vertices by corner
    CoreArray<unsigned int> polygon_counts;  // corners by polygon
    CoreArray<unsigned int> polygon_groups;  // groups by polygon
    CoreArray<CoreString> group_names;
    CoreArray<GeometryUvMap> uv_maps;
    CoreArray<GeometryNormalMap> normal_maps;
};
