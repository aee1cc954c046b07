#include <bench/peers.h>
#include <bench/poly_meshes.h>
#include <bench/rows.h>

#include <poly/smoothed/poly_mesh_smoothed.h>

#include <memory>

namespace {

constexpr double angle = 30;
constexpr unsigned int none = 0xFFFFFFFF;

// The mean cosine between our normals and theirs, which are by corner, or by vertex. Corners that
// are flat or at a degenerate place do not count.
double compare(PolyMeshSmoothed const& smoothed, std::vector<GMathVec3<float>> const& theirs,
               std::vector<unsigned int> const* vertices) {
    CoreArray<GMathVec3<float>> values;
    CoreArray<unsigned int> indices;
    smoothed.get_polygon_normal_map_data(0, values, indices);
    double sum = 0;
    unsigned int count = 0;
    for (unsigned int corner = 0; corner < indices.get_count(); ++corner) {
        if (indices[corner] < values.get_count()) {
            GMathVec3<float> const& n = theirs[vertices ? (*vertices)[corner] : corner];
            sum += static_cast<double>(gmath_dot(values[indices[corner]], n));
            ++count;
        }
    }
    return sum / count;
}

void fill_row(BenchRow& row, BenchInputs& inputs, std::string const& name) {
    BenchMesh const& input = inputs.get_mesh(name);
    std::shared_ptr<PolyMesh const> const mesh = make_poly_mesh(input);
    auto const smoothed = std::make_shared<PolyMeshSmoothed>();
    row.ours([=] { smoothed->set(*mesh, angle, none, nullptr); });
    if constexpr (has_assimp) {
        NormalsWork const peer = make_assimp_smoothing(inputs.get_obj(name), angle);
        row.peer("assimp", peer.work, at_least(10));
        row.agree("with assimp, nearly",
                  [=] { return compare(*smoothed, peer.get_normals(), nullptr) > 0.97; });
    } else {
        row.missing("assimp");
    }
    if constexpr (has_cgal) {
        // Ours finds the neighbours of faces in corners and positions, as building their mesh does.
        NormalsWork const peer = make_cgal_normals(input, true);
        row.peer("CGAL from polygons", peer.work, at_least(10));
        row.peer("CGAL's own mesh", make_cgal_normals(input, false).work, shown());
        row.agree("with CGAL, nearly", [=, &input] {
            return compare(*smoothed, peer.get_normals(), &input.corners) > 0.9;
        });
        row.note("CGAL smooths across all edges; its own mesh knows its neighbours already");
    } else {
        row.missing("CGAL");
    }
}

}  // namespace

void add_smoothing_rows(Bench& bench, BenchInputs& inputs) {
    for (std::string const& name : inputs.get_names()) {
        bench.add("smoothing/" + name,
                  [=, &inputs](BenchRow& row) { fill_row(row, inputs, name); });
    }
}
