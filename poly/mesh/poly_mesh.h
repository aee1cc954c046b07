#pragma once

#include <poly/mesh/poly_mesh_base.h>
#include <poly/mesh/poly_mesh_records.h>

// A polygon mesh: vertices and polygons of any corner count, turned into triangles and quads that a
// renderer bounds, intersects and samples.
//
//     PolyMesh mesh;
//     mesh.set(positions, {}, indices, counts, groups, names, {}, {}, {}, true, nullptr);
//     GeometryRay ray;
//     GeometryHit hit;
//     GeometryRaytraceCtx rays(&ray, &hit, 1);
//     mesh.intersect_primitive(CtxEval(), 0, rays);
//
// Threads: const operations run on any number of threads at once and take no lock, but for the
// first use of a deformation sample. Filling and changing a mesh is for one thread alone.
//
// Copies share the topology and the geometry record until one of them writes:
//
// |                      | point cloud | records      | who frees the records               |
// |----------------------|-------------|--------------|-------------------------------------|
// | default construction | own         | own, empty   | the mesh                            |
// | copy construction    | shared      | the source's | the source                          |
// | assignment           | shared      | the source's | both claim them; the old ones leak  |
// | destruction          | released    |              | the mesh, where it owns them        |
//
// So a copy must not outlive its source unless it has written since (`set_creases` and its like
// give it its own topology, `set` both records). Assignment is deliberately asymmetric: after
// assigning from a mesh that owns its records, the caller must see to it that only one of the two
// is destroyed as an owner, and that the target held nothing before.
class QZ_POLY_EXPORT PolyMesh : public PolyMeshBase {
  public:
    using CompressionMode = PolyMeshTopology::CompressionMode;

    PolyMesh();
    PolyMesh(PolyMesh const& other);
    PolyMesh& operator=(PolyMesh const& other);
    ~PolyMesh() override;

    static CoreClassInfo const& class_info();
    CoreClassInfo const& get_class_info() const override;
    static bool ___class_destructor__(void* object, bool const& is_array);

    // Filling

    // Replaces everything but the creases and the compression mode of a topology that is the mesh's
    // own, its properties, and what `get_import_data` tells of a file. Arrays are copied.
    // - positions: one per vertex; may hold NaN and infinities, which the boxes of the mesh and of
    //   groups leave out (those of primitives do not);
    // - velocities: one per vertex, or they are ignored; either way they enter the key;
    // - polygon_vertex_indices: of all corners, polygon after polygon, each below the vertex count;
    // - polygon_vertex_count: corners of each polygon, adding up to at most the corners given;
    // - polygon_shading_groups: one per polygon (or more); groups without a name are built as any
    //   other but left out of the sums by group;
    // - maps: kept when they have a value per vertex, or values and an index per corner;
    // - check_quads: cut 4-gons that are not convex, instead of keeping every 4-gon as a quad;
    // - progress: may be null.
    // Polygons of fewer than 3 corners give no primitive. Refused at level 2, with the mesh left
    // empty: a corner whose vertex is not there, counts that add up to more corners than are given,
    // fewer groups than polygons, and polygons that would have more than 2^32 - 2 corners of
    // triangles if they were all cut.
    void set(CoreBasicArray<GMathVec3<float>> const& positions,
             CoreBasicArray<GMathVec3<float>> const& velocities,
             CoreBasicArray<unsigned int> const& polygon_vertex_indices,
             CoreBasicArray<unsigned int> const& polygon_vertex_count,
             CoreBasicArray<unsigned int> const& polygon_shading_groups,
             CoreBasicArray<CoreString> const& shading_group_names,
             CoreBasicArray<GeometryUvMap> const& uv_maps,
             CoreBasicArray<GeometryNormalMap> const& normal_maps,
             CoreBasicArray<GeometryColorMap> const& color_maps, bool const& check_quads,
             AppProgressBar* progress);

