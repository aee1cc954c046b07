#pragma once

// The whole program; the result is its exit status.
int run_program(int const& argument_count, char const* const* arguments);
