#pragma once

#include <bench/bench.h>
#include <bench/make_inputs.h>
#include <bench/polygon_batch.h>

#include <poly/mesh/poly_mesh.h>

#include <cstddef>
#include <memory>
#include <span>

// The peers: a file each under bench/peers, which is left out where the peer is not installed. So
// ask first: what stands behind `if constexpr (has_tinyobjloader)` needs no definition then.

inline constexpr bool has_assimp = BENCH_HAS_ASSIMP;
inline constexpr bool has_cgal = BENCH_HAS_CGAL;
inline constexpr bool has_embree = BENCH_HAS_EMBREE;
inline constexpr bool has_meshoptimizer = BENCH_HAS_MESHOPTIMIZER;
inline constexpr bool has_openmesh = BENCH_HAS_OPENMESH;
inline constexpr bool has_tinyobjloader = BENCH_HAS_TINYOBJLOADER;
inline constexpr bool has_xxhash = BENCH_HAS_XXHASH;

// Works, with what their last call found. Meshes that they take must outlive them.
struct MeshWork {
    BenchWork work;
    std::function<BenchMesh()> get_mesh;
};
struct NormalsWork {
    BenchWork work;
    std::function<std::vector<GMathVec3<float>>()> get_normals;
};
struct NeighboursWork {
    BenchWork work;
    std::function<unsigned long long()> count_borders;  // edges of one face
};
struct TrianglesWork {
    BenchWork work;
    std::function<std::size_t()> count_triangles;
};

// An OBJ file to arrays; polygons stay as they are.
MeshWork make_tinyobjloader_reader(std::string const& path);

// A file to a mesh of triangles with normals, whose equal vertices are one.
TrianglesWork make_assimp_import(std::string const& path);

// Vertex normals from face normals.
NormalsWork make_openmesh_normals(BenchMesh const& mesh);
// From polygons, or from a mesh of its own that is built before.
NormalsWork make_cgal_normals(BenchMesh const& mesh, bool const& builds_mesh);
// By corner, smooth across edges below an angle, in degrees; from an OBJ file.
NormalsWork make_assimp_smoothing(std::string const& path, float const& angle);

// The mesh with its connections, from arrays; the polygons beside each polygon, from triangles.
NeighboursWork make_openmesh_neighbours(BenchMesh const& mesh);
NeighboursWork make_meshoptimizer_neighbours(BenchMesh const& mesh);

// The triangles within each polygon, from its points in the plane: as they come, or Delaunay ones.
TrianglesWork make_cgal_triangulation(PolygonBatch const& batch, bool const& is_delaunay);

using ByteSpan = std::span<std::byte const>;
// A key of 128 bits of each.
void hash_by_xxh3(std::vector<ByteSpan> const& spans);

// Rays through Embree's tree over the boxes of primitives, which it asks for hits: those of our
// mesh, by intersect_primitive, or a plain triangle test on plain arrays.
struct TraceInput {
    BenchMesh const& plain;  // of triangles alone, or quads
    std::shared_ptr<PolyMesh const> mesh;
    std::vector<GeometryRay> rays;
};
struct TraceHit {
    unsigned int primitive;  // 0xFFFFFFFF: none
    float distance;
};
struct TraceWork {
    BenchWork work;
    std::function<std::vector<TraceHit>()> get_hits;
};
enum class TraceSide {
    OURS,
    OURS_BY_8,        // in one call
    OURS_8_BY_CALLS,  // searched for at once, with a call for each
    PLAIN,
    PLAIN_BY_8,
};
TraceWork make_embree_trace(std::shared_ptr<TraceInput const> const& input, TraceSide const& side);

// Finished meshes, to see what memory they take.
std::shared_ptr<void> build_cgal_mesh(BenchMesh const& mesh);
std::shared_ptr<void> build_embree_quads(BenchMesh const& mesh);
std::shared_ptr<void> build_openmesh(BenchMesh const& mesh);
std::shared_ptr<void> import_by_assimp(std::string const& path);
