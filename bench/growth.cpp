#include <bench/poly_meshes.h>
#include <bench/polygon_batch.h>
#include <bench/rows.h>

#include <poly/smoothed/poly_mesh_smoothed.h>
#include <poly/topology/neighbourhood.h>
#include <poly/topology/triangulate_polygon.h>

#include <memory>

// Time over size, for the plots. Sizes are corners.
namespace {

using MakeWork = BenchWork (*)(BenchInputs& inputs, unsigned int const& terrain_size);

BenchWork make_building(BenchInputs&, unsigned int const& size) {
    auto const terrain = std::make_shared<BenchMesh>(make_terrain(size));
    auto const input = std::make_shared<PolyMeshInput>(*terrain, BenchMaps());
    return [=, keep = terrain] {
        PolyMesh mesh;
        input->set(mesh, nullptr);
    };
}

BenchWork make_neighbours(BenchInputs&, unsigned int const& size) {
    auto const terrain = std::make_shared<BenchMesh>(make_terrain(size));
    return [=] {
        CoreArray<unsigned int> neighbours;
        compute_quads_neighbourhood(neighbours, view(terrain->corners),
                                    static_cast<unsigned int>(terrain->positions.size()), nullptr);
    };
}

BenchWork make_smoothing(BenchInputs&, unsigned int const& size) {
    std::shared_ptr<PolyMesh const> const mesh = make_poly_mesh(make_terrain(size));
    return [=] {
        PolyMeshSmoothed smoothed;
        smoothed.set(*mesh, 30, 0xFFFFFFFF, nullptr);
    };
}

BenchWork make_import(BenchInputs& inputs, unsigned int const& size) {
    std::string const path = inputs.get_terrain_obj(size);
    return [=] {
        PolyMesh mesh;
        mesh.import_from_file(path.c_str(), "", 0, nullptr, nullptr);
    };
}

BenchWork make_triangulation(unsigned int const& size) {
    auto const batch = std::make_shared<PolygonBatch>(make_polygon_batch("star", size, 1));
    auto const out = std::make_shared<std::vector<unsigned int>>(std::size_t(3) * size);
    return [=] {
        triangulate_polygon(batch->positions[0].data(), batch->indices.data(), size, out->data());
    };
}

}  // namespace

void add_growth_rows(Bench& bench, BenchInputs& inputs) {
    struct Row {
        char const* name;
        MakeWork make;
        BenchBar bar;
    };
    for (Row const& entry : {Row{"building", make_building, shown()},
                             {"neighbours", make_neighbours, shown()},
                             {"smoothing", make_smoothing, at_most(1.1)},
                             {"import", make_import, shown()}}) {
        bench.add(std::string("growth/") + entry.name, [=, &inputs](BenchRow& row) {
            std::vector<unsigned int> sizes = {16, 50, 158, 500, 1581};
            sizes.resize(inputs.is_short() ? 4 : 5);
            for (unsigned int const& size : sizes) {
                row.at_size(4.0 * size * size, entry.make(inputs, size));
            }
            row.growth(entry.bar);
        });
    }
    bench.add("growth/triangulation", [](BenchRow& row) {
        for (unsigned int const size : {10u, 100u, 1000u, 10000u, 100000u}) {
            row.at_size(size, make_triangulation(size));
        }
        row.growth(shown());
    });
}
