#pragma once

#include <tools/qzpoly/pictures/image.h>

#include <memory>
#include <string>

// A picture laid over a surface; it repeats beyond 0 to 1.
class ToolTexture {
  public:
    explicit ToolTexture(ToolImage&& image) : m_image(std::move(image)) {}

    // Between the four pixels around (u, v); v runs upwards. Both are finite.
    ToolColor get_color(double const& u, double const& v) const;

  private:
    ToolColor get_pixel(unsigned int const& x, unsigned int const& y) const;

    ToolImage m_image;
};

constexpr std::size_t tool_largest_texture = std::size_t(1) << 26;  // pixels

// Reads a PNG file of up to `largest_size` pixels; what is transparent becomes white. Null, with
// the reason, when it cannot be read.
std::shared_ptr<ToolTexture const> load_texture(std::string const& path,
                                                std::size_t const& largest_size, std::size_t& size,
                                                std::string& reason);
