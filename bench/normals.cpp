#include <bench/peers.h>
#include <bench/plain/plain_normals.h>
#include <bench/poly_meshes.h>
#include <bench/rows.h>

#include <poly/mesh/vertex_normals.h>

#include <algorithm>
#include <memory>

namespace {

// A mesh's own positions and polygons, to derive normals from over and over.
struct NormalWork {
    std::shared_ptr<PolyMesh> mesh;
    GeometryPointCloud cloud;
    PolyMeshGeometry geometry;

    explicit NormalWork(BenchMesh const& input)
        : mesh(make_poly_mesh(input)), cloud(*mesh->get_point_cloud(), true) {
        geometry.shading_group_normals.resize(1);
    }
    void update() {
        CoreArray<GMathVec3<float>> normals;
        compute_vertex_normals(mesh->get_topology(), cloud.get_data().positions, normals, geometry,
                               nullptr);
        cloud.init_normals(normals, false);
    }
};

bool is_same(NormalWork const& ours, plain::Normals const& plain) {
    PolyMeshNormalSum const& sum = ours.geometry.shading_group_normals[0];
    return std::ranges::equal(ours.cloud.get_data().normals, plain.normals) &&
           sum.x == plain.sum.x * 0.5f && sum.y == plain.sum.y * 0.5f &&
           sum.z == plain.sum.z * 0.5f;
}

// The mean cosine is near 1: weights differ, which tells at rough places alone.
bool is_near(NormalWork const& ours, std::vector<GMathVec3<float>> const& theirs) {
    CoreArray<GMathVec3<float>> normals;
    ours.cloud.get_normals(normals);
    double sum = 0;
    unsigned int count = 0;
    for (unsigned int i = 0; i < normals.get_count(); ++i) {
        if (!(normals[i] == GMathVec3<float>(0, 0, 0))) {
            sum += static_cast<double>(gmath_dot(normals[i], theirs[i]));
            ++count;
        }
    }
    return sum > 0.98 * count;
}

void fill_row(BenchRow& row, BenchMesh const& mesh, double const& openmesh_bar) {
    auto const ours = std::make_shared<NormalWork>(mesh);
    auto const normals = std::make_shared<plain::Normals>();
    row.ours([=] { ours->update(); });
    row.peer(
        "plain",
        [=, &mesh] { plain::compute_normals(mesh.positions, mesh.corners, mesh.counts, *normals); },
        at_least(1.7));
    row.agree("with plain, to the bit", [=] { return is_same(*ours, *normals); });
    if constexpr (has_openmesh) {
        NormalsWork const peer = make_openmesh_normals(mesh);
        row.peer("OpenMesh", peer.work, at_least(openmesh_bar));
        row.agree("with OpenMesh, nearly", [=] { return is_near(*ours, peer.get_normals()); });
        row.note("OpenMesh sums unit normals unweighted, and keeps floats");
    } else {
        row.missing("OpenMesh");
    }
}

}  // namespace

void add_normal_rows(Bench& bench, BenchInputs& inputs) {
    for (char const* const name : {"sphere", "terrain"}) {
        bench.add(std::string("normals/") + name,
                  [=, &inputs](BenchRow& row) { fill_row(row, inputs.get_mesh(name), 4); });
    }
    for (std::string const name : {"sphere-triangles", "bunny", "spot", "rocker-arm"}) {
        if (inputs.has(name)) {
            bench.add("normals/" + name,
                      [=, &inputs](BenchRow& row) { fill_row(row, inputs.get_mesh(name), 6); });
        }
    }
}
