#pragma once

#include <platform/qz_lwo/lwo_byte_reader.h>
#include <platform/qz_lwo/lwo_report.h>

#include <cstddef>

constexpr unsigned int lwo_form_header_size = 12;

// The container of an object: "FORM" (4 bytes), the size of all that follows (4 bytes), its type
// (4 bytes), then chunks.
struct LwoForm {
    unsigned int type = 0;
    LwoByteReader chunks;
    // The form claims one byte more than there is: fine when that is the last byte of padding.
    bool is_one_byte_short = false;

    // Types LWOB and LWLO: surfaces are stored with the polygons, indices have 2 bytes.
    bool is_old() const { return type == lwo_id("LWOB") || type == lwo_id("LWLO"); }
    bool has_layers() const { return type != lwo_id("LWOB"); }
};

// `bytes` begin a form of one of the four types.
bool lwo_is_form_header(unsigned char const* bytes, std::size_t const& size);

// Bytes from the start of the file to the end of the form, its byte of padding included, as claimed
// by a header that `lwo_is_form_header` accepts.
unsigned long long lwo_get_form_end(unsigned char const* header);

// Checks the header and finds the chunks, which are not looked at.
bool lwo_read_form(unsigned char const* bytes, std::size_t const& size, LwoForm& form,
                   LwoReport& report);
