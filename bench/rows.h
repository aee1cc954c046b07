#pragma once

#include <bench/bench.h>
#include <bench/make_inputs.h>

// The rows, by subject. `inputs` must outlive the bench.

void add_obj_rows(Bench& bench, BenchInputs& inputs);
void add_import_rows(Bench& bench, BenchInputs& inputs);
void add_lwo_rows(Bench& bench, BenchInputs& inputs);
void add_normal_rows(Bench& bench, BenchInputs& inputs);
void add_triangulation_rows(Bench& bench);
void add_neighbour_rows(Bench& bench, BenchInputs& inputs);
void add_smoothing_rows(Bench& bench, BenchInputs& inputs);
void add_ray_rows(Bench& bench, BenchInputs& inputs);
void add_sampling_rows(Bench& bench, BenchInputs& inputs);
void add_hash_rows(Bench& bench, BenchInputs& inputs);
void add_memory_rows(Bench& bench, BenchInputs& inputs);
void add_set_rows(Bench& bench, BenchInputs& inputs);
void add_thread_rows(Bench& bench, BenchInputs& inputs);
void add_growth_rows(Bench& bench, BenchInputs& inputs);
