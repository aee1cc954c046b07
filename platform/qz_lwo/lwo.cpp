#include <platform/qz_lwo/lwo.h>

#include <platform/qz_lwo/lwo_file.h>
#include <platform/qz_lwo/lwo_form.h>
#include <platform/qz_lwo/lwo_object.h>
#include <platform/qz_lwo/lwo_surface_colors.h>
#include <platform/qz_sys.h>

#include <filesystem>

bool Lwo::is_valid(CoreString const& path) {
    SysFile file;
    unsigned char header[lwo_form_header_size];
    std::error_code error;  // a pipe must not be opened here: what is read from it is gone
    return std::filesystem::is_regular_file(path.get_data(), error) &&
           file.open(path, SysFile::MODE_READ) &&
           lwo_is_form_header(header, file.read(header, sizeof header));
}

bool Lwo::load(CoreString const& path, CoreString const& item_name,
               CoreArray<GMathVec3<float>>& positions,
               CoreArray<unsigned int>& polygon_vertex_indices,
               CoreArray<unsigned int>& polygon_vertex_count,
               CoreArray<unsigned int>& polygon_shading_groups,
               CoreArray<CoreString>& shading_group_names, CoreArray<GeometryUvMap>& uv_maps,
               CoreArray<GeometryNormalMap>& normal_maps, AppProgressBar* progress) {
    LwoReport report(path, progress);
    LwoFile file;
    LwoMesh mesh;
    if (!file.read(path, report) ||
        !lwo_read_object(file.get_bytes(), file.get_size(), item_name, mesh, report)) {
        return false;
    }
    positions.swap(mesh.positions);
    polygon_vertex_indices.swap(mesh.polygon_vertex_indices);
    polygon_vertex_count.swap(mesh.polygon_vertex_count);
    polygon_shading_groups.swap(mesh.polygon_shading_groups);
    shading_group_names.swap(mesh.shading_group_names);
    uv_maps.swap(mesh.uv_maps);
    normal_maps.swap(mesh.normal_maps);
    return true;
}

bool Lwo::load_surface_colors(CoreString const& path, CoreArray<CoreString>& names,
                              CoreArray<GMathVec3<float>>& colors) {
    LwoReport report(path, nullptr);
    LwoFile file;
    LwoForm form;
    if (!file.read(path, report) ||
        !lwo_read_form(file.get_bytes(), file.get_size(), form, report)) {
        return false;
    }
    CoreArray<CoreString> new_names;
    CoreArray<GMathVec3<float>> new_colors;
    lwo_read_surface_colors(file.get_bytes(), file.get_size(), new_names, new_colors);
    names.swap(new_names);
    colors.swap(new_colors);
    return true;
}
