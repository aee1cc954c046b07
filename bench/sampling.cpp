#include <bench/fragments.h>
#include <bench/rows.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

namespace {

// Both sides of a kind of sample, for one fragment each.
struct Sampling {
    template <unsigned int size>
    static void ours(Fragments<size> const& fragments, GeometryFragment const& place,
                     GeometrySample& out) {
        fragments.mesh->compute_fragment_sample(CtxEval(), place, out);
    }
    template <unsigned int size>
    static void theirs(Fragments<size> const& fragments, GeometryFragment const& place,
                       plain::Sample& out) {
        plain::compute_sample(fragments.surface, place, out);
    }
    using Ours = GeometrySample;
    using Theirs = plain::Sample;
    static bool agrees(Ours const& a, Theirs const& b) {
        return a.get_position() == b.position && a.get_position_ds() == b.position_ds &&
               a.get_position_dt() == b.position_dt &&
               a.get_smooth_position() == b.smooth_position && a.get_normal() == b.normal &&
               a.get_normal_ds() == b.normal_ds && a.get_normal_dt() == b.normal_dt;
    }
};

struct Uvs {
    struct Ours {
        GMathVec3<double> x[3];
    };
    using Theirs = Ours;
    template <unsigned int size>
    static void ours(Fragments<size> const& fragments, GeometryFragment const& place, Ours& out) {
        fragments.mesh->compute_fragment_uvw(CtxEval(), place, 0, out.x[0], out.x[1], out.x[2]);
    }
    template <unsigned int size>
    static void theirs(Fragments<size> const& fragments, GeometryFragment const& place,
                       Theirs& out) {
        plain::compute_uvw(fragments.surface, place, out.x);
    }
    static bool agrees(Ours const& a, Theirs const& b) {
        constexpr double range = 1000;
        bool is_near = true;
        for (unsigned int k = 0; k < 9; ++k) {  // 16 bits are kept of each
            is_near = is_near && std::abs(a.x[k / 3][k % 3] - b.x[k / 3][k % 3]) < 1e-4 * range;
        }
        return is_near;
    }
};

struct Colors {
    using Ours = GMathVec4<float>;
    using Theirs = GMathVec4<float>;
    template <unsigned int size>
    static void ours(Fragments<size> const& fragments, GeometryFragment const& place, Ours& out) {
        fragments.mesh->compute_fragment_color(CtxEval(), place, 0, out);
    }
    template <unsigned int size>
    static void theirs(Fragments<size> const& fragments, GeometryFragment const& place,
                       Theirs& out) {
        plain::compute_color(fragments.surface, place, out);
    }
    static bool agrees(Ours const& a, Theirs const& b) { return a == b; }
};

struct Properties {
    struct Ours {
        double x[3];
    };
    using Theirs = Ours;
    template <unsigned int size>
    static void ours(Fragments<size> const& fragments, GeometryFragment const& place, Ours& out) {
        fragments.property->evaluate(CtxEval(), place, &out.x[0], &out.x[1], &out.x[2], nullptr, 1);
    }
    template <unsigned int size>
    static void theirs(Fragments<size> const& fragments, GeometryFragment const& place,
                       Theirs& out) {
        plain::compute_number(fragments.surface, place, out.x);
    }
    static bool agrees(Ours const& a, Theirs const& b) {
        return a.x[0] == b.x[0] && a.x[1] == b.x[1] && a.x[2] == b.x[2];
    }
};

template <typename Kind, unsigned int size>
bool agrees(Fragments<size> const& fragments) {
    for (GeometryFragment const& place : fragments.places) {
        typename Kind::Ours ours;
        typename Kind::Theirs theirs;
        Kind::ours(fragments, place, ours);
        Kind::theirs(fragments, place, theirs);
        if (!Kind::agrees(ours, theirs)) {
            return false;
        }
    }
    return true;
}

template <typename Kind, unsigned int size>
void add_row(Bench& bench, BenchInputs& inputs, char const* kind, double const& bar) {
    char const* const shape = size == 3 ? "-triangles" : "-quads";
    bench.add(std::string("sampling/") + kind + shape, [=, &inputs](BenchRow& row) {
        auto const fragments = std::make_shared<Fragments<size>>(
            inputs.get_mesh(size == 3 ? "terrain-triangles" : "terrain"));
        row.ours([=] {
            typename Kind::Ours out;
            for (GeometryFragment const& place : fragments->places) {
                Kind::ours(*fragments, place, out);
                benchmark::DoNotOptimize(out);
            }
        });
        row.peer(
            "plain",
            [=] {
                typename Kind::Theirs out;
                for (GeometryFragment const& place : fragments->places) {
                    Kind::theirs(*fragments, place, out);
                    benchmark::DoNotOptimize(out);
                }
            },
            at_most(bar));
        row.agree("values", [=] { return agrees<Kind>(*fragments); });
    });
}

template <typename Kind>
void add_rows(Bench& bench, BenchInputs& inputs, char const* kind, double const& bar) {
    add_row<Kind, 3>(bench, inputs, kind, bar);
    add_row<Kind, 4>(bench, inputs, kind, bar);
}

}  // namespace

void add_sampling_rows(Bench& bench, BenchInputs& inputs) {
    add_rows<Sampling>(bench, inputs, "sample", 1.6);
    add_rows<Uvs>(bench, inputs, "uvs", 1.6);
    add_rows<Colors>(bench, inputs, "colors", 1.6);
    add_rows<Properties>(bench, inputs, "property", 1.3);
}