    // Fills the mesh from a LightWave object or a Wavefront OBJ file, told apart by content; what
    // comes through a pipe is taken for an OBJ file. False when the file is missing, cannot be
    // read, has no vertices or too many corners (as in `set`), or when a stop is requested of
    // `load_progress`; the reason is logged at level 2 and the mesh is untouched.
    // - item_name: the layers to load of a LightWave object; empty for all;
    // - time: not used;
    // - load_progress, build_progress: may be null. The first is finished when the file has been
    //   read, whatever it held; the second is then started, and no more. Deliberate: 4-gons that
    //   are not convex are cut only when `build_progress` is given.
    // The key covers positions and polygons alone. The mesh has no velocities.
    bool import_from_file(CoreString const& path, CoreString const& item_name, double const& time,
                          AppProgressBar* load_progress, AppProgressBar* build_progress);

    // Polygons

    unsigned int get_polygon_count() const;
    unsigned int get_polygon_index_count() const;  // corners of all polygons
    // Copies; the old storage of the output is freed first.
    void get_polygon_vertex_count(CoreArray<unsigned int>& counts) const;
    void get_polygon_vertex_indices(CoreArray<unsigned int>& indices) const;
    void get_polygon_shading_groups(CoreArray<unsigned int>& groups) const;

    // Creases: two vertices an edge and a sharpness each, kept unchecked, not in the key.
    void set_creases(CoreArray<int> const& indices, CoreArray<float> const& sharpnesses);
    CoreArray<int> const& get_polygon_creases_indice() const;
    void get_polygon_creases_indice(CoreArray<int>& indices) const;
    CoreArray<float> const& get_polygon_creases_sharpnesses() const;
    void get_polygon_creases_sharpnesses(CoreArray<float>& sharpnesses) const;

    // Primitives

    unsigned int get_primitive_index_count() const;  // corners of all primitives
    unsigned int get_primitive_polygon_id(unsigned int const& primitive) const;
    // `edge` is 0 to 3. Does not change the key. A mesh that shared its topology loses its creases
    // here and in `set_uv_map_compression_mode`, deliberately.
    void set_primitive_edge_visibility(unsigned int const& primitive, unsigned int const& edge,
                                       bool const& visible);

    // Maps

    // Replaces all normal maps. Of a map's values, at most 2^30 are kept beside the normals of the
    // vertices; corners beyond are left flat. `progress` may be null.
    void set_normal_maps(CoreBasicArray<GeometryNormalMap> const& normal_maps,
                         AppProgressBar* progress);
    // Applies to uv maps assigned from now on; those that are there stay as they are.
    void set_uv_map_compression_mode(CompressionMode const& mode);
    CompressionMode const& get_uv_map_compression_mode() const;

    // The records themselves, for diagnosis: valid until the mesh is changed.
    PolyMeshTopology const& get_topology() const { return *m_topology; }
    PolyMeshGeometry const& get_geometry() const { return *m_geometry; }

    // A breakdown of `get_memory_size` to the log, at level 3.
    void print_stats() const;

    // ResourceData

    unsigned long long get_memory_size() const override;
    // Made when the mesh was filled, from the positions, velocities and polygons alone: meshes that
    // differ only in names, maps, creases or edge visibility share a key. A mesh read back by
    // `deserialize` has another key than `set` gave it, since its block holds no shading groups.
    Core128BitHashKey get_hash_key() const override;
    bool is_serializable() const override;
    // A block of positions, velocities and polygons; release it with `free`. Groups, maps, creases
    // and edge visibility are not kept. Blocks of 4 GiB or more cannot be read back, which is
    // logged at level 2. Null, with a size of 0, when there is no memory for it.
    unsigned char* serialize(unsigned long long& size) const override;
    // Replaces the mesh by a block's: everything in one group "default", 4-gons that are not convex
    // cut, no maps. Creases and the compression mode of a mesh that owns its topology stay. False,
    // with the reason at level 2 and the mesh unchanged, for a block that contradicts itself.
    bool deserialize(unsigned char const* block, unsigned long long const& size) override;

    // GeometryObject

