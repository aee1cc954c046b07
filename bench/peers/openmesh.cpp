#include <bench/peers.h>

#include <OpenMesh/Core/Mesh/PolyMesh_ArrayKernelT.hh>
#include <OpenMesh/Core/Mesh/TriMesh_ArrayKernelT.hh>

#include <algorithm>
#include <memory>

namespace {

using TriMesh = OpenMesh::TriMesh_ArrayKernelT<>;
using AnyMesh = OpenMesh::PolyMesh_ArrayKernelT<>;

template <typename Mesh>
void build(BenchMesh const& input, Mesh& mesh) {
    mesh.clear();
    mesh.reserve(input.positions.size(), input.corners.size(), input.counts.size());
    for (GMathVec3<float> const& p : input.positions) {
        mesh.add_vertex({p.x, p.y, p.z});
    }
    std::vector<typename Mesh::VertexHandle> face;
    unsigned int const* corner = input.corners.data();
    for (unsigned int const& count : input.counts) {
        face.clear();
        for (unsigned int const* const end = corner + count; corner < end; ++corner) {
            face.emplace_back(static_cast<int>(*corner));
        }
        mesh.add_face(face);
    }
}

bool has_triangles_only(BenchMesh const& mesh) {
    return std::ranges::all_of(mesh.counts, [](unsigned int const& count) { return count == 3; });
}

template <typename Mesh>
NormalsWork make_normals(BenchMesh const& input) {
    auto const mesh = std::make_shared<Mesh>();
    mesh->request_face_normals();
    mesh->request_vertex_normals();
    build(input, *mesh);
    auto const get_normals = [=] {
        std::vector<GMathVec3<float>> normals;
        for (auto const vertex : mesh->vertices()) {
            auto const& n = mesh->normal(vertex);
            normals.emplace_back(n[0], n[1], n[2]);
        }
        return normals;
    };
    auto const update = [=] {
        mesh->update_face_normals();
        mesh->update_vertex_normals();
    };
    return {update, get_normals};
}

template <typename Mesh>
NeighboursWork make_neighbours(BenchMesh const& input) {
    auto const mesh = std::make_shared<Mesh>();
    auto const count_borders = [=] {
        auto const edges = mesh->edges();
        return static_cast<unsigned long long>(std::count_if(
            edges.begin(), edges.end(), [](auto const& edge) { return edge.is_boundary(); }));
    };
    return {[=, &input] { build(input, *mesh); }, count_borders};
}

}  // namespace

NormalsWork make_openmesh_normals(BenchMesh const& mesh) {
    return has_triangles_only(mesh) ? make_normals<TriMesh>(mesh) : make_normals<AnyMesh>(mesh);
}

NeighboursWork make_openmesh_neighbours(BenchMesh const& mesh) {
    omerr().disable();  // of faces that it refuses
    return has_triangles_only(mesh) ? make_neighbours<TriMesh>(mesh)
                                    : make_neighbours<AnyMesh>(mesh);
}

std::shared_ptr<void> build_openmesh(BenchMesh const& mesh) {
    auto const result = std::make_shared<AnyMesh>();
    build(mesh, *result);
    return result;
}
