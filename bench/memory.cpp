#include <bench/memory_use.h>
#include <bench/peers.h>
#include <bench/poly_meshes.h>
#include <bench/rows.h>

#include <algorithm>
#include <memory>

namespace {

// Bytes per vertex and polygon.
class Memory {
  public:
    Memory(BenchRow& row, BenchMesh const& mesh)
        : m_row(row), m_element_count(double(mesh.positions.size() + mesh.counts.size())) {}

    double measure(std::string const& who, std::function<std::shared_ptr<void>()> const& build,
                   BenchBar const& bar) {
        double const size = double(measure_in_child(build)) / m_element_count;
        m_row.number(who, size, bar);
        return size;
    }
    double divide(unsigned long long const& size) const { return double(size) / m_element_count; }

  private:
    BenchRow& m_row;
    double m_element_count;
};

void fill_row(BenchRow& row, BenchInputs& inputs, std::string const& name, BenchBar const& bar) {
    BenchMesh const& mesh = inputs.get_mesh(name);
    Memory memory(row, mesh);
    PolyMeshInput const input(mesh, {});
    auto const build = [&] {
        auto const result = std::make_shared<PolyMesh>();
        input.set(*result, nullptr);
        return result;
    };
    double const ours = memory.measure("ours", build, bar);
    double const told = memory.divide(build()->get_memory_size());
    row.number("ours, as it tells", told);
    row.agree("get_memory_size and what the process holds",
              [=] { return std::abs(told - ours) < 0.05 * ours; });
    double best = 1e9;
    auto const add_peer = [&](char const* peer, auto const& build_peer) {
        best = std::min(best, memory.measure(peer, build_peer, shown()));
    };
    if constexpr (has_cgal) {
        add_peer("CGAL", [&] { return build_cgal_mesh(mesh); });
    } else {
        row.missing("CGAL");
    }
    if constexpr (has_openmesh) {
        add_peer("OpenMesh", [&] { return build_openmesh(mesh); });
    } else {
        row.missing("OpenMesh");
    }
    if constexpr (has_assimp) {
        std::string const path = inputs.get_obj(name);
        add_peer("assimp", [&] { return import_by_assimp(path); });
    } else {
        row.missing("assimp");
    }
    if constexpr (has_embree) {
        add_peer("Embree", [&] { return build_embree_quads(mesh); });
        row.note("Embree: quads with the tree over them");
    } else {
        row.missing("Embree");
    }
    if (best < 1e9) {
        row.number("of the best peer", ours / best, at_most(0.5));
    }
}

// What each map adds.
void fill_map_row(BenchRow& row, BenchMesh const& mesh) {
    Memory memory(row, mesh);
    auto const get_size = [&](BenchMaps const& maps) {
        return memory.divide(make_poly_mesh(mesh, maps)->get_memory_size());
    };
    double const bare = get_size({});
    row.number("without maps", bare);
    row.number("uv map", get_size({.has_uvs = true}) - bare);
    row.number("normal map", get_size({.has_normals = true}) - bare);
    row.number("color map", get_size({.has_colors = true}) - bare);
}

}  // namespace

void add_memory_rows(Bench& bench, BenchInputs& inputs) {
    for (std::string const name : {"sphere", "bunny", "rocker-arm"}) {
        if (inputs.has(name)) {
            BenchBar const bar = at_most(name == "sphere" ? 24 : 20);
            bench.add("memory/" + name,
                      [=, &inputs](BenchRow& row) { fill_row(row, inputs, name, bar); });
        }
    }
    bench.add("memory/sphere-maps",
              [&inputs](BenchRow& row) { fill_map_row(row, inputs.get_mesh("sphere")); });
}
