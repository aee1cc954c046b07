#include <tools/qzpoly/pictures/image.h>

#include <tools/qzpoly/terminal/output_file.h>

#include <png.h>

#include <cmath>
#include <memory>

namespace {

unsigned char to_byte(float const& linear) {
    float const clamped = linear > 0.0f ? (linear < 1.0f ? linear : 1.0f) : 0.0f;
    return static_cast<unsigned char>(encode_srgb(clamped) * 255.0f + 0.5f);
}

}  // namespace

float decode_srgb(float const& value) {
    return value <= 0.04045f ? value / 12.92f : std::pow((value + 0.055f) / 1.055f, 2.4f);
}

float encode_srgb(float const& value) {
    return value <= 0.0031308f ? value * 12.92f : 1.055f * std::pow(value, 1.0f / 2.4f) - 0.055f;
}

ToolColor from_display(float const& red, float const& green, float const& blue) {
    return {decode_srgb(red), decode_srgb(green), decode_srgb(blue)};
}

void ToolImage::set_pixel(unsigned int const& x, unsigned int const& y, ToolColor const& color) {
    unsigned char* const pixel = &bytes[3 * (std::size_t(y) * width + x)];
    pixel[0] = to_byte(color.x);
    pixel[1] = to_byte(color.y);
    pixel[2] = to_byte(color.z);
}

bool write_png(ToolImage const& image, std::string const& path, ToolMessages& messages) {
    png_image png = {};
    png.version = PNG_IMAGE_VERSION;
    png.width = image.width;
    png.height = image.height;
    png.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(png);
    auto const bytes = std::make_unique_for_overwrite<unsigned char[]>(size);
    if (png_image_write_to_memory(&png, bytes.get(), &size, 0, image.bytes.data(), 0, nullptr) ==
        0) {
        messages.fail(png.message);
        return false;
    }
    return write_file(path, bytes.get(), size, messages);
}
