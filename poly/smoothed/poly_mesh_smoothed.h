#pragma once

#include <poly/mesh/poly_mesh.h>

// A view of a PolyMesh that shades with its own normals: smooth across edges below an angle, sharp
// across the others. Everything but the normals is answered by the mesh.
//
//     PolyMeshSmoothed smoothed;
//     smoothed.set(mesh, 30.0, 0xFFFFFFFF, nullptr);
//     smoothed.compute_fragment_sample(ctx, fragment, sample);
//
// The mesh is not owned: it must outlive the view, and the view must be set again after the mesh
// has changed. Queries other than of the mesh pointer and the index need a mesh. They may run on
// any number of threads at once, but not beside `set`.
//
// |                      | own normal map                 | normal map in use      | index      |
// |----------------------|--------------------------------|------------------------|------------|
// | default construction | new, empty                     | none                   | 0xFFFFFFFF |
// | copy construction    | new, a deep copy               | own, or the mesh's     | 0xFFFFFFFF |
// | assignment           | the source's, claimed by both  | the source's           | the source's |
// | destruction          | freed                          |                        |            |
//
// Deliberate: copy construction forgets the index, and assignment shares the map. After assigning,
// the caller must see to it that only one of the two is destroyed; what the target held is leaked.
class QZ_POLY_EXPORT PolyMeshSmoothed : public PolyMeshBase {
  public:
    PolyMeshSmoothed();
    PolyMeshSmoothed(PolyMeshSmoothed const& other);
    PolyMeshSmoothed& operator=(PolyMeshSmoothed const& other);
    ~PolyMeshSmoothed() override;

    static CoreClassInfo const& class_info();
    CoreClassInfo const& get_class_info() const override;
    static bool ___class_destructor__(void* object, bool const& is_array);

    // Smooths the normals of `mesh`: across edges of two faces that are wound alike and whose angle
    // is below `smoothing_angle`, in degrees from 0 to 180; 0 keeps every edge sharp. Normal map
    // number `normal_map_index` of the mesh is used instead when there is one. A mesh without
    // primitives is only remembered. Vertices and corners number at most 2^32 - 2 in all.
    // `progress` may be null.
    void set(PolyMesh const& mesh, double const& smoothing_angle,
             unsigned int const& normal_map_index, AppProgressBar* progress);

    PolyMesh const* get_poly_mesh() const { return m_mesh; }  // null before `set`
    unsigned int const& get_normal_map_index() const { return m_normal_map_index; }
    // The map that the queries use: this view's own or one of the mesh's; null before `set`. After
    // a mesh without primitives it is still that of the mesh before, which may be gone.
    PolyMeshNormalMap const* get_current_normal_map() const { return m_current_normal_map; }

    // The edges of primitives that are hard at an angle: a byte per primitive, whose bit e stands
    // for edge e. The diagonal of a quad is none. For diagnosis; the old storage of `edges` is
    // freed first.
    static void find_hard_edges(PolyMesh const& mesh, double const& smoothing_angle,
                                CoreArray<unsigned char>& edges);

    // Writes the 3 or 4 corner positions of a primitive at a time, and returns how many; 0 for a
    // primitive at or past the count. `positions` has room for 4.
    unsigned int get_primitive_vertices(CtxEval const& ctx,
                                        GeometryPrimitiveDescriptor const& descriptor,
                                        GMathVec3<double>* positions) const;
    // A breakdown of `get_memory_size` to the log, at level 3.
    void print_stats() const;

    // The view and its own map; the mesh is not counted.
    unsigned long long get_memory_size() const override;