    PolyMesh* get_copy() const override;
    GMathBbox3<double> get_bbox() const override;
    GMathBbox3<double> get_bbox_at(CtxEval const& ctx, double const& time) const override;
    CoreArray<CoreString> const& get_shading_group_names() const override;
    GMathBbox3<double> get_shading_group_bbox(unsigned int const& group) const override;
    void get_primitive_indices(CoreArray<unsigned int>& indices) const override;
    bool is_animated() const override;
    GeometryPointCloud const* get_point_cloud() const override;
    // Takes other positions of this mesh's own points: a cloud copied from this mesh's and changed.
    // False for any other cloud. Normals and bounds follow; normal maps are dropped.
    bool set_point_cloud(GeometryPointCloud const& point_cloud, AppProgressBar* progress) override;
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
    unsigned int get_normal_map_count() const override;
    CoreString const& get_normal_map_name(unsigned int const& map) const override;
    bool get_normal_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                             CoreArray<unsigned int>& indices) const override;
    bool is_primitive_uv_mapped(unsigned int const& primitive,
                                unsigned int const& map) const override;
    bool is_primitive_edge_visible(unsigned int const& primitive,
                                   unsigned int const& edge) const override;
    bool is_geometry_linear() const override;
    bool is_primitive_linear(unsigned int const& primitive) const override;
    bool is_primitive_edge_linear(unsigned int const& primitive,
                                  unsigned int const& edge) const override;
    void compute_fragment_sample(CtxEval const& ctx, GeometryFragment const& fragment,
                                 GeometrySample& sample) const override;
    // Ignores motion.
    void intersect_primitive(CtxEval const& ctx, unsigned int const& primitive,
                             GeometryFrustumCtx& frustum_ctx) const override;
    void intersect_primitive(CtxEval const& ctx, unsigned int const& primitive,
                             GeometryRaytraceCtx& raytrace_ctx) const override;

    // PolyMeshBase

    bool get_polygon_normal_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                                     CoreArray<unsigned int>& indices) const override;
    bool get_polygon_uv_map_data(unsigned int const& map, CoreArray<GMathVec3<float>>& values,
                                 CoreArray<unsigned int>& indices,
                                 bool const& always_indices) const override;
    bool get_polygon_color_map_data(unsigned int const& map,
                                    CoreArray<GMathVec4<unsigned char>>& values,
                                    CoreArray<unsigned int>& indices,
                                    bool const& always_indices) const override;

  private:
    enum Ownership : unsigned int {
        OWNS_TOPOLOGY = 1u << 0,
        OWNS_GEOMETRY = 1u << 1,
    };

    // The gates to writing. `own_new` puts an empty record in place of a shared one, `own_copy` a
    // copy of it; either does nothing when the mesh owns its record.
    void own_new_records();
    void own_topology_copy();
    void own_geometry_copy();

    // The steps of filling. `install` keeps what is given, in records of this mesh's own: the point
    // cloud, the polygons, and the uv and color maps. What `set` then derives with progress tasks
    // around it, `rebuild` derives without.
    void install(CoreBasicArray<GMathVec3<float>> const& positions,
                 CoreBasicArray<GMathVec3<float>> const& velocities,
                 PolyMeshPolygons const& polygons,
                 CoreBasicArray<CoreString> const& shading_group_names,
                 CoreBasicArray<GeometryUvMap> const& uv_maps,
                 CoreBasicArray<GeometryColorMap> const& color_maps);
    void rebuild(PolyMeshPolygons const& polygons, bool const& check_quads,
                 CoreBasicArray<GeometryNormalMap> const& normal_maps);
    void assign_uv_maps(CoreBasicArray<GeometryUvMap> const& uv_maps,
                        unsigned int const& vertex_count);
    void assign_color_maps(CoreBasicArray<GeometryColorMap> const& color_maps,
                           unsigned int const& vertex_count);
    void build_primitives(PolyMeshPolygons const& polygons, bool const& check_quads,
                          AppProgressBar* progress);
    void update_normals(AppProgressBar* progress);
    void build_support_info(AppProgressBar* progress);
    void update_bbox(AppProgressBar* progress);

    GeometryPointCloud m_point_cloud;
    PolyMeshTopology* m_topology;
    PolyMeshGeometry* m_geometry;
    Core128BitHashKey m_hash_key;
    unsigned int m_ownership;
};
