#include <platform/qz_lwo/lwo_surface_colors.h>

#include <platform/qz_lwo/lwo_form.h>

#include <bit>
#include <cstdint>

namespace {

constexpr unsigned int unnamed_id = lwo_id("    ");
constexpr unsigned int double_triple_size = 4 + 3 * 8;

struct Surface {
    std::string_view name;
    GMathVec3<float> color;
    bool has_color = false;
};

// LWOB and LWLO: a byte each of red, green and blue, and one that says nothing.
bool read_bytes(LwoByteReader& data, GMathVec3<float>& color) {
    unsigned int word = 0;
    if (!data.read_u4(word)) {
        return false;
    }
    auto const get_part = [&](unsigned int const& shift) {
        return static_cast<float>(word >> shift & 0xFF) / 255.0f;
    };
    color = {get_part(24), get_part(16), get_part(8)};
    return true;
}

bool read_floats(LwoByteReader& data, GMathVec3<float>& color) {
    float values[3];
    if (!data.read_floats(values)) {
        return false;
    }
    color = {values[0], values[1], values[2]};
    return true;
}

// LWO3: how many there are, which is 3, and as many doubles.
bool read_doubles(LwoByteReader& data, GMathVec3<float>& color) {
    unsigned int count = 0;
    if (data.get_left() != double_triple_size || !data.read_u4(count) || count != 3) {
        return false;
    }
    float values[3];
    for (float& value : values) {
        unsigned int high = 0;
        unsigned int low = 0;
        data.read_u4(high);
        data.read_u4(low);
        value =
            static_cast<float>(std::bit_cast<double>(static_cast<std::uint64_t>(high) << 32 | low));
    }
    color = {values[0], values[1], values[2]};
    return true;
}

// A chunk SURF: the name, in LWO2 that of its model too, then parts whose sizes have 2 bytes.
void read_surface(LwoByteReader data, bool const& is_old, Surface& surface) {
    std::string_view source;
    if (!data.read_string(surface.name) || (!is_old && !data.read_string(source))) {
        return;
    }
    unsigned int id = 0;
    unsigned int size = 0;
    LwoByteReader part;
    while (!surface.has_color && data.read_u4(id) && data.read_u2(size) && data.take(size, part)) {
        data.skip(size % 2);
        surface.has_color = id == lwo_id("COLR") && (is_old ? read_bytes(part, surface.color)
                                                            : read_floats(part, surface.color));
    }
}

// A form SURF of LWO3: the first unnamed chunk has the name, the color is the value of an entry
// "Color" somewhere inside. Stepping into every form makes one row of all chunks.
void read_surface_form(LwoByteReader data, Surface& surface) {
    std::string_view entry;
    unsigned int id = 0;
    unsigned int size = 0;
    LwoByteReader part;
    while (!surface.has_color && data.read_u4(id) && data.read_u4(size)) {
        if (id == lwo_id("FORM")) {
            data.skip(4);
            continue;
        }
        if (!data.take(size, part)) {
            return;
        }
        data.skip(size % 2);
        if (id == unnamed_id && surface.name.empty()) {
            part.read_string(surface.name);
        } else if (id == lwo_id("NAME")) {
            part.read_string(entry);
        } else if (id == unnamed_id && entry == "Color") {
            surface.has_color = read_doubles(part, surface.color);
        }
    }
}

}  // namespace

void lwo_read_surface_colors(unsigned char const* bytes, std::size_t const& size,
                             CoreArray<CoreString>& names, CoreArray<GMathVec3<float>>& colors) {
    if (!lwo_is_form_header(bytes, size)) {
        return;
    }
    LwoByteReader reader(bytes, size);
    LwoForm form;
    reader.skip(lwo_chunk_header_size);
    reader.read_u4(form.type);
    LwoChunkReader chunks(reader);
    LwoChunk chunk;
    while (chunks.next(chunk)) {
        Surface surface;
        unsigned int type = 0;
        if (chunk.id == lwo_id("SURF")) {
            read_surface(chunk.data, form.is_old(), surface);
        } else if (chunk.id == lwo_id("FORM") && chunk.data.read_u4(type) &&
                   type == lwo_id("SURF")) {
            read_surface_form(chunk.data, surface);
        }
        if (surface.has_color) {
            names.append(CoreString(surface.name));
            colors.append(surface.color);
        }
    }
}
