#include <bench/report.h>
#include <bench/rows.h>

#include <benchmark/benchmark.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

struct Options {
    std::string input_folder = "bench-inputs";
    std::string json;
    std::string against;
    bool is_short = false;
    bool is_list = false;
    std::vector<std::string> names;  // parts of the names of rows; none: all rows
};

int parse(int const& argc, char** argv, Options& options) {
    CLI::App app("Measures this library beside others that do the same work.", "./dev bench");
    app.add_option("ROW", options.names, "Measure only rows with one of these in their names");
    app.add_flag("--short", options.is_short, "Smaller inputs, fewer repetitions");
    app.add_flag("--list", options.is_list, "Print the names of the rows and end");
    app.add_option("--json", options.json, "Write the results to this file");
    app.add_option("--against", options.against, "Tell what has changed since this file");
    app.add_option("--inputs", options.input_folder, "Where input files are made and kept");
    try {
        app.parse(argc, argv);
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    return -1;
}

bool is_wanted(std::string const& name, std::vector<std::string> const& parts) {
    for (std::string const& part : parts) {
        if (name.find(part) != std::string::npos) {
            return true;
        }
    }
    return parts.empty();
}

void add_all_rows(Bench& bench, BenchInputs& inputs) {
    add_obj_rows(bench, inputs);
    add_import_rows(bench, inputs);
    add_lwo_rows(bench, inputs);
    add_normal_rows(bench, inputs);
    add_triangulation_rows(bench);
    add_neighbour_rows(bench, inputs);
    add_smoothing_rows(bench, inputs);
    add_memory_rows(bench, inputs);  // before rays, since its children must not find threads
    add_ray_rows(bench, inputs);
    add_sampling_rows(bench, inputs);
    add_hash_rows(bench, inputs);
    add_set_rows(bench, inputs);
    add_thread_rows(bench, inputs);
    add_growth_rows(bench, inputs);
}

// Repetitions of the sides of a row take turns, in random order.
void set_up_turns() {
    char program[] = "bench", turns[] = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {program, turns, nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments);
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (int const status = parse(argc, argv, options); status >= 0) {
        return status;
    }
    BenchInputs inputs(options.input_folder, options.is_short);
    Bench bench;
    add_all_rows(bench, inputs);
    set_up_turns();
    std::vector<BenchRecord> records;
    if (!options.is_list) {
        print_header();
        if (!inputs.has("bunny")) {
            std::printf("no models in QZ_POLY_MODELS: their rows are left out\n");
        }
    }
    for (std::string const& name : bench.get_names()) {
        if (!is_wanted(name, options.names)) {
            continue;
        }
        if (options.is_list) {
            std::printf("%s\n", name.c_str());
            continue;
        }
        records.push_back(bench.run(name, options.is_short));
        print_record(records.back());
    }
    if (options.is_list) {
        return 0;
    }
    print_summary(records);
    bool const is_told =
        options.against.empty() || print_changes(options.against, records, options.is_short);
    bool const is_kept =
        options.json.empty() || write_json(options.json, records, options.is_short);
    bool const agrees = std::all_of(records.begin(), records.end(), [](BenchRecord const& record) {
        return record.disagreements.empty();
    });
    return is_told && is_kept && agrees ? 0 : 1;
}
