#include <bench/fragments.h>
#include <bench/rows.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <thread>

namespace {

using Quads = Fragments<4>;

constexpr unsigned int round_count = 10;  // so that starting a thread takes no part of the time

// Answers the places first, first + step, ... and returns a sum of what it found.
using Query = double (*)(Quads const& fragments, std::size_t const& first, std::size_t const& step);

double sample(Quads const& fragments, std::size_t const& first, std::size_t const& step) {
    double sum = 0;
    GeometrySample sample;
    for (std::size_t i = first; i < fragments.places.size(); i += step) {
        fragments.mesh->compute_fragment_sample(CtxEval(), fragments.places[i], sample);
        sum += static_cast<double>(sample.get_smooth_position().z);
    }
    return sum;
}

double evaluate(Quads const& fragments, std::size_t const& first, std::size_t const& step) {
    double sum = 0, value = 0;
    for (std::size_t i = first; i < fragments.places.size(); i += step) {
        fragments.property->evaluate(CtxEval(), fragments.places[i], &value, nullptr, nullptr,
                                     nullptr, 1);
        sum += value;
    }
    return sum;
}

// A ray straight down onto a corner's vertex, moved inwards.
double intersect(Quads const& fragments, std::size_t const& first, std::size_t const& step) {
    double sum = 0;
    for (std::size_t i = first; i < fragments.places.size(); i += step) {
        unsigned int const primitive = fragments.places[i].primitive_index;
        unsigned int const* const v = &fragments.surface.corners[std::size_t(4) * primitive];
        GMathVec3<double> const place(
            (fragments.surface.positions[v[0]] + fragments.surface.positions[v[2]]) * 0.5f);
        GeometryRay ray;
        ray.ray = GMathBasicRay({place.x + 0.01, place.y, 10}, {0, 0, -1});
        GeometryHit hit;
        GeometryRaytraceCtx rays(&ray, &hit, 1);
        fragments.mesh->intersect_primitive(CtxEval(), primitive, rays);
        sum += hit.distance;
    }
    return sum;
}

double run_rounds(Quads const& fragments, Query const& query, std::size_t const& first,
                  std::size_t const& step) {
    double sum = 0;
    for (unsigned int i = 0; i < round_count; ++i) {
        sum += query(fragments, first, step);
    }
    return sum;
}

double run(Quads const& fragments, Query const& query, unsigned int const& thread_count) {
    std::vector<double> sums(thread_count);
    {
        std::vector<std::jthread> threads;
        for (unsigned int i = 1; i < thread_count; ++i) {
            threads.emplace_back(
                [&, i] { sums[i] = run_rounds(fragments, query, i, thread_count); });
        }
        sums[0] = run_rounds(fragments, query, 0, thread_count);
    }
    double sum = 0;
    for (double const& part : sums) {
        sum += part;
    }
    return sum;
}

}  // namespace

void add_thread_rows(Bench& bench, BenchInputs& inputs) {
    for (auto const& [name, query] : {std::pair<char const*, Query>{"samples", sample},
                                      {"properties", evaluate},
                                      {"rays", intersect}}) {
        bench.add(std::string("threads/") + name, [query = query, &inputs](BenchRow& row) {
            auto const fragments = std::make_shared<Quads>(inputs.get_mesh("terrain"));
            auto const by_two = std::make_shared<double>(), by_one = std::make_shared<double>();
            row.use_clock_time();
            row.ours([=] { *by_two = run(*fragments, query, 2); });
            row.peer(
                "one thread", [=] { *by_one = run(*fragments, query, 1); }, at_least(1.9));
            row.agree("sums", [=] {
                return std::abs(*by_two - *by_one) <= 1e-9 * std::abs(*by_one) && *by_one != 0;
            });
        });
    }
}
