#pragma once

#include <platform/qz_geometry.h>

// Reads the application's own models in place of OBJ files: nine numbers a triangle.
class Obj {
  public:
    static bool load(CoreString const& path, CoreArray<GMathVec3<float>>& positions,
                     CoreArray<unsigned int>& polygon_vertex_indices,
                     CoreArray<unsigned int>& polygon_vertex_count,
                     CoreArray<unsigned int>& polygon_shading_groups,
                     CoreArray<CoreString>& shading_group_names, CoreArray<GeometryUvMap>& uv_maps,
                     CoreArray<GeometryNormalMap>& normal_maps,
                     CoreArray<GeometryColorMap>& color_maps, ResourceImportData*& import_data,
                     AppProgressBar* progress);
};
