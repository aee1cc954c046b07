#include <bench/memory_use.h>
#include <bench/peers.h>
#include <bench/rows.h>

#include <poly/mesh/poly_mesh.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <thread>

namespace {

using Meshes = std::vector<std::unique_ptr<PolyMesh>>;

std::unique_ptr<PolyMesh> import_file(std::string const& path) {
    AppProgressBar load_progress("load"), build_progress("build");
    auto mesh = std::make_unique<PolyMesh>();
    mesh->import_from_file(path.c_str(), "", 0, &load_progress, &build_progress);
    return mesh;
}

std::size_t count_triangles(PolyMesh const& mesh) {
    PolyMeshTopology const& topology = mesh.get_topology();
    return topology.triangle_count + std::size_t(2) * topology.quad_count;
}

void fill_row(BenchRow& row, std::string const& path, BenchBar const& bar) {
    auto const mesh = std::make_shared<std::unique_ptr<PolyMesh>>();
    row.ours([=] { *mesh = import_file(path); });
    if constexpr (has_assimp) {
        TrianglesWork const peer = make_assimp_import(path);
        row.peer("assimp", peer.work, bar);
        row.agree("number of triangles with assimp",
                  [=] { return count_triangles(**mesh) == peer.count_triangles(); });
    } else {
        row.missing("assimp");
    }
}

// Thread t of n imports the files t, t + n, ...
void import_all(std::vector<std::string> const& paths, unsigned int const& thread_count,
                Meshes& meshes) {
    meshes.clear();
    meshes.resize(paths.size());
    auto const import_some = [&](std::size_t const& first) {
        for (std::size_t i = first; i < paths.size(); i += thread_count) {
            meshes[i] = import_file(paths[i]);
        }
    };
    std::vector<std::jthread> threads;
    for (unsigned int i = 1; i < thread_count; ++i) {
        threads.emplace_back(import_some, i);
    }
    import_some(0);
}

bool have_same_bytes(Meshes const& a, Meshes const& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        unsigned long long size_a = 0, size_b = 0;
        std::unique_ptr<unsigned char, decltype(&std::free)> const block_a(a[i]->serialize(size_a),
                                                                           std::free),
            block_b(b[i]->serialize(size_b), std::free);
        if (!(a[i]->get_hash_key() == b[i]->get_hash_key()) || size_a != size_b ||
            std::memcmp(block_a.get(), block_b.get(), size_a) != 0) {
            return false;
        }
    }
    return true;
}

void fill_thread_row(BenchRow& row, std::vector<std::string> const& paths) {
    auto const by_two = std::make_shared<Meshes>(), by_one = std::make_shared<Meshes>();
    row.use_clock_time();
    row.ours([=] { import_all(paths, 2, *by_two); });
    row.peer(
        "one thread", [=] { import_all(paths, 1, *by_one); }, at_least(1.9));
    row.agree("bytes of the meshes", [=] { return have_same_bytes(*by_two, *by_one); });
    long long const left = measure_in_child([&] {
        for (unsigned int i = 0; i < 4; ++i) {
            Meshes meshes;
            import_all(paths, 2, meshes);
        }
        return nullptr;
    });
    row.number("MiB left after 4 times", static_cast<double>(left) / 0x1p20, at_most(1));
}

}  // namespace

void add_import_rows(Bench& bench, BenchInputs& inputs) {
    std::map<std::string, BenchBar> bars = {{"sphere", at_least(8)},
                                            {"bunny", at_least(12)},
                                            {"terrain", at_least(30)},
                                            {"polygons", at_least(25)}};
    for (std::string const& name : inputs.get_names()) {
        bench.add("import/" + name, [=, &inputs, bar = bars[name]](BenchRow& row) {
            fill_row(row, inputs.get_obj(name), bar);
        });
    }
    bench.add("import/64-files",
              [&inputs](BenchRow& row) { fill_thread_row(row, inputs.get_small_objs(64)); });
}

void add_lwo_rows(Bench& bench, BenchInputs& inputs) {
    bench.add("lwo/terrain",
              [&inputs](BenchRow& row) { fill_row(row, inputs.get_lwo(), at_least(10)); });
    for (char const* const name :
         {"bil-lwo2-ngon2", "assimp-UglyVertexColors", "bil-lwo2-box3-uv-layers"}) {
        std::string const path = inputs.get_models() + "/lwo/" + name + ".lwo";
        if (std::filesystem::exists(path)) {
            bench.add(std::string("lwo/") + name,
                      [=](BenchRow& row) { fill_row(row, path, at_least(10)); });
        }
    }
}
