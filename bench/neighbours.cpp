#include <bench/peers.h>
#include <bench/rows.h>

#include <poly/topology/neighbourhood.h>

#include <algorithm>
#include <memory>

namespace {

struct Neighbours {
    CoreArray<unsigned int> faces, edges;
    CoreArray<unsigned char> manifold;
    std::vector<unsigned int> offsets;  // of the polygons' corners

    explicit Neighbours(BenchMesh const& mesh) {
        for (unsigned int offset = 0; unsigned int const& count : mesh.counts) {
            offsets.push_back(offset);
            offset += count;
        }
    }
    unsigned long long count_borders() const {
        return static_cast<unsigned long long>(std::ranges::count(faces, 0xFFFFFFFFu));
    }
};

void find(BenchMesh const& mesh, Neighbours& out) {
    unsigned int const vertex_count = static_cast<unsigned int>(mesh.positions.size());
    auto const has_size = [&](unsigned int const& size) {
        return mesh.counts.front() == size && mesh.corners.size() == size * mesh.counts.size();
    };
    if (has_size(3)) {
        compute_triangles_neighbourhood(out.faces, view(mesh.corners), vertex_count, nullptr);
    } else if (has_size(4)) {
        compute_quads_neighbourhood(out.faces, view(mesh.corners), vertex_count, nullptr);
    } else {
        compute_polygons_neighbourhood(out.faces, out.edges, out.manifold, view(mesh.corners),
                                       view(mesh.counts), view(out.offsets), vertex_count, nullptr);
    }
}

void fill_row(BenchRow& row, BenchMesh const& mesh) {
    auto const ours = std::make_shared<Neighbours>(mesh);
    row.ours([=, &mesh] { find(mesh, *ours); });
    auto const add_peer = [&](char const* name, NeighboursWork const& peer, double const& bar) {
        row.peer(name, peer.work, at_least(bar));
        row.agree(std::string("border edges with ") + name,
                  [=] { return ours->count_borders() == peer.count_borders(); });
    };
    if constexpr (has_openmesh) {
        add_peer("OpenMesh", make_openmesh_neighbours(mesh), 4.5);
        row.note("OpenMesh: add_vertex and add_face, with room reserved");
    } else {
        row.missing("OpenMesh");
    }
    if (mesh.corners.size() != 3 * mesh.counts.size()) {
        return;
    }
    if constexpr (has_meshoptimizer) {
        add_peer("meshoptimizer", make_meshoptimizer_neighbours(mesh), 4);
        row.note("meshoptimizer: tells opposite vertices, and first finds equal positions");
    } else {
        row.missing("meshoptimizer");
    }
}

}  // namespace

void add_neighbour_rows(Bench& bench, BenchInputs& inputs) {
    for (std::string const name : {"sphere", "terrain", "polygons", "sphere-triangles",
                                   "terrain-triangles", "bunny", "spot", "rocker-arm"}) {
        if (inputs.has(name)) {
            bench.add("neighbours/" + name,
                      [=, &inputs](BenchRow& row) { fill_row(row, inputs.get_mesh(name)); });
        }
    }
}
