#pragma once

#include <platform/qz_app_base.h>
#include <platform/qz_core.h>
#include <platform/qz_ctx.h>
#include <platform/qz_geometry/export.h>
#include <platform/qz_geometry/geometry_fragment.h>
#include <platform/qz_geometry/geometry_frustum_ctx.h>
#include <platform/qz_geometry/geometry_point_cloud.h>
#include <platform/qz_geometry/geometry_raytrace_ctx.h>
#include <platform/qz_geometry/geometry_sample.h>
#include <platform/qz_gmath.h>
#include <platform/qz_resource.h>

#include <vector>

class GeometryProperty;

// A geometry made of primitives (triangles, quads, ...), as a renderer sees it: it bounds the
// primitives, intersects them with rays and frustums, and samples them where they were hit.
//
// Const operations may run on any number of threads at once. Indices (primitive, edge, shading
// group, map) must be below their counts unless said otherwise. An operation without a pure mark
// has a default that suits a geometry without that feature.
class QZ_GEOMETRY_EXPORT GeometryObject : public ResourceData {
  public:
    ~GeometryObject() override;

    static CoreClassInfo const& class_info();
    CoreClassInfo const& get_class_info() const override;

    // A new object that the caller deletes.
    virtual GeometryObject* get_copy() const = 0;

    // Bounds at rest, and at a time (default: at rest).
    virtual GMathBbox3<double> get_bbox() const = 0;
    virtual GMathBbox3<double> get_bbox_at(CtxEval const& ctx, double const& time) const;

    virtual CoreArray<CoreString> const& get_shading_group_names() const = 0;
    // At rest; inverted for a group without corners. Default: the bounds of the whole.
    virtual GMathBbox3<double> get_shading_group_bbox(unsigned int const& group) const;
    // The vertices of all primitives, in primitive order. Default: none.
    virtual void get_primitive_indices(CoreArray<unsigned int>& indices) const;

    // Default: does not move.
    virtual bool is_animated() const;
    // The points behind the geometry, or null (default).
    virtual GeometryPointCloud const* get_point_cloud() const;
    // Takes another version of the same points; false when it refuses (default). `progress` may be
    // null.
    virtual bool set_point_cloud(GeometryPointCloud const& point_cloud, AppProgressBar* progress);

    virtual unsigned int get_vertex_count() const;  // default: 0
    virtual unsigned int get_primitive_count() const = 0;
    virtual unsigned int get_primitive_edge_count(unsigned int const& primitive) const = 0;

    // Bounds of a primitive at rest, and at a time (default: at rest); in a linear space, the box
    // of the eight corners of the plain bounds after `space` (default).
    virtual void compute_primitive_bbox(CtxEval const& ctx, unsigned int const& primitive,
                                        GMathLinearSpace3<double> const& space,
                                        GMathBbox3<double>& bbox) const;
    virtual void compute_primitive_bbox(CtxEval const& ctx, unsigned int const& primitive,
                                        GMathBbox3<double>& bbox) const = 0;
    virtual void compute_primitive_bbox_at(CtxEval const& ctx, unsigned int const& primitive,
                                           double const& time,
                                           GMathLinearSpace3<double> const& space,
                                           GMathBbox3<double>& bbox) const;
    virtual void compute_primitive_bbox_at(CtxEval const& ctx, unsigned int const& primitive,
                                           double const& time, GMathBbox3<double>& bbox) const;
    // A space that bounds the primitive tightly. Default: the identity.
    virtual void compute_primitive_space(CtxEval const& ctx, unsigned int const& primitive,
                                         GMathLinearSpace3<double>& space) const;

    // Areas after an object-to-world matrix, in its units squared. Defaults: sums of primitives, 0.
    virtual double estimate_area(CtxEval const& ctx, GMathMatrix4x4<double> const& matrix) const;
    virtual double estimate_shading_group_area(CtxEval const& ctx, unsigned int const& group,
                                               GMathMatrix4x4<double> const& matrix) const;
    virtual double estimate_primitive_area(CtxEval const& ctx, unsigned int const& primitive,
                                           GMathMatrix4x4<double> const& matrix) const;

    virtual unsigned int get_primitive_shading_group_index(unsigned int const& primitive) const = 0;

