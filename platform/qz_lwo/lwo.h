#pragma once

#include <platform/qz_app_base.h>
#include <platform/qz_core.h>
#include <platform/qz_geometry.h>
#include <platform/qz_gmath.h>
#include <platform/qz_lwo/export.h>

// Reads LightWave objects: the forms LWOB, LWLO, LWO2 and LWO3. Keeps no state between calls, so
// any number of threads may load at once, each with a progress bar of its own.
class QZ_LWO_EXPORT Lwo {
  public:
    // Decides by the first 12 bytes, whatever the name; false for what cannot be read, and for
    // pipes and devices, which are left alone: what is read from them is gone.
    static bool is_valid(CoreString const& path);

    // Reads the layers named `item_name`, byte for byte, or all layers when it is empty, one after
    // another in file order, as one mesh. Pivots and parents move nothing; hidden layers count.
    //
    //   output                  element       entries       meaning
    //   positions               x, y, z       per point     all points, unused ones too; metres
    //   polygon_vertex_indices  unsigned int  per corner    from 0, counter-clockwise from outside
    //   polygon_vertex_count    unsigned int  per polygon   3 and up
    //   polygon_shading_groups  unsigned int  per polygon   into shading_group_names
    //   shading_group_names     string        per group     by first use; "default": no surface
    //   uv_maps                 (u, v, 0)     per TXUV map  as in the file, v not flipped
    //   normal_maps             x, y, z       per NORM map  any length; the zero vector: none
    //
    // Faces, patches and subdivision cages all give polygons; curves and bones give none. The file
    // is left-handed with clockwise polygons, the mesh right-handed and counter-clockwise: z is
    // negated and the corners of each polygon are reversed. A map that no corner takes a value of
    // is left out; one with a value for each point in order, and no others, has no indices.
    //
    // False leaves all outputs untouched and logs one message at level 2 that tells the file, the
    // place and the reason. What is odd but harmless is logged at level 4, once a kind. `progress`
    // may be null; a stop requested there ends the load within 100 ms with its own message, not
    // counting the time that one read of the file and the release of memory take.
    //
    // Memory: the outputs, the file, and for hostile files up to 12 times the file's size. Maps
    // whose lists of corners take more than 64 MiB plus 8 times the file's size are refused.
    static bool load(CoreString const& path, CoreString const& item_name,
                     CoreArray<GMathVec3<float>>& positions,
                     CoreArray<unsigned int>& polygon_vertex_indices,
                     CoreArray<unsigned int>& polygon_vertex_count,
                     CoreArray<unsigned int>& polygon_shading_groups,
                     CoreArray<CoreString>& shading_group_names, CoreArray<GeometryUvMap>& uv_maps,
                     CoreArray<GeometryNormalMap>& normal_maps, AppProgressBar* progress);

    // The names and the colors (red, green, blue; mostly 0 to 1, as displayed) of those surfaces
    // that have a color, in file order. A surface whose color cannot be found is left out. False,
    // with one message at level 2 and the outputs untouched, for what is no object.
    static bool load_surface_colors(CoreString const& path, CoreArray<CoreString>& names,
                                    CoreArray<GMathVec3<float>>& colors);
};
