#pragma once

#include <platform/qz_app_base.h>
#include <platform/qz_geometry.h>
#include <platform/qz_obj/export.h>
#include <platform/qz_resource.h>

// What a file holds, in the terms of Obj::load.
struct ObjMesh {
    CoreArray<GMathVec3<float>> positions;
    CoreArray<unsigned int> polygon_vertex_indices;
    CoreArray<unsigned int> polygon_vertex_count;
    CoreArray<unsigned int> polygon_shading_groups;
    CoreArray<CoreString> shading_group_names;
    CoreArray<GeometryUvMap> uv_maps;
    CoreArray<GeometryNormalMap> normal_maps;
    CoreArray<GeometryColorMap> color_maps;
    ResourceImportData import_data;
};

// Tests choose small ones, so that every edge is crossed.
struct ObjLimits {
    unsigned int block_size = 1u << 16;    // bytes read at a time, 1 and above
    unsigned int largest_count = ~0u - 1;  // points, corners, polygons and values of a map
};

// The whole of Obj::load but for handing over. `mesh` is empty at first, and of no use after false.
QZ_OBJ_EXPORT bool obj_read_file(CoreString const& path, ObjLimits const& limits,
                                 AppProgressBar* progress, ObjMesh& mesh);
