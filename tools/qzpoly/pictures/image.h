#pragma once

#include <tools/qzpoly/terminal/messages.h>

#include <platform/qz_gmath.h>

#include <string>
#include <vector>

using ToolColor = GMathVec3<float>;  // red, green, blue; linear light, 1 is white

// The sRGB transfer functions of IEC 61966-2-1, for values in [0, 1].
float decode_srgb(float const& value);
float encode_srgb(float const& value);
// The light of a color that is given as it is displayed.
ToolColor from_display(float const& red, float const& green, float const& blue);

// A picture of 8 bits a channel, row by row from the top, red green blue.
struct ToolImage {
    unsigned int width = 0;
    unsigned int height = 0;
    std::vector<unsigned char> bytes;

    ToolImage() = default;
    ToolImage(unsigned int const& width_value, unsigned int const& height_value)
        : width(width_value), height(height_value), bytes(std::size_t(3) * width * height) {}

    // Colors outside [0, 1] are clamped; a NaN is black.
    void set_pixel(unsigned int const& x, unsigned int const& y, ToolColor const& color);
};

// Writes a PNG file: the same bytes for the same picture. False after the reason has been shown; a
// file of that name is then as it was.
bool write_png(ToolImage const& image, std::string const& path, ToolMessages& messages);
