#include <platform/qz_lwo/lwo_form.h>

#include <algorithm>

namespace {

bool is_object_type(unsigned int const& type) {
    return type == lwo_id("LWOB") || type == lwo_id("LWLO") || type == lwo_id("LWO2") ||
           type == lwo_id("LWO3");
}

}  // namespace

bool lwo_is_form_header(unsigned char const* bytes, std::size_t const& size) {
    LwoByteReader reader(bytes, size);
    unsigned int id = 0;
    unsigned int form_size = 0;
    unsigned int type = 0;
    return reader.read_u4(id) && reader.read_u4(form_size) && reader.read_u4(type) &&
           id == lwo_id("FORM") && is_object_type(type);
}

unsigned long long lwo_get_form_end(unsigned char const* header) {
    LwoByteReader reader(header + 4, 4);
    unsigned int form_size = 0;
    reader.read_u4(form_size);
    return lwo_chunk_header_size + (static_cast<unsigned long long>(form_size) + form_size % 2);
}

bool lwo_read_form(unsigned char const* bytes, std::size_t const& size, LwoForm& form,
                   LwoReport& report) {
    LwoByteReader reader(bytes, size);
    LwoChunk chunk;
    unsigned int form_size = 0;
    if (size < lwo_form_header_size) {
        return report.refuse("not a LightWave object, it has fewer than 12 bytes");
    }
    if (!lwo_is_form_header(bytes, size)) {
        return report.refuse("not a LightWave object, its first 12 bytes are of another format");
    }
    reader.read_u4(chunk.id);
    reader.read_u4(form_size);
    if (form_size < 4) {
        return report.refuse(chunk, 4, "the form is too short for its own type");
    }
    form.is_one_byte_short = form_size == reader.get_left() + 1;
    if (form_size > reader.get_left() && !form.is_one_byte_short) {
        return report.refuse(chunk, 4, "the form reaches past the end of the file");
    }
    reader.take(std::min<std::size_t>(form_size, reader.get_left()), form.chunks);
    form.chunks.read_u4(form.type);
    if (reader.get_left() > form_size % 2) {
        report.warn(LwoReport::BYTES_AFTER_FORM, chunk, reader.get_offset());
    }
    return true;
}
