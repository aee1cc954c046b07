#include <bench/peers.h>

#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Polygon_mesh_processing/compute_normal.h>
#include <CGAL/Surface_mesh.h>

#include <memory>

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Mesh = CGAL::Surface_mesh<Kernel::Point_3>;
using NormalMap = Mesh::Property_map<Mesh::Vertex_index, Kernel::Vector_3>;

struct Normals {
    Mesh mesh;
    NormalMap map;
};

void build(BenchMesh const& input, Mesh& mesh) {
    for (GMathVec3<float> const& p : input.positions) {
        mesh.add_vertex({p.x, p.y, p.z});
    }
    std::vector<Mesh::Vertex_index> face;
    unsigned int const* corner = input.corners.data();
    for (unsigned int const& count : input.counts) {
        face.clear();
        for (unsigned int const* const end = corner + count; corner < end; ++corner) {
            face.emplace_back(*corner);
        }
        mesh.add_face(face);
    }
}

}  // namespace

NormalsWork make_cgal_normals(BenchMesh const& mesh, bool const& builds_mesh) {
    auto const work = std::make_shared<Normals>();
    auto const build_mesh = [=, &mesh] {
        work->mesh = Mesh();
        build(mesh, work->mesh);
        work->map = work->mesh
                        .add_property_map<Mesh::Vertex_index, Kernel::Vector_3>("v:normal",
                                                                                CGAL::NULL_VECTOR)
                        .first;
    };
    build_mesh();
    auto const get_normals = [=] {
        std::vector<GMathVec3<float>> normals;
        for (auto const vertex : work->mesh.vertices()) {
            Kernel::Vector_3 const& n = work->map[vertex];
            normals.emplace_back(static_cast<float>(n.x()), static_cast<float>(n.y()),
                                 static_cast<float>(n.z()));
        }
        return normals;
    };
    auto const compute = [=] {
        if (builds_mesh) {
            build_mesh();
        }
        CGAL::Polygon_mesh_processing::compute_vertex_normals(work->mesh, work->map);
    };
    return {compute, get_normals};
}

std::shared_ptr<void> build_cgal_mesh(BenchMesh const& mesh) {
    auto const result = std::make_shared<Mesh>();
    build(mesh, *result);
    return result;
}
