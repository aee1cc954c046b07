#pragma once

#include <bench/bench.h>
#include <bench/make_inputs.h>
#include <bench/polygon_batch.h>

// The peers: a file each under bench/peers, which is left out where the peer is not installed. So
// ask first: what stands behind `if constexpr (has_tinyobjloader)` needs no definition then.

inline constexpr bool has_cgal = BENCH_HAS_CGAL;
inline constexpr bool has_meshoptimizer = BENCH_HAS_MESHOPTIMIZER;
inline constexpr bool has_openmesh = BENCH_HAS_OPENMESH;
inline constexpr bool has_tinyobjloader = BENCH_HAS_TINYOBJLOADER;

// Works, with what their last call found. Meshes that they take must outlive them.
struct MeshWork {
    BenchWork work;
    std::function<BenchMesh()> get_mesh;
};
struct NormalsWork {
    BenchWork work;
    std::function<std::vector<GMathVec3<float>>()> get_normals;  // by vertex
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

// Vertex normals from face normals.
NormalsWork make_openmesh_normals(BenchMesh const& mesh);

// The mesh with its connections, from arrays; the polygons beside each polygon, from triangles.
NeighboursWork make_openmesh_neighbours(BenchMesh const& mesh);
NeighboursWork make_meshoptimizer_neighbours(BenchMesh const& mesh);

// The triangles within each polygon, from its points in the plane: as they come, or Delaunay ones.
TrianglesWork make_cgal_triangulation(PolygonBatch const& batch, bool const& is_delaunay);
