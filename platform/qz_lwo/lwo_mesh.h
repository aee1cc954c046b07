#pragma once

#include <platform/qz_core.h>
#include <platform/qz_geometry.h>
#include <platform/qz_gmath.h>

// What a load makes, as the outputs of Lwo::load tell.
struct LwoMesh {
    CoreArray<GMathVec3<float>> positions;
    CoreArray<unsigned int> polygon_vertex_indices;
    CoreArray<unsigned int> polygon_vertex_count;
    CoreArray<unsigned int> polygon_shading_groups;
    CoreArray<CoreString> shading_group_names;
    CoreArray<GeometryUvMap> uv_maps;
    CoreArray<GeometryNormalMap> normal_maps;
};
