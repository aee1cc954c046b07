#include <bench/camera_rays.h>
#include <bench/peers.h>
#include <bench/poly_meshes.h>
#include <bench/rows.h>

#include <cmath>
#include <memory>

namespace {

struct TracePeer {
    char const* name;
    TraceSide side;
    BenchBar bar;
};

// All but a few rays, which meet edges, meet the same primitive; and there are hits at all.
bool agree(std::vector<TraceHit> const& a, std::vector<TraceHit> const& b) {
    std::size_t equal_count = 0, hit_count = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        bool const is_hit = a[i].primitive != 0xFFFFFFFF;
        bool const is_near =
            !is_hit || std::abs(a[i].distance - b[i].distance) <= 1e-4f * a[i].distance;
        equal_count += a[i].primitive == b[i].primitive && is_near;
        hit_count += is_hit;
    }
    return a.size() == b.size() && 1000 * equal_count > 999 * a.size() && hit_count > 1000;
}

void fill_row(BenchRow& row, BenchMesh const& mesh, std::vector<GeometryRay> const& rays,
              TraceSide const& side, std::vector<TracePeer> const& peers) {
    if constexpr (has_embree) {
        auto const input =
            std::make_shared<TraceInput const>(TraceInput{mesh, make_poly_mesh(mesh), rays});
        TraceWork const ours = make_embree_trace(input, side);
        row.ours(ours.work);
        for (TracePeer const& peer : peers) {
            TraceWork const theirs = make_embree_trace(input, peer.side);
            row.peer(peer.name, theirs.work, peer.bar);
            row.agree(std::string("hits with ") + peer.name,
                      [=] { return agree(ours.get_hits(), theirs.get_hits()); });
        }
    } else {
        row.missing("Embree");
    }
}

}  // namespace

void add_ray_rows(Bench& bench, BenchInputs& inputs) {
    for (std::string const name : {"sphere-triangles", "terrain", "bunny"}) {
        if (!inputs.has(name)) {
            continue;
        }
        bench.add("rays/" + name, [=, &inputs](BenchRow& row) {
            BenchMesh const& mesh = inputs.get_mesh(name);
            fill_row(row, mesh, make_camera_rays(mesh, 256), TraceSide::OURS,
                     {{"plain callback", TraceSide::PLAIN, at_least(1.0)}});
        });
        bench.add("rays/" + name + "-packets", [=, &inputs](BenchRow& row) {
            BenchMesh const& mesh = inputs.get_mesh(name);
            fill_row(row, mesh, make_sample_rays(mesh), TraceSide::OURS_BY_8,
                     {{"plain callback", TraceSide::PLAIN_BY_8, at_least(1.5)},
                      {"a call per ray", TraceSide::OURS_8_BY_CALLS, shown()},
                      {"plain, ray by ray", TraceSide::PLAIN, shown()}});
            row.note("a packet is the 8 samples of a pixel");
        });
        bench.add("rays/" + name + "-loose-packets", [=, &inputs](BenchRow& row) {
            BenchMesh const& mesh = inputs.get_mesh(name);
            fill_row(row, mesh, make_camera_rays(mesh, 256), TraceSide::OURS_BY_8,
                     {{"plain callback", TraceSide::PLAIN_BY_8, shown()}});
            row.note("a packet is 8 pixels, which seldom meet the same primitive");
        });
    }
}
