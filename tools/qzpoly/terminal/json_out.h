#pragma once

#include <platform/qz_gmath.h>

#include <nlohmann/json.hpp>

#include <string>

// An object whose members stay in the order in which they were added.
using ToolJson = nlohmann::ordered_json;

// Minimum and maximum corner; null for an empty box.
ToolJson make_json(GMathBbox3<double> const& box);

// Prints to stdout. Text that is not UTF-8 has the bytes in question replaced; numbers that are not
// finite become null.
void print_json(ToolJson const& json);
