#pragma once

#include <CLI/CLI.hpp>

#include <string>

// A check of options: the fault of a number of the command line that is a NaN or infinite, which no
// check of a range finds; empty for others.
std::string check_finite(std::string const& text);

// Names the option --smooth of one angle in degrees, or of a list of them.
template <typename T>
CLI::Option* add_smooth_option(CLI::App& command, T& angles, std::string const& meaning) {
    return command.add_option("--smooth", angles, meaning)
        ->type_name("DEGREES")
        ->check(CLI::Range(0.0, 180.0))
        ->check(check_finite);
}

// Reads a command line; negative numbers may begin with a point, as in -.5, and the number of
// --ambient-occlusion may be left out.
void parse_arguments(CLI::App& app, std::vector<std::string> arguments);

// Ends the reading of the command line as wrong usage.
[[noreturn]] inline void refuse_option(std::string const& option, std::string const& reason) {
    throw CLI::ValidationError(option, reason);
}
