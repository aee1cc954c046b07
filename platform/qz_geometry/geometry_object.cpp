#include <platform/qz_geometry/geometry_object.h>

#include <platform/qz_geometry/geometry_property.h>

namespace {

CoreString const no_name;

// The box of the eight corners of `bbox` after `space`; an empty box stays as it is.
GMathBbox3<double> get_transformed_box(GMathBbox3<double> const& bbox,
                                       GMathLinearSpace3<double> const& space) {
    if (bbox.is_empty()) {
        return bbox;
    }
    GMathBbox3<double> box = GMathBbox3<double>::get_inverted();
    for (unsigned int corner = 0; corner < 8; ++corner) {
        box.extend(space.transform({(corner & 1) != 0 ? bbox.maximum.x : bbox.minimum.x,
                                    (corner & 2) != 0 ? bbox.maximum.y : bbox.minimum.y,
                                    (corner & 4) != 0 ? bbox.maximum.z : bbox.minimum.z}));
    }
    return box;
}

}  // namespace

GeometryObject::GeometryObject() = default;
GeometryObject::GeometryObject(GeometryObject const& other) : ResourceData(other) {}
GeometryObject::~GeometryObject() = default;

GeometryObject& GeometryObject::operator=(GeometryObject const& other) {
    if (this != &other) {
        ResourceData::operator=(other);
        clear_properties();
    }
    return *this;
}

CoreClassInfo const& GeometryObject::class_info() {
    static CoreClassInfo const& info = CoreClassInfo::new_class(
        "GeometryObject", core_destroy<GeometryObject>, &ResourceData::class_info(), nullptr);
    return info;
}

CoreClassInfo const& GeometryObject::get_class_info() const { return class_info(); }

GMathBbox3<double> GeometryObject::get_bbox_at(CtxEval const&, double const&) const {
    return get_bbox();
}

GMathBbox3<double> GeometryObject::get_shading_group_bbox(unsigned int const&) const {
    return get_bbox();
}

void GeometryObject::get_primitive_indices(CoreArray<unsigned int>& indices) const {
    indices.clear();
}

bool GeometryObject::is_animated() const { return false; }

GeometryPointCloud const* GeometryObject::get_point_cloud() const { return nullptr; }

bool GeometryObject::set_point_cloud(GeometryPointCloud const&, AppProgressBar*) { return false; }

unsigned int GeometryObject::get_vertex_count() const { return 0; }

void GeometryObject::compute_primitive_bbox(CtxEval const& ctx, unsigned int const& primitive,
                                            GMathLinearSpace3<double> const& space,
                                            GMathBbox3<double>& bbox) const {
    compute_primitive_bbox(ctx, primitive, bbox);
    bbox = get_transformed_box(bbox, space);
}

void GeometryObject::compute_primitive_bbox_at(CtxEval const& ctx, unsigned int const& primitive,
                                               double const& time,
                                               GMathLinearSpace3<double> const& space,
                                               GMathBbox3<double>& bbox) const {
    compute_primitive_bbox_at(ctx, primitive, time, bbox);
    bbox = get_transformed_box(bbox, space);
}

void GeometryObject::compute_primitive_bbox_at(CtxEval const& ctx, unsigned int const& primitive,
                                               double const&, GMathBbox3<double>& bbox) const {
    compute_primitive_bbox(ctx, primitive, bbox);
}

void GeometryObject::compute_primitive_space(CtxEval const&, unsigned int const&,
                                             GMathLinearSpace3<double>& space) const {
    space = GMathLinearSpace3<double>::get_identity();
}

double GeometryObject::estimate_area(CtxEval const& ctx,
                                     GMathMatrix4x4<double> const& matrix) const {
    double area = 0.0;
    for (unsigned int primitive = 0; primitive < get_primitive_count(); ++primitive) {
        area += estimate_primitive_area(ctx, primitive, matrix);
    }
    return area;
}

