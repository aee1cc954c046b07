#include <poly/mesh/poly_mesh.h>
#include <poly/property/poly_mesh_property.h>
#include <poly/smoothed/poly_mesh_smoothed.h>

CoreClassInfo const& PolyMeshBase::class_info() {
    static CoreClassInfo const& info = CoreClassInfo::new_class(
        "PolyMeshBase", ___class_destructor__, &GeometryObject::class_info(), nullptr);
    return info;
}

CoreClassInfo const& PolyMeshBase::get_class_info() const { return class_info(); }

bool PolyMeshBase::___class_destructor__(void* object, bool const& is_array) {
    return core_destroy<PolyMeshBase>(object, is_array);
}

CoreClassInfo const& PolyMesh::class_info() {
    static CoreClassInfo const& info = CoreClassInfo::new_class(
        "PolyMesh", ___class_destructor__, &PolyMeshBase::class_info(), nullptr);
    return info;
}

CoreClassInfo const& PolyMesh::get_class_info() const { return class_info(); }

bool PolyMesh::___class_destructor__(void* object, bool const& is_array) {
    return core_destroy<PolyMesh>(object, is_array);
}

CoreClassInfo const& PolyMeshProperty::class_info() {
    static CoreClassInfo const& info = CoreClassInfo::new_class(
        "PolyMeshProperty", ___class_destructor__, &GeometryProperty::class_info(), nullptr);
    return info;
}

CoreClassInfo const& PolyMeshProperty::get_class_info() const { return class_info(); }

bool PolyMeshProperty::___class_destructor__(void* object, bool const& is_array) {
    return core_destroy<PolyMeshProperty>(object, is_array);
}

CoreClassInfo const& PolyMeshSmoothed::class_info() {
    static CoreClassInfo const& info = CoreClassInfo::new_class(
        "PolyMeshSmoothed", ___class_destructor__, &PolyMeshBase::class_info(), nullptr);
    return info;
}

CoreClassInfo const& PolyMeshSmoothed::get_class_info() const { return class_info(); }

bool PolyMeshSmoothed::___class_destructor__(void* object, bool const& is_array) {
    return core_destroy<PolyMeshSmoothed>(object, is_array);
}
