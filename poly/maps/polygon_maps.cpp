#include <poly/mesh/poly_mesh_base.h>

bool PolyMeshBase::get_polygon_uv_map(unsigned int const& map, GeometryUvMap& uv_map,
                                      bool const& always_indices) const {
    if (map >= get_uv_map_count()) {
        return false;
    }
    uv_map.name = get_uv_map_name(map);
    return get_polygon_uv_map_data(map, uv_map.values, uv_map.indices, always_indices);
}

bool PolyMeshBase::get_polygon_normal_map(unsigned int const& map,
                                          GeometryNormalMap& normal_map) const {
    if (map >= get_normal_map_count()) {
        return false;
    }
    normal_map.name = get_normal_map_name(map);
    return get_polygon_normal_map_data(map, normal_map.values, normal_map.indices);
}

bool PolyMeshBase::get_polygon_color_map(unsigned int const& map, GeometryColorMap& color_map,
                                         bool const& always_indices) const {
    if (map >= get_color_map_count()) {
        return false;
    }
    color_map.name = get_color_map_name(map);
    return get_polygon_color_map_data(map, color_map.values, color_map.indices, always_indices);
}

void PolyMeshBase::get_polygon_uv_maps(CoreArray<GeometryUvMap>& uv_maps,
                                       bool const& always_indices) const {
    uv_maps.resize(get_uv_map_count());
    for (unsigned int map = 0; map < uv_maps.get_count(); ++map) {
        get_polygon_uv_map(map, uv_maps[map], always_indices);
    }
}

void PolyMeshBase::get_polygon_normal_maps(CoreArray<GeometryNormalMap>& normal_maps) const {
    normal_maps.resize(get_normal_map_count());
    for (unsigned int map = 0; map < normal_maps.get_count(); ++map) {
        get_polygon_normal_map(map, normal_maps[map]);
    }
}

void PolyMeshBase::get_polygon_color_maps(CoreArray<GeometryColorMap>& color_maps,
                                          bool const& always_indices) const {
    color_maps.resize(get_color_map_count());
    for (unsigned int map = 0; map < color_maps.get_count(); ++map) {
        get_polygon_color_map(map, color_maps[map], always_indices);
    }
}
