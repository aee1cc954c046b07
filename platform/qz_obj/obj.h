#pragma once

#include <platform/qz_app_base.h>
#include <platform/qz_geometry.h>
#include <platform/qz_obj/export.h>
#include <platform/qz_resource.h>

// Reads OBJ files. Loads may run side by side.
class Obj {
  public:
    // Reads the whole file, from front to back, so that a pipe serves as well. Points keep their
    // order and number; polygons keep theirs, any corner count from 3 up.
    //
    // positions               one per point of the file; NaN and infinities are kept
    // polygon_vertex_indices  corners, 0-based, polygon after polygon
    // polygon_vertex_count    corners of each polygon
    // polygon_shading_groups  one per polygon, a number of shading_group_names
    // shading_group_names     materials in the order of their first polygon; "default" stands for
    //                         polygons without one
    // uv_maps, normal_maps    none or one each, "uv" and "normal", as GeometryMap has them; values
    //                         are finite, normals not normalised and possibly zero
    // color_maps              none or one, "color": sRGB as in the file, white where it has none
    // import_data             a new object that the caller deletes: creases and warnings
    //
    // True: all outputs are replaced; there may be points without polygons. False: nothing is
    // changed, and one message of level 2 tells the file, the line and the reason; so it is too
    // when `progress`, which may be null, asks to stop. Warnings are logged at level 4.
    QZ_OBJ_EXPORT static bool load(CoreString const& path, CoreArray<GMathVec3<float>>& positions,
                                   CoreArray<unsigned int>& polygon_vertex_indices,
                                   CoreArray<unsigned int>& polygon_vertex_count,
                                   CoreArray<unsigned int>& polygon_shading_groups,
                                   CoreArray<CoreString>& shading_group_names,
                                   CoreArray<GeometryUvMap>& uv_maps,
                                   CoreArray<GeometryNormalMap>& normal_maps,
                                   CoreArray<GeometryColorMap>& color_maps,
                                   ResourceImportData*& import_data, AppProgressBar* progress);
};
