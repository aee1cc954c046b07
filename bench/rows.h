#pragma once

#include <bench/bench.h>
#include <bench/make_inputs.h>

// The rows, by subject. `inputs` must outlive the bench.

void add_obj_rows(Bench& bench, BenchInputs& inputs);
void add_normal_rows(Bench& bench, BenchInputs& inputs);
void add_neighbour_rows(Bench& bench, BenchInputs& inputs);
void add_triangulation_rows(Bench& bench);
