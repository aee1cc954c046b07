#include <bench/bench.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>

namespace {

// Collects the seconds of every repetition, by side.
class Collector : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(Context const&) override { return true; }
    void ReportRuns(std::vector<Run> const& runs) override {
        for (Run const& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                double const total =
                    m_is_clock_time ? run.real_accumulated_time : run.cpu_accumulated_time;
                m_seconds[run.run_name.function_name].push_back(
                    total / static_cast<double>(run.iterations));
            }
        }
    }

    explicit Collector(bool const& is_clock_time) : m_is_clock_time(is_clock_time) {}

    // The quartiles of the repetitions of a side.
    BenchNumber get_quartiles(std::string const& side) {
        std::vector<double>& seconds = m_seconds[side];
        std::sort(seconds.begin(), seconds.end());
        auto const get = [&](double const& part) {
            double const place = part * static_cast<double>(seconds.size() - 1);
            std::size_t const below = static_cast<std::size_t>(place);
            std::size_t const above = std::min(below + 1, seconds.size() - 1);
            return std::lerp(seconds[below], seconds[above], place - static_cast<double>(below));
        };
        return seconds.empty() ? BenchNumber() : BenchNumber{get(0.25), get(0.5), get(0.75)};
    }

  private:
    bool m_is_clock_time;
    std::map<std::string, std::vector<double>> m_seconds;
};

BenchNumber divide(BenchNumber const& a, BenchNumber const& b) {
    return {a.low / b.high, a.median / b.median, a.high / b.low};
}

BenchNumber get_exponent(BenchSide const& small, BenchSide const& large) {
    BenchNumber const times = divide(large.seconds, small.seconds);
    double const sizes = std::log(large.size / small.size);
    return {std::log(times.low) / sizes, std::log(times.median) / sizes,
            std::log(times.high) / sizes};
}

// Calls every side once, which warms it up and leaves results to compare. Returns the seconds of
// the slowest.
double warm_up(std::list<BenchSide> const& sides) {
    double slowest = 0;
    for (BenchSide const& side : sides) {
        auto const start = std::chrono::steady_clock::now();
        side.work();
        std::chrono::duration<double> const time = std::chrono::steady_clock::now() - start;
        slowest = std::max(slowest, time.count());
    }
    return slowest;
}

void measure(std::list<BenchSide>& sides, bool const& is_clock_time, bool const& is_short) {
    double const slowest = warm_up(sides);
    int const repetitions = is_short ? (slowest < 0.3 ? 7 : 3) : (slowest < 1 ? 15 : 5);
    for (BenchSide const& side : sides) {
        auto* const entry = benchmark::RegisterBenchmark(
            side.name.c_str(), [&work = side.work](benchmark::State& state) {
                for ([[maybe_unused]] auto const& _ : state) {
                    work();
                    benchmark::ClobberMemory();
                }
            });
        entry->Repetitions(repetitions)->MinTime(is_short ? 0.02 : 0.1);
        is_clock_time ? entry->UseRealTime() : entry->MeasureProcessCPUTime();
    }
    Collector collector(is_clock_time);
    benchmark::RunSpecifiedBenchmarks(&collector, ".");
    benchmark::ClearRegisteredBenchmarks();
    for (BenchSide& side : sides) {
        side.seconds = collector.get_quartiles(side.name);
    }
}

}  // namespace

BenchSide& BenchRow::add_side(std::string const& name, BenchWork const& work) {
    return m_sides.emplace_back(BenchSide{name, work, 0, {}});
}

void BenchRow::peer(std::string const& name, BenchWork const& work, BenchBar const& bar) {
    m_peers.push_back({&add_side(name, work), bar});
}

void BenchRow::at_size(double const& size, BenchWork const& work) {
    add_side(std::to_string(static_cast<unsigned long long>(size)), work).size = size;
}

void BenchRow::number(std::string const& what, double const& value, BenchBar const& bar) {
    m_results.push_back({what, {value, value, value}, bar});
}

void BenchRow::agree(std::string const& what, std::function<bool()> const& check) {
    m_checks.push_back({what, check});
}

std::vector<std::string> Bench::get_names() const {
    std::vector<std::string> names;
    for (Row const& row : m_rows) {
        names.push_back(row.name);
    }
    return names;
}

BenchRecord Bench::run(std::string const& name, bool const& is_short) const {
    BenchRow row;
    std::find_if(m_rows.begin(), m_rows.end(), [&](Row const& r) {
        return r.name == name;
    })->make(row);
    if (!row.m_sides.empty()) {
        measure(row.m_sides, row.m_is_clock_time, is_short);
    }
    for (BenchRow::Peer const& peer : row.m_peers) {
        BenchNumber const& own = row.m_sides.front().seconds;
        BenchNumber const& other = peer.side->seconds;
        bool const is_share = peer.bar.sense == BenchBar::AT_MOST;
        row.m_results.push_back(
            {peer.side->name, is_share ? divide(own, other) : divide(other, own), peer.bar});
    }
    for (BenchBar const& bar : row.m_growth) {
        auto const large = std::prev(row.m_sides.end());
        row.m_results.push_back({"growth", get_exponent(*std::prev(large), *large), bar});
    }
    BenchRecord record{name, {}, row.m_results, {}, row.m_missing, row.m_notes};
    for (BenchRow::Check const& check : row.m_checks) {
        if (!check.is_met()) {
            record.disagreements.push_back(check.what);
        }
    }
    for (BenchSide const& side : row.m_sides) {
        record.sides.push_back({side.name, nullptr, side.size, side.seconds});
    }
    return record;
}
