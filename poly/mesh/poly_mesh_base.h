#pragma once

#include <platform/qz_geometry.h>
#include <poly/export.h>

// What polygon meshes have in common: maps by polygon corner. Adds no data to its base.
class QZ_POLY_EXPORT PolyMeshBase : public GeometryObject {
  public:
    PolyMeshBase();
    PolyMeshBase(PolyMeshBase const& other);
    PolyMeshBase(PolyMeshBase&& other);
    ~PolyMeshBase() override;
    PolyMeshBase& operator=(PolyMeshBase const& other);

    static CoreClassInfo const& class_info();
    CoreClassInfo const& get_class_info() const override;
    static bool ___class_destructor__(void* object, bool const& is_array);

    // The values of a map, and the number of the value of every polygon corner. Values that go by
    // vertex come with empty indices, unless `always_indices`. False for an index at or past the
    // count, with the outputs untouched. Default: no maps.
    virtual bool get_polygon_normal_map_data(unsigned int const& map,
                                             CoreArray<GMathVec3<float>>& values,
                                             CoreArray<unsigned int>& indices) const;
    virtual bool get_polygon_uv_map_data(unsigned int const& map,
                                         CoreArray<GMathVec3<float>>& values,
                                         CoreArray<unsigned int>& indices,
                                         bool const& always_indices) const;
    virtual bool get_polygon_color_map_data(unsigned int const& map,
                                            CoreArray<GMathVec4<unsigned char>>& values,
                                            CoreArray<unsigned int>& indices,
                                            bool const& always_indices) const;

    // The same with the map's name; false and untouched for an index at or past the count.
    bool get_polygon_uv_map(unsigned int const& map, GeometryUvMap& uv_map,
                            bool const& always_indices) const;
    bool get_polygon_normal_map(unsigned int const& map, GeometryNormalMap& normal_map) const;
    bool get_polygon_color_map(unsigned int const& map, GeometryColorMap& color_map,
                               bool const& always_indices) const;

    // All maps of a kind.
    void get_polygon_uv_maps(CoreArray<GeometryUvMap>& uv_maps, bool const& always_indices) const;
    void get_polygon_normal_maps(CoreArray<GeometryNormalMap>& normal_maps) const;
    void get_polygon_color_maps(CoreArray<GeometryColorMap>& color_maps,
                                bool const& always_indices) const;
};
