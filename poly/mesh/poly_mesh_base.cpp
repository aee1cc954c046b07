#include <poly/mesh/poly_mesh_base.h>

PolyMeshBase::PolyMeshBase() = default;
PolyMeshBase::PolyMeshBase(PolyMeshBase const& other) : GeometryObject(other) {}
PolyMeshBase::PolyMeshBase(PolyMeshBase&& other) : GeometryObject(other) {}
PolyMeshBase::~PolyMeshBase() = default;

PolyMeshBase& PolyMeshBase::operator=(PolyMeshBase const& other) {
    GeometryObject::operator=(other);
    return *this;
}

bool PolyMeshBase::get_polygon_normal_map_data(unsigned int const&, CoreArray<GMathVec3<float>>&,
                                               CoreArray<unsigned int>&) const {
    return false;
}

bool PolyMeshBase::get_polygon_uv_map_data(unsigned int const&, CoreArray<GMathVec3<float>>&,
                                           CoreArray<unsigned int>&, bool const&) const {
    return false;
}

bool PolyMeshBase::get_polygon_color_map_data(unsigned int const&,
                                              CoreArray<GMathVec4<unsigned char>>&,
                                              CoreArray<unsigned int>&, bool const&) const {
    return false;
}
