#include <bench/poly_meshes.h>
#include <bench/rows.h>

#include <poly/mesh/content_key.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <map>
#include <memory>

namespace {

using Clock = std::chrono::steady_clock;

// Reads as many bytes as `set` is given and writes as many as it leaves, as one copy; what one of
// them is longer is read or written alone. What is written is new memory, as that of `set` is, or
// the same every time.
class Copy {
  public:
    Copy(unsigned long long const& input_size, unsigned long long const& output_size)
        : m_from(input_size, 1), m_to(output_size, 2) {}
    void run_on_new_memory() {
        auto* const to = static_cast<unsigned char*>(core_allocate(m_to.size()));
        run(to);
        core_release(to);
    }
    void run_on_warm_memory() { run(m_to.data()); }

  private:
    void run(unsigned char* to) const {
        std::size_t const shared = std::min(m_from.size(), m_to.size());
        std::memcpy(to, m_from.data(), shared);
        std::memset(to + shared, 0, m_to.size() - shared);
        unsigned long long sum = 0;
        for (std::size_t i = shared; i + 8 <= m_from.size(); i += 8) {
            unsigned long long word;
            std::memcpy(&word, m_from.data() + i, 8);
            sum += word;
        }
        benchmark::DoNotOptimize(sum);
        benchmark::DoNotOptimize(to);
        benchmark::ClobberMemory();
    }

    std::vector<unsigned char> m_from, m_to;
};

// The steps of `set`, and the labels that progress shows in them.
constexpr std::pair<char const*, char const*> labels[] = {
    {"build primitives", "build primitives"},     {"update normals", "update normals"},
    {"set normal maps", "set normal maps"},       {"normal", "set normal maps"},  // the map's name
    {"build support info", "build support info"}, {"update bbox", "update bbox"},
    {"compute vertices bbox", "update bbox"},     {"compute shading group bboxes", "update bbox"},
};
constexpr char const* step_names[] = {"key and arrays",  "build primitives",   "update normals",
                                      "set normal maps", "build support info", "update bbox"};

// The seconds of each step. The time before a report belongs to the step that shows then, that
// before the first one to the start.
class Steps {
  public:
    void run(PolyMeshInput const& input) {
        AppProgressBar bar("set");
        bar.set_callback(note_step, this);
        PolyMesh mesh;
        m_last = Clock::now();
        m_is_first = true;
        bar.start();
        input.set(mesh, &bar);
    }
    double get_share(std::string const& step) const {
        double sum = 0;
        for (auto const& [name, seconds] : m_seconds) {
            sum += seconds;
        }
        auto const found = m_seconds.find(step);
        return found == m_seconds.end() ? 0 : found->second / sum;
    }

  private:
    static bool note_step(void* user, AppProgressBar const& bar) {
        Steps& self = *static_cast<Steps*>(user);
        for (auto const& [label, step] : labels) {
            if (bar.get_label() == label) {
                Clock::time_point const now = Clock::now();
                std::chrono::duration<double> const time = now - self.m_last;
                self.m_seconds[self.m_is_first ? "key and arrays" : step] += time.count();
                self.m_is_first = false;
                self.m_last = now;
            }
        }
        return true;
    }

    std::map<std::string, double> m_seconds;
    Clock::time_point m_last;
    bool m_is_first = true;
};

void fill_row(BenchRow& row, BenchMesh const& mesh, BenchMaps const& maps, double const& bar) {
    auto const input = std::make_shared<PolyMeshInput>(mesh, maps);
    auto const output_size = make_poly_mesh(mesh, maps)->get_memory_size();
    auto const copy = std::make_shared<Copy>(input->get_byte_count(), output_size);
    row.ours([=] {
        PolyMesh result;
        input->set(result, nullptr);
    });
    row.peer(
        "memcpy to new memory", [=] { copy->run_on_new_memory(); }, at_most(bar));
    row.peer(
        "memcpy to warm memory", [=] { copy->run_on_warm_memory(); }, shown());
    Steps steps;
    for (unsigned int i = 0; i < 5; ++i) {
        steps.run(*input);
    }
    for (char const* const name : step_names) {
        row.number(std::string("share: ") + name, steps.get_share(name));
    }
}

}  // namespace

void add_set_rows(Bench& bench, BenchInputs& inputs) {
    bench.add("set/sphere",
              [&inputs](BenchRow& row) { fill_row(row, inputs.get_mesh("sphere"), {}, 15); });
    bench.add("set/sphere-maps", [&inputs](BenchRow& row) {
        fill_row(row, inputs.get_mesh("sphere"), {true, true, false}, 12);
    });
}