    // Maps. Data operations give the values, and one index per primitive vertex (in the order of
    // `get_primitive_indices`); false for an index at or past the count, with the outputs
    // untouched. Defaults: no maps.
    virtual unsigned int get_uv_map_count() const;
    virtual CoreString const& get_uv_map_name(unsigned int const& map) const;
    virtual bool get_uv_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                                 CoreArray<unsigned int>& indices) const;
    // The value and its derivatives by s and t. Default: zeros.
    virtual void compute_fragment_uvw(CtxEval const& ctx, GeometryFragment const& fragment,
                                      unsigned int const& map, GMathVec3<double>& uvw,
                                      GMathVec3<double>& uvw_ds, GMathVec3<double>& uvw_dt) const;
    // The value at `t` in [0, 1] along an edge.
    virtual void compute_edge_uvw(CtxEval const& ctx, unsigned int const& primitive,
                                  unsigned int const& edge, unsigned int const& map,
                                  double const& t, GMathVec3<double>& uvw) const;
    virtual unsigned int get_color_map_count() const;
    virtual CoreString const& get_color_map_name(unsigned int const& map) const;
    virtual bool get_color_map_data(unsigned int const& map,
                                    CoreArray<GMathVec4<unsigned char>>& values,
                                    CoreArray<unsigned int>& indices) const;
    // Red, green, blue and alpha in [0, 1].
    virtual void compute_fragment_color(CtxEval const& ctx, GeometryFragment const& fragment,
                                        unsigned int const& map, GMathVec4<float>& color) const;
    virtual unsigned int get_normal_map_count() const;
    virtual CoreString const& get_normal_map_name(unsigned int const& map) const;
    virtual bool get_normal_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                                     CoreArray<unsigned int>& indices) const;
    // The map exists, and every corner of the primitive has a value in it.
    virtual bool is_primitive_uv_mapped(unsigned int const& primitive,
                                        unsigned int const& map) const;

    // Edges that are drawn, and shapes without curvature. Defaults: true.
    virtual bool is_primitive_edge_visible(unsigned int const& primitive,
                                           unsigned int const& edge) const;
    virtual bool is_geometry_linear() const;
    virtual bool is_primitive_linear(unsigned int const& primitive) const;
    virtual bool is_primitive_edge_linear(unsigned int const& primitive,
                                          unsigned int const& edge) const;

    // The surface at a fragment, or a point of the geometry; a fragment that names neither clears
    // the sample.
    virtual void compute_fragment_sample(CtxEval const& ctx, GeometryFragment const& fragment,
                                         GeometrySample& sample) const = 0;
    // A place at `t` along an edge. Default: clears the sample.
    virtual void compute_edge_sample(CtxEval const& ctx, unsigned int const& primitive,
                                     unsigned int const& edge, double const& t,
                                     GeometrySample& sample) const;

    // What a ray test costs, relative to a triangle's; above 0. Default: 1.
    virtual double get_primitive_intersection_cost(unsigned int const& primitive) const;
    // Tests or marks a primitive, by the mode of the context. Default: rejects it.
    virtual void intersect_primitive(CtxEval const& ctx, unsigned int const& primitive,
                                     GeometryFrustumCtx& frustum_ctx) const;
    // Pushes every hit of the active rays.
    virtual void intersect_primitive(CtxEval const& ctx, unsigned int const& primitive,
                                     GeometryRaytraceCtx& raytrace_ctx) const = 0;

    // The properties of this geometry, in the order of their adding. They are not owned, and must
    // live as long as they are listed. Copies list none, and an assignment empties the list.
    void add_property(GeometryProperty const& property);
    void clear_properties();
    unsigned int get_property_count() const {
        return static_cast<unsigned int>(m_properties.size());
    }
    // `index` must be below the count.
    GeometryProperty const& get_property(unsigned int const& index) const {
        return *m_properties[index];
    }
    // The first of that name, or null.
    GeometryProperty const* find_property(CoreString const& name) const;

  protected:
    GeometryObject();
    GeometryObject(GeometryObject const& other);
    GeometryObject& operator=(GeometryObject const& other);

  private:
    std::vector<GeometryProperty const*> m_properties;
};
