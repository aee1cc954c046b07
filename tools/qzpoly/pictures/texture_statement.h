#pragma once

#include <platform/qz_gmath.h>

#include <string>
#include <string_view>

// What a material library says of a texture.
struct ToolTextureStatement {
    std::string path;               // as it stands there, blanks and all; empty: none
    GMathVec2<float> scale{1, 1};   // of uv coordinates, finite
    GMathVec2<float> offset{0, 0};  // of scaled uv coordinates, finite
};

// Reads what follows `map_Kd`: options, of which -s and -o count, and the path. Of -s, -o and -t,
// whose last numbers may be left out, only words that are numbers are taken.
ToolTextureStatement read_texture_statement(std::string_view text);
