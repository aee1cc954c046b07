#include <tools/qzpoly/pictures/texture.h>

#include <tools/qzpoly/models/input_file.h>
#include <tools/qzpoly/terminal/messages.h>

#include <png.h>

#include <array>
#include <cmath>

namespace {

constexpr std::size_t largest_file = std::size_t(1) << 28;  // bytes
constexpr std::size_t most_unpacked = 1032;  // bytes of one, as deflate can; a byte has 8 pixels

std::array<float, 256> make_light_table() {
    std::array<float, 256> table{};
    for (unsigned int i = 0; i < table.size(); ++i) {
        table[i] = decode_srgb(static_cast<float>(i) / 255.0f);
    }
    return table;
}

// A place along one side of a picture: the pixels before and behind it, and how far it is between.
struct Step {
    unsigned int before;
    unsigned int behind;
    float share;
};

Step find_step(double const& value, unsigned int const& count) {
    double const turned = value - std::floor(value);
    double const place = turned * count - 0.5;
    double const floor = std::floor(place);
    double const first = floor < 0 ? count - 1.0 : floor;
    unsigned int const before = std::min(static_cast<unsigned int>(first), count - 1);
    return {before, before + 1 == count ? 0 : before + 1, static_cast<float>(place - floor)};
}

bool decode(png_image& png, std::string const& bytes, std::size_t const& largest_size,
            ToolImage& image, std::string& reason) {
    if (png_sig_cmp(reinterpret_cast<png_const_bytep>(bytes.data()), 0, bytes.size()) != 0) {
        reason = "not a PNG file, and only those are read";
        return false;
    }
    if (png_image_begin_read_from_memory(&png, bytes.data(), bytes.size()) == 0) {
        reason = png.message;
        return false;
    }
    if (std::size_t(png.width) * png.height > largest_size) {
        reason = make_text("more pixels than there is room for: ", png.width, " x ", png.height);
        return false;
    }
    if (std::size_t(png.width) * png.height / 8 > bytes.size() * most_unpacked) {
        reason = make_text("too short for ", png.width, " x ", png.height, " pixels");
        return false;
    }
    png.format = PNG_FORMAT_RGB;
    image = ToolImage(png.width, png.height);
    png_color const white = {255, 255, 255};
    if (png_image_finish_read(&png, &white, image.bytes.data(), 0, nullptr) == 0) {
        reason = png.message;
        return false;
    }
    return true;
}

}  // namespace

ToolColor ToolTexture::get_pixel(unsigned int const& x, unsigned int const& y) const {
    static std::array<float, 256> const s_light = make_light_table();
    unsigned char const* const pixel = &m_image.bytes[3 * (std::size_t(y) * m_image.width + x)];
    return {s_light[pixel[0]], s_light[pixel[1]], s_light[pixel[2]]};
}

ToolColor ToolTexture::get_color(double const& u, double const& v) const {
    Step const x = find_step(u, m_image.width);
    Step const y = find_step(-v, m_image.height);
    ToolColor const above =
        get_pixel(x.before, y.before) * (1 - x.share) + get_pixel(x.behind, y.before) * x.share;
    ToolColor const below =
        get_pixel(x.before, y.behind) * (1 - x.share) + get_pixel(x.behind, y.behind) * x.share;
    return above * (1 - y.share) + below * y.share;
}

std::shared_ptr<ToolTexture const> load_texture(std::string const& path,
                                                std::size_t const& largest_size, std::size_t& size,
                                                std::string& reason) {
    std::string bytes;
    reason = read_input_file(path, largest_file, bytes);
    if (!reason.empty()) {
        return nullptr;
    }
    png_image png = {};
    png.version = PNG_IMAGE_VERSION;
    ToolImage image;
    bool const is_good = decode(png, bytes, largest_size, image, reason);
    png_image_free(&png);
    size = std::size_t(image.width) * image.height;
    return is_good ? std::make_shared<ToolTexture const>(std::move(image)) : nullptr;
}
