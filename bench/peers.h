#pragma once

#include <bench/bench.h>
#include <bench/make_inputs.h>

// The peers: a file each under bench/peers, which is left out where the peer is not installed. So
// ask first: what stands behind `if constexpr (has_tinyobjloader)` needs no definition then.

inline constexpr bool has_tinyobjloader = BENCH_HAS_TINYOBJLOADER;

// A work that makes a mesh, and the mesh of its last call in the form of the inputs.
struct MeshWork {
    BenchWork work;
    std::function<BenchMesh()> get_mesh;
};

// An OBJ file to arrays; polygons stay as they are.
MeshWork make_tinyobjloader_reader(std::string const& path);
