#include <platform/qz_obj.h>

#include <fstream>

bool Obj::load(CoreString const& path, CoreArray<GMathVec3<float>>& positions,
               CoreArray<unsigned int>& polygon_vertex_indices,
               CoreArray<unsigned int>& polygon_vertex_count,
               CoreArray<unsigned int>& polygon_shading_groups,
               CoreArray<CoreString>& shading_group_names, CoreArray<GeometryUvMap>&,
               CoreArray<GeometryNormalMap>&, CoreArray<GeometryColorMap>&, ResourceImportData*&,
               AppProgressBar*) {
    std::ifstream file(path.get_data());
    GMathVec3<float> p;
    while (file >> p.x >> p.y >> p.z) {
        polygon_vertex_indices.append(positions.get_count());
        positions.append(p);
    }
    if (positions.is_empty()) {
        return false;
    }
    polygon_vertex_count.resize(positions.get_count() / 3);
    polygon_vertex_count.fill(3);
    polygon_shading_groups.resize(polygon_vertex_count.get_count());
    polygon_shading_groups.fill(0);
    shading_group_names.append("triangles");
    return true;
}
