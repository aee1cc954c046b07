#include <bench/peers.h>
#include <bench/polygon_batch.h>
#include <bench/rows.h>

#include <poly/topology/triangulate_polygon.h>
#include <tests/topology/plain_triangulation.h>

#include <map>
#include <memory>
#include <string>

namespace {

using Triangles = std::vector<std::vector<unsigned int>>;  // by polygon

void cut(PolygonBatch const& batch, Triangles& triangles) {
    unsigned int const corner_count = static_cast<unsigned int>(batch.indices.size());
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        triangles[i].resize(std::size_t(3) * (corner_count - 2));
        triangles[i].resize(triangulate_polygon(batch.positions[i].data(), batch.indices.data(),
                                                corner_count, triangles[i].data()));
    }
}

void cut_plainly(PolygonBatch const& batch, std::vector<plain::Triangulation>& triangles) {
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        plain::triangulate(batch.positions[i], batch.indices, triangles[i]);
    }
}

BenchWork make_work(std::string const& shape, unsigned int const& corner_count) {
    auto const batch = std::make_shared<PolygonBatch>(make_polygon_batch(shape, corner_count, 1));
    auto const triangles = std::make_shared<Triangles>(1);
    return [=] { cut(*batch, *triangles); };
}

struct Bars {
    BenchBar plain;
    BenchBar cgal;
};

void fill_row(BenchRow& row, std::string const& shape, unsigned int const& corner_count,
              unsigned int const& polygon_count, Bars const& bars, bool const& has_cgal_side) {
    auto const batch =
        std::make_shared<PolygonBatch>(make_polygon_batch(shape, corner_count, polygon_count));
    auto const triangles = std::make_shared<Triangles>(polygon_count);
    auto const plain_triangles = std::make_shared<std::vector<plain::Triangulation>>(polygon_count);
    row.ours([=] { cut(*batch, *triangles); });
    row.peer(
        "plain", [=] { cut_plainly(*batch, *plain_triangles); }, bars.plain);
    row.agree("with plain, to the last index", [=] {
        for (std::size_t i = 0; i < polygon_count; ++i) {
            if ((*triangles)[i] != (*plain_triangles)[i].out) {
                return false;
            }
        }
        return true;
    });
    if (!has_cgal_side) {
        return;
    }
    if constexpr (has_cgal) {
        for (bool const is_delaunay : {false, true}) {
            TrianglesWork const peer = make_cgal_triangulation(*batch, is_delaunay);
            std::string const name = is_delaunay ? "CGAL Delaunay" : "CGAL";
            row.peer(
                name, [work = peer.work, batch] { work(); }, bars.cgal);
            row.agree("number of triangles with " + name,
                      [=] { return peer.count_triangles() == polygon_count * (corner_count - 2); });
        }
        row.note("CGAL is given the points in their plane and makes other triangles");
    } else {
        row.missing("CGAL");
    }
}

void add_sizes(Bench& bench, std::string const& shape, double const& bar_at_10000) {
    bool const is_crescent = shape == "crescent";
    for (unsigned int const count : {64u, 128u}) {
        bool const is_deep = is_crescent && count == 128;
        bool const is_told = !is_crescent && shape != "spiral";
        Bars const bars = {at_least(is_deep ? 14 : 1.5), is_told ? at_least(4) : shown()};
        bench.add("triangulation/" + std::to_string(count) + "-" + shape,
                  [=](BenchRow& row) { fill_row(row, shape, count, 32, bars, true); });
    }
    Bars const bars = {is_crescent ? at_least(500) : shown(), at_least(1)};
    bench.add("triangulation/1000-" + shape,
              [=](BenchRow& row) { fill_row(row, shape, 1000, 1, bars, true); });
    unsigned int const largest = is_crescent ? 2000 : 10000;
    if (!is_crescent) {
        bench.add("triangulation/10000-" + shape, [=](BenchRow& row) {
            fill_row(row, shape, largest, 1, {at_least(bar_at_10000), at_least(1)}, true);
        });
    }
    bench.add("triangulation/growth-" + shape, [=](BenchRow& row) {
        for (unsigned int const size : {1000u, largest}) {
            row.at_size(size, make_work(shape, size));
        }
        row.growth(at_most(1.3));
    });
}

}  // namespace

void add_triangulation_rows(Bench& bench) {
    std::map<unsigned int, double> const bars = {{5, 1.05}, {8, 1.15}, {16, 1.4}};
    for (auto const& [count, bar] : bars) {
        bench.add("triangulation/" + std::to_string(count) + "-random",
                  [count = count, bar = bar](BenchRow& row) {
                      fill_row(row, "random", count, 1000, {at_least(bar), {}}, false);
                  });
    }
    for (auto const& [shape, bar] : {std::pair{"convex", 40.0},
                                     {"star", 18.0},
                                     {"comb", 45.0},
                                     {"spiral", 25.0},
                                     {"crescent", 0.0}}) {
        add_sizes(bench, shape, bar);
    }
}
