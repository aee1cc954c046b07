#pragma once

#include <tools/qzpoly/pictures/image.h>

#include <string_view>

// Letters in pictures: 5 x 8 squares of `scale` pixels, the lowest row for descenders.
constexpr unsigned int tool_letter_height = 8;
constexpr unsigned int tool_letter_advance = 6;

// What reaches past the picture is cut off. Bytes other than printable ASCII are boxes.
void draw_text(ToolImage& image, std::string_view const& text, unsigned int const& left,
               unsigned int const& top, unsigned int const& scale, ToolColor const& color);

void fill(ToolImage& image, unsigned int const& left, unsigned int const& top,
          unsigned int const& width, unsigned int const& height, ToolColor const& color);
