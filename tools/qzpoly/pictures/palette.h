#pragma once

#include <tools/qzpoly/pictures/image.h>

#include <array>
#include <vector>

constexpr unsigned int tool_palette_size = 256;

struct ToolPalette {
    std::array<std::array<unsigned char, 3>, tool_palette_size> colors{};
};

// Chooses the colors that a picture is shown with, by cutting the box of its colors where there are
// most; `numbers` gets that of each pixel, in a fixed pattern where colors lie between.
//
// P. Heckbert, "Color image quantization for frame buffer display", SIGGRAPH 1982.
ToolPalette choose_palette(ToolImage const& image, std::vector<unsigned char>& numbers);
