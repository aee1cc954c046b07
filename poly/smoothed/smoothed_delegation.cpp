#include <poly/smoothed/poly_mesh_smoothed.h>

// What the mesh answers.

GMathBbox3<double> PolyMeshSmoothed::get_bbox() const { return m_mesh->get_bbox(); }

GMathBbox3<double> PolyMeshSmoothed::get_bbox_at(CtxEval const& ctx, double const& time) const {
    return m_mesh->get_bbox_at(ctx, time);
}

CoreArray<CoreString> const& PolyMeshSmoothed::get_shading_group_names() const {
    return m_mesh->get_shading_group_names();
}

GMathBbox3<double> PolyMeshSmoothed::get_shading_group_bbox(unsigned int const& group) const {
    return m_mesh->get_shading_group_bbox(group);
}

void PolyMeshSmoothed::get_primitive_indices(CoreArray<unsigned int>& indices) const {
    m_mesh->get_primitive_indices(indices);
}

bool PolyMeshSmoothed::is_animated() const { return m_mesh->is_animated(); }

GeometryPointCloud const* PolyMeshSmoothed::get_point_cloud() const {
    return m_mesh->get_point_cloud();
}

unsigned int PolyMeshSmoothed::get_vertex_count() const { return m_mesh->get_vertex_count(); }

unsigned int PolyMeshSmoothed::get_primitive_count() const { return m_mesh->get_primitive_count(); }

unsigned int PolyMeshSmoothed::get_primitive_edge_count(unsigned int const& primitive) const {
    return m_mesh->get_primitive_edge_count(primitive);
}

void PolyMeshSmoothed::compute_primitive_bbox(CtxEval const& ctx, unsigned int const& primitive,
                                              GMathBbox3<double>& bbox) const {
    m_mesh->compute_primitive_bbox(ctx, primitive, bbox);
}

void PolyMeshSmoothed::compute_primitive_bbox_at(CtxEval const& ctx, unsigned int const& primitive,
                                                 double const& time,
                                                 GMathBbox3<double>& bbox) const {
    m_mesh->compute_primitive_bbox_at(ctx, primitive, time, bbox);
}

double PolyMeshSmoothed::estimate_area(CtxEval const& ctx,
                                       GMathMatrix4x4<double> const& matrix) const {
    return m_mesh->estimate_area(ctx, matrix);
}

double PolyMeshSmoothed::estimate_shading_group_area(CtxEval const& ctx, unsigned int const& group,
                                                     GMathMatrix4x4<double> const& matrix) const {
    return m_mesh->estimate_shading_group_area(ctx, group, matrix);
}

double PolyMeshSmoothed::estimate_primitive_area(CtxEval const& ctx, unsigned int const& primitive,
                                                 GMathMatrix4x4<double> const& matrix) const {
    return m_mesh->estimate_primitive_area(ctx, primitive, matrix);
}

unsigned int
PolyMeshSmoothed::get_primitive_shading_group_index(unsigned int const& primitive) const {
    return m_mesh->get_primitive_shading_group_index(primitive);
}

unsigned int PolyMeshSmoothed::get_uv_map_count() const { return m_mesh->get_uv_map_count(); }

CoreString const& PolyMeshSmoothed::get_uv_map_name(unsigned int const& map) const {
    return m_mesh->get_uv_map_name(map);
}

bool PolyMeshSmoothed::get_uv_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                                       CoreArray<unsigned int>& indices) const {
    return m_mesh->get_uv_map_data(map, values, indices);
}

bool PolyMeshSmoothed::get_polygon_uv_map_data(unsigned int const& map,
                                               CoreArray<GMathVec3<float>>& values,
                                               CoreArray<unsigned int>& indices,
                                               bool const& always_indices) const {
    return m_mesh->get_polygon_uv_map_data(map, values, indices, always_indices);
}

void PolyMeshSmoothed::compute_fragment_uvw(CtxEval const& ctx, GeometryFragment const& fragment,
                                            unsigned int const& map, GMathVec3<double>& uvw,
                                            GMathVec3<double>& uvw_ds,
                                            GMathVec3<double>& uvw_dt) const {
    m_mesh->compute_fragment_uvw(ctx, fragment, map, uvw, uvw_ds, uvw_dt);
}

void PolyMeshSmoothed::compute_edge_uvw(CtxEval const& ctx, unsigned int const& primitive,
                                        unsigned int const& edge, unsigned int const& map,
                                        double const& t, GMathVec3<double>& uvw) const {
    m_mesh->compute_edge_uvw(ctx, primitive, edge, map, t, uvw);
}

unsigned int PolyMeshSmoothed::get_color_map_count() const { return m_mesh->get_color_map_count(); }

CoreString const& PolyMeshSmoothed::get_color_map_name(unsigned int const& map) const {
    return m_mesh->get_color_map_name(map);
}

bool PolyMeshSmoothed::get_color_map_data(unsigned int const& map,
                                          CoreArray<GMathVec4<unsigned char>>& values,
                                          CoreArray<unsigned int>& indices) const {
    return m_mesh->get_color_map_data(map, values, indices);
}

bool PolyMeshSmoothed::get_polygon_color_map_data(unsigned int const& map,
                                                  CoreArray<GMathVec4<unsigned char>>& values,
                                                  CoreArray<unsigned int>& indices,
                                                  bool const& always_indices) const {
    return m_mesh->get_polygon_color_map_data(map, values, indices, always_indices);
}

void PolyMeshSmoothed::compute_fragment_color(CtxEval const& ctx, GeometryFragment const& fragment,
                                              unsigned int const& map,
                                              GMathVec4<float>& color) const {
    m_mesh->compute_fragment_color(ctx, fragment, map, color);
}

bool PolyMeshSmoothed::is_primitive_uv_mapped(unsigned int const& primitive,
                                              unsigned int const& map) const {
    return m_mesh->is_primitive_uv_mapped(primitive, map);
}

bool PolyMeshSmoothed::is_primitive_edge_visible(unsigned int const& primitive,
                                                 unsigned int const& edge) const {
    return m_mesh->is_primitive_edge_visible(primitive, edge);
}

bool PolyMeshSmoothed::is_geometry_linear() const { return m_mesh->is_geometry_linear(); }

bool PolyMeshSmoothed::is_primitive_linear(unsigned int const& primitive) const {
    return m_mesh->is_primitive_linear(primitive);
}

bool PolyMeshSmoothed::is_primitive_edge_linear(unsigned int const& primitive,
                                                unsigned int const& edge) const {
    return m_mesh->is_primitive_edge_linear(primitive, edge);
}

void PolyMeshSmoothed::intersect_primitive(CtxEval const& ctx, unsigned int const& primitive,
                                           GeometryFrustumCtx& frustum_ctx) const {
    m_mesh->intersect_primitive(ctx, primitive, frustum_ctx);
}

void PolyMeshSmoothed::intersect_primitive(CtxEval const& ctx, unsigned int const& primitive,
                                           GeometryRaytraceCtx& raytrace_ctx) const {
    m_mesh->intersect_primitive(ctx, primitive, raytrace_ctx);
}
