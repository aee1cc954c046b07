#pragma once

#include <bench/bench.h>

// What the bench tells: a table for people, JSON for the next run.

void print_header();
void print_record(BenchRecord const& record);
// How many bars were there and which were missed.
void print_summary(std::vector<BenchRecord> const& records);

// False, with a message, when the file cannot be written.
bool write_json(std::string const& path, std::vector<BenchRecord> const& records,
                bool const& is_short);
// Prints the results that the file has too and that have changed by more than the quartiles of
// either. False, with a message, when the file cannot be used: it must be of the same form.
bool print_changes(std::string const& path, std::vector<BenchRecord> const& records,
                   bool const& is_short);