double GeometryObject::estimate_shading_group_area(CtxEval const& ctx, unsigned int const& group,
                                                   GMathMatrix4x4<double> const& matrix) const {
    double area = 0.0;
    for (unsigned int primitive = 0; primitive < get_primitive_count(); ++primitive) {
        if (get_primitive_shading_group_index(primitive) == group) {
            area += estimate_primitive_area(ctx, primitive, matrix);
        }
    }
    return area;
}

double GeometryObject::estimate_primitive_area(CtxEval const&, unsigned int const&,
                                               GMathMatrix4x4<double> const&) const {
    return 0.0;
}

unsigned int GeometryObject::get_uv_map_count() const { return 0; }

CoreString const& GeometryObject::get_uv_map_name(unsigned int const&) const { return no_name; }

bool GeometryObject::get_uv_map_data(unsigned int const&, CoreArray<GMathVec3<float>>&,
                                     CoreArray<unsigned int>&) const {
    return false;
}

void GeometryObject::compute_fragment_uvw(CtxEval const&, GeometryFragment const&,
                                          unsigned int const&, GMathVec3<double>& uvw,
                                          GMathVec3<double>& uvw_ds,
                                          GMathVec3<double>& uvw_dt) const {
    uvw = uvw_ds = uvw_dt = GMathVec3<double>(0, 0, 0);
}

void GeometryObject::compute_edge_uvw(CtxEval const&, unsigned int const&, unsigned int const&,
                                      unsigned int const&, double const&,
                                      GMathVec3<double>& uvw) const {
    uvw = GMathVec3<double>(0, 0, 0);
}

unsigned int GeometryObject::get_color_map_count() const { return 0; }

CoreString const& GeometryObject::get_color_map_name(unsigned int const&) const { return no_name; }

bool GeometryObject::get_color_map_data(unsigned int const&, CoreArray<GMathVec4<unsigned char>>&,
                                        CoreArray<unsigned int>&) const {
    return false;
}

void GeometryObject::compute_fragment_color(CtxEval const&, GeometryFragment const&,
                                            unsigned int const&, GMathVec4<float>& color) const {
    color = {0, 0, 0, 0};
}

unsigned int GeometryObject::get_normal_map_count() const { return 0; }

CoreString const& GeometryObject::get_normal_map_name(unsigned int const&) const { return no_name; }

bool GeometryObject::get_normal_map_data(unsigned int const&, CoreArray<GMathVec3<float>>&,
                                         CoreArray<unsigned int>&) const {
    return false;
}

bool GeometryObject::is_primitive_uv_mapped(unsigned int const&, unsigned int const&) const {
    return false;
}

bool GeometryObject::is_primitive_edge_visible(unsigned int const&, unsigned int const&) const {
    return true;
}

bool GeometryObject::is_geometry_linear() const { return true; }

bool GeometryObject::is_primitive_linear(unsigned int const&) const { return true; }

bool GeometryObject::is_primitive_edge_linear(unsigned int const&, unsigned int const&) const {
    return true;
}

void GeometryObject::compute_edge_sample(CtxEval const&, unsigned int const&, unsigned int const&,
                                         double const&, GeometrySample& sample) const {
    sample.clear();
}

double GeometryObject::get_primitive_intersection_cost(unsigned int const&) const { return 1.0; }

void GeometryObject::intersect_primitive(CtxEval const&, unsigned int const&,
                                         GeometryFrustumCtx& frustum_ctx) const {
    frustum_ctx.is_rejected = true;
}

void GeometryObject::add_property(GeometryProperty const& property) {
    m_properties.push_back(&property);
}

void GeometryObject::clear_properties() { m_properties.clear(); }

GeometryProperty const* GeometryObject::find_property(CoreString const& name) const {
    for (GeometryProperty const* const property : m_properties) {
        if (property->get_name() == name) {
            return property;
        }
    }
    return nullptr;
}
