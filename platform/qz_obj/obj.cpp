#include <platform/qz_obj/obj.h>

#include <platform/qz_obj/obj_file.h>

#include <utility>

bool Obj::load(CoreString const& path, CoreArray<GMathVec3<float>>& positions,
               CoreArray<unsigned int>& polygon_vertex_indices,
               CoreArray<unsigned int>& polygon_vertex_count,
               CoreArray<unsigned int>& polygon_shading_groups,
               CoreArray<CoreString>& shading_group_names, CoreArray<GeometryUvMap>& uv_maps,
               CoreArray<GeometryNormalMap>& normal_maps, CoreArray<GeometryColorMap>& color_maps,
               ResourceImportData*& import_data, AppProgressBar* progress) {
    ObjMesh mesh;
    if (!obj_read_file(path, ObjLimits(), progress, mesh)) {
        return false;
    }
    positions = std::move(mesh.positions);
    polygon_vertex_indices = std::move(mesh.polygon_vertex_indices);
    polygon_vertex_count = std::move(mesh.polygon_vertex_count);
    polygon_shading_groups = std::move(mesh.polygon_shading_groups);
    shading_group_names = std::move(mesh.shading_group_names);
    uv_maps = std::move(mesh.uv_maps);
    normal_maps = std::move(mesh.normal_maps);
    color_maps = std::move(mesh.color_maps);
    import_data = new ResourceImportData(std::move(mesh.import_data));
    return true;
}