    // Answered from the own map whatever the index, unless one of the mesh's is in use.
    unsigned int get_normal_map_count() const override;
    CoreString const& get_normal_map_name(unsigned int const& map) const override;
    bool get_normal_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                             CoreArray<unsigned int>& indices) const override;
    bool get_polygon_normal_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                                     CoreArray<unsigned int>& indices) const override;
    // Shades with the normals of the map in use. Corners that it leaves flat take the normal of
    // their triangle.
    void compute_fragment_sample(CtxEval const& ctx, GeometryFragment const& fragment,
                                 GeometrySample& sample) const override;

    // GeometryObject

    // Null when there is no memory for the view itself; running out in its arrays ends the program,
    // as everywhere.
    PolyMeshSmoothed* get_copy() const override;
    GMathBbox3<double> get_bbox() const override;
    GMathBbox3<double> get_bbox_at(CtxEval const& ctx, double const& time) const override;
    CoreArray<CoreString> const& get_shading_group_names() const override;
    GMathBbox3<double> get_shading_group_bbox(unsigned int const& group) const override;
    void get_primitive_indices(CoreArray<unsigned int>& indices) const override;
    bool is_animated() const override;
    GeometryPointCloud const* get_point_cloud() const override;
    unsigned int get_vertex_count() const override;
    unsigned int get_primitive_count() const override;
    unsigned int get_primitive_edge_count(unsigned int const& primitive) const override;
    using PolyMeshBase::compute_primitive_bbox;
    void compute_primitive_bbox(CtxEval const& ctx, unsigned int const& primitive,
                                GMathBbox3<double>& bbox) const override;
    using PolyMeshBase::compute_primitive_bbox_at;
    void compute_primitive_bbox_at(CtxEval const& ctx, unsigned int const& primitive,
                                   double const& time, GMathBbox3<double>& bbox) const override;
    double estimate_area(CtxEval const& ctx, GMathMatrix4x4<double> const& matrix) const override;
    double estimate_shading_group_area(CtxEval const& ctx, unsigned int const& group,
                                       GMathMatrix4x4<double> const& matrix) const override;
    double estimate_primitive_area(CtxEval const& ctx, unsigned int const& primitive,
                                   GMathMatrix4x4<double> const& matrix) const override;
    unsigned int get_primitive_shading_group_index(unsigned int const& primitive) const override;
    unsigned int get_uv_map_count() const override;
    CoreString const& get_uv_map_name(unsigned int const& map) const override;
    bool get_uv_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                         CoreArray<unsigned int>& indices) const override;
    void compute_fragment_uvw(CtxEval const& ctx, GeometryFragment const& fragment,
                              unsigned int const& map, GMathVec3<double>& uvw,
                              GMathVec3<double>& uvw_ds, GMathVec3<double>& uvw_dt) const override;
    void compute_edge_uvw(CtxEval const& ctx, unsigned int const& primitive,
                          unsigned int const& edge, unsigned int const& map, double const& t,
                          GMathVec3<double>& uvw) const override;
    unsigned int get_color_map_count() const override;
    CoreString const& get_color_map_name(unsigned int const& map) const override;
    bool get_color_map_data(unsigned int const& map, CoreArray<GMathVec4<unsigned char>>& values,
                            CoreArray<unsigned int>& indices) const override;
    void compute_fragment_color(CtxEval const& ctx, GeometryFragment const& fragment,
                                unsigned int const& map, GMathVec4<float>& color) const override;
    bool is_primitive_uv_mapped(unsigned int const& primitive,
                                unsigned int const& map) const override;
    bool is_primitive_edge_visible(unsigned int const& primitive,
                                   unsigned int const& edge) const override;
    bool is_geometry_linear() const override;
    bool is_primitive_linear(unsigned int const& primitive) const override;
    bool is_primitive_edge_linear(unsigned int const& primitive,
                                  unsigned int const& edge) const override;
    void intersect_primitive(CtxEval const& ctx, unsigned int const& primitive,
                             GeometryFrustumCtx& frustum_ctx) const override;
    void intersect_primitive(CtxEval const& ctx, unsigned int const& primitive,
                             GeometryRaytraceCtx& raytrace_ctx) const override;

    // PolyMeshBase

    bool get_polygon_uv_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                                 CoreArray<unsigned int>& indices,
                                 bool const& always_indices) const override;
    bool get_polygon_color_map_data(unsigned int const& map,
                                    CoreArray<GMathVec4<unsigned char>>& values,
                                    CoreArray<unsigned int>& indices,
                                    bool const& always_indices) const override;

  private:
    // A copy that takes `normal_map` as its own map, a copy of that of `other`.
    PolyMeshSmoothed(PolyMeshSmoothed const& other, PolyMeshNormalMap* normal_map);

    bool uses_own_map() const { return m_current_normal_map == m_normal_map; }
    bool is_own_map_of_mesh() const;
    GMathVec3<float> get_polygon_vertex_normal(unsigned int const& corner,
                                               GMathVec3<float> const& face_normal) const;

    PolyMesh const* m_mesh = nullptr;
    PolyMeshNormalMap* m_normal_map;
    PolyMeshNormalMap const* m_current_normal_map = nullptr;
    unsigned int m_normal_map_index = 0xFFFFFFFFu;
};
