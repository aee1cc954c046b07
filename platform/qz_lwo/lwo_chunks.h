#pragma once

#include <platform/qz_lwo/lwo_byte_reader.h>

// The four bytes of an identifier as one number.
constexpr unsigned int lwo_id(char const (&text)[5]) {
    unsigned int id = 0;
    for (unsigned int i = 0; i < 4; ++i) {
        id = id << 8 | static_cast<unsigned char>(text[i]);
    }
    return id;
}

constexpr unsigned int lwo_chunk_header_size = 8;

// Identifier (4 bytes), size (4 bytes), data, and a byte of padding after an odd size.
struct LwoChunk {
    unsigned int id = 0;
    unsigned long long offset = 0;  // of the header, from the start of the file
    LwoByteReader data;             // without the byte of padding
};

// Steps through the chunks that follow one another in `bytes`.
class LwoChunkReader {
  public:
    explicit LwoChunkReader(LwoByteReader const& bytes) : m_rest(bytes) {}

    // False at the end, and at a chunk that does not fit into the bytes left: `chunk` then has the
    // offset of that place, its identifier if there is one, and no data.
    bool next(LwoChunk& chunk);

    bool is_at_end() const { return m_rest.is_at_end(); }
    // The last chunk has an odd size and ends without its byte of padding.
    bool is_padding_missing() const { return m_is_padding_missing; }

  private:
    LwoByteReader m_rest;
    bool m_is_padding_missing = false;
};
