#include <poly/mesh/content_key.h>
#include <poly/mesh/log_message.h>
#include <poly/mesh/poly_mesh.h>
#include <poly/mesh/primitive_building.h>

#include <platform/qz_lwo.h>
#include <platform/qz_module.h>
#include <platform/qz_obj.h>
#include <platform/qz_sys.h>

#include <memory>

namespace {

// What a file holds, before the mesh takes it.
struct LoadedFile {
    CoreArray<GMathVec3<float>> positions;
    CoreArray<unsigned int> polygon_vertex_indices;
    CoreArray<unsigned int> polygon_vertex_count;
    CoreArray<unsigned int> polygon_shading_groups;
    CoreArray<CoreString> shading_group_names;
    CoreArray<GeometryUvMap> uv_maps;
    CoreArray<GeometryNormalMap> normal_maps;
    CoreArray<GeometryColorMap> color_maps;
    CoreArray<CoreString> property_names;  // stays empty: no loader hands names over
    std::unique_ptr<ResourceImportData> import_data;

    PolyMeshPolygons get_polygons() const {
        return {polygon_vertex_indices, polygon_vertex_count, polygon_shading_groups};
    }
};

// The content decides, not the extension.
bool load_file(CoreString const& path, CoreString const& item_name, AppProgressBar* progress,
               LoadedFile& file) {
    if (Lwo::is_valid(path)) {
        return Lwo::load(path, item_name, file.positions, file.polygon_vertex_indices,
                         file.polygon_vertex_count, file.polygon_shading_groups,
                         file.shading_group_names, file.uv_maps, file.normal_maps, progress);
    }
    ResourceImportData* import_data = nullptr;
    bool const is_loaded =
        Obj::load(path, file.positions, file.polygon_vertex_indices, file.polygon_vertex_count,
                  file.polygon_shading_groups, file.shading_group_names, file.uv_maps,
                  file.normal_maps, file.color_maps, import_data, progress);
    file.import_data.reset(import_data);
    return is_loaded;
}

}  // namespace

bool PolyMesh::import_from_file(CoreString const& path, CoreString const& item_name,
                                double const& /*time*/, AppProgressBar* load_progress,
                                AppProgressBar* build_progress) {
    if (!SysFilesystem::file_exists(path)) {
        log_message(LOG_REFUSAL, "PolyMesh.import_from_file: File '", path, "' not found.\n");
        return false;
    }
    LoadedFile file;
    bool is_loaded = load_file(path, item_name, load_progress, file);
    if (load_progress) {
        load_progress->finish();
    }
    is_loaded = is_loaded && is_buildable("PolyMesh.import_from_file", file.get_polygons(),
                                          file.positions.get_count());
    if (is_loaded && build_progress) {
        build_progress->start();
    }
    if (!is_loaded || file.positions.is_empty()) {
        log_message(LOG_REFUSAL, "loading '", path, "/", item_name, "' failed.\n");
        return false;
    }
    if (!file.property_names.is_empty()) {
        ModuleGeometry::register_properties(file.property_names);
    }
    set_import_data(file.import_data.release());
    m_hash_key = compute_content_key(file.positions, {}, file.get_polygons());
    install(file.positions, {}, file.get_polygons(), file.shading_group_names, file.uv_maps,
            file.color_maps);
    // The mesh has these by now, and building needs room.
    file.positions.clear();
    file.uv_maps.clear();
    file.color_maps.clear();
    rebuild(file.get_polygons(), build_progress != nullptr, file.normal_maps);
    return true;
}
