#include <bench/report.h>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <ctime>
#include <fstream>
#include <thread>

namespace {

using Json = nlohmann::ordered_json;

std::string format(char const* pattern, double const& value) {
    char text[64];
    std::snprintf(text, sizeof text, pattern, value);
    return text;
}

std::string format_time(double const& seconds) {
    return seconds < 1e-3 ? format("%.3g us", seconds * 1e6)
           : seconds < 1  ? format("%.3g ms", seconds * 1e3)
                          : format("%.3g s", seconds);
}

std::string format_value(double const& value) {
    return format(value < 100 ? "%.3g" : "%.0f", value);
}

std::string format_bar(BenchBar const& bar) {
    char const* const sign = bar.sense == BenchBar::AT_LEAST ? ">= " : "<= ";
    return bar.sense == BenchBar::SHOWN ? "" : sign + format("%g", bar.limit);
}

// One line of the whole: "Intel(R) Xeon(R), 2 threads, gcc 12.2.0".
std::string describe_machine() {
    std::string model = "unknown processor";
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("model name")) {
            model = line.substr(line.find(':') + 2);
            break;
        }
    }
    return model + ", " + std::to_string(std::thread::hardware_concurrency()) + " threads, gcc " +
           __VERSION__;
}

std::string get_date() {
    std::time_t const now = std::time(nullptr);
    char text[16];
    std::strftime(text, sizeof text, "%Y-%m-%d", std::localtime(&now));
    return text;
}

bool is_held(BenchRecord const& record, BenchResult const& result) {
    return record.disagreements.empty() && result.bar.is_held_by(result.value.median);
}

char const* get_verdict(BenchRecord const& record, BenchResult const& result) {
    return result.bar.sense == BenchBar::SHOWN ? "" : is_held(record, result) ? "held" : "MISSED";
}

Json make_json(BenchNumber const& number) { return {number.low, number.median, number.high}; }

Json make_json(BenchRecord const& record) {
    Json json{{"name", record.name}};
    for (BenchSide const& side : record.sides) {
        Json entry{{"name", side.name}, {"seconds", make_json(side.seconds)}};
        if (side.size > 0) {
            entry["size"] = side.size;
        }
        json["sides"].push_back(entry);
    }
    for (BenchResult const& result : record.results) {
        Json entry{{"against", result.against}, {"value", make_json(result.value)}};
        if (result.bar.sense != BenchBar::SHOWN) {
            entry["bar"] = format_bar(result.bar);
            entry["held"] = is_held(record, result);
        }
        json["results"].push_back(entry);
    }
    json["disagreements"] = record.disagreements;
    json["missing"] = record.missing;
    json["notes"] = record.notes;
    return json;
}

// The quartiles of the result in question; null when the run lacks it.
Json find_value(Json const& run, std::string const& name, std::string const& against) {
    for (Json const& row : run["rows"]) {
        if (row["name"] == name && row.contains("results")) {
            for (Json const& result : row["results"]) {
                if (result["against"] == against) {
                    return result["value"];
                }
            }
        }
    }
    return nullptr;
}

}  // namespace

void print_header() {
    std::printf("%s, %s\n\n", get_date().c_str(), describe_machine().c_str());
    std::printf("%-34s %-22s %8s %16s  %-8s %-7s %s\n", "row", "against", "measured", "quartiles",
                "bar", "", "times of one call");
}

void print_record(BenchRecord const& record) {
    for (BenchResult const& result : record.results) {
        bool const is_timed = result.value.low < result.value.high;
        std::string const spread =
            is_timed ? format_value(result.value.low) + " - " + format_value(result.value.high)
                     : "";
        std::string times;
        for (BenchSide const& side : record.sides) {
            bool const is_shown = is_timed && (&side == record.sides.data() ||
                                               side.name == result.against || side.size > 0);
            times += is_shown ? (times.empty() ? "" : ", ") + format_time(side.seconds.median) : "";
        }
        std::printf("%-34s %-22s %8s %16s  %-8s %-7s %s\n", record.name.c_str(),
                    result.against.c_str(), format_value(result.value.median).c_str(),
                    spread.c_str(), format_bar(result.bar).c_str(), get_verdict(record, result),
                    times.c_str());
    }
    for (std::string const& what : record.disagreements) {
        std::printf("    THE RESULTS DISAGREE: %s\n", what.c_str());
    }
    for (std::string const& peer : record.missing) {
        std::printf("%-34s %-22s is not installed: left out\n", record.name.c_str(), peer.c_str());
    }
    for (std::string const& note : record.notes) {
        std::printf("    %s\n", note.c_str());
    }
    std::fflush(stdout);
}

void print_summary(std::vector<BenchRecord> const& records) {
    unsigned int bar_count = 0, held_count = 0;
    for (BenchRecord const& record : records) {
        for (BenchResult const& result : record.results) {
            bar_count += result.bar.sense != BenchBar::SHOWN;
            held_count += result.bar.sense != BenchBar::SHOWN && is_held(record, result);
        }
    }
    std::printf("\n%u of %u bars held\n", held_count, bar_count);
}

bool write_json(std::string const& path, std::vector<BenchRecord> const& records,
                bool const& is_short) {
    Json run{{"date", get_date()}, {"machine", describe_machine()}, {"short", is_short}};
    run["rows"] = Json::array();
    for (BenchRecord const& record : records) {
        run["rows"].push_back(make_json(record));
    }
    std::ofstream file(path);
    file << run.dump(1) << '\n';
    if (!file.flush()) {
        std::fprintf(stderr, "cannot write %s\n", path.c_str());
        return false;
    }
    return true;
}

bool print_changes(std::string const& path, std::vector<BenchRecord> const& records,
                   bool const& is_short) {
    std::ifstream file(path);
    Json const run = Json::parse(file, nullptr, false);
    if (!run.is_object() || run.value("short", !is_short) != is_short || !run.contains("rows")) {
        std::fprintf(stderr, "%s is no %s run\n", path.c_str(), is_short ? "short" : "long");
        return false;
    }
    unsigned int count = 0, change_count = 0;
    std::printf("\nagainst %s, %s:\n", run.value("date", "?").c_str(),
                run.value("machine", "?").c_str());
    for (BenchRecord const& record : records) {
        for (BenchResult const& result : record.results) {
            Json const old = find_value(run, record.name, result.against);
            if (!old.is_array() || old.size() != 3) {
                continue;
            }
            ++count;
            if (result.value.low > old[2] || result.value.high < old[0]) {
                ++change_count;
                std::printf("%-34s %-22s %s, was %s (%s - %s)\n", record.name.c_str(),
                            result.against.c_str(), format_value(result.value.median).c_str(),
                            format_value(old[1]).c_str(), format_value(old[0]).c_str(),
                            format_value(old[2]).c_str());
            }
        }
    }
    std::printf("%u of %u results have changed\n", change_count, count);
    return true;
}
