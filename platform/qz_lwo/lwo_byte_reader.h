#pragma once

#include <bit>
#include <cstddef>
#include <cstring>
#include <string_view>

// Reads big-endian numbers and strings from front to back and never past the end: an operation
// whose bytes are not all there returns false and leaves the reader where it was. A view: the bytes
// belong to somebody else.
class LwoByteReader {
  public:
    LwoByteReader() = default;
    LwoByteReader(unsigned char const* bytes, std::size_t const& size)
        : m_file(bytes), m_next(bytes), m_end(bytes + size) {}

    std::size_t get_left() const { return static_cast<std::size_t>(m_end - m_next); }
    bool is_at_end() const { return m_next == m_end; }
    // Of the next byte, from the start of the file.
    unsigned long long get_offset() const {
        return static_cast<unsigned long long>(m_next - m_file);
    }

    bool skip(std::size_t const& size) {
        if (size > get_left()) {
            return false;
        }
        m_next += size;
        return true;
    }

    // Hands the next `size` bytes to `part`, whose offsets stay those of the file.
    bool take(std::size_t const& size, LwoByteReader& part) {
        LwoByteReader const here = *this;
        if (!skip(size)) {
            return false;
        }
        part = here;
        part.m_end = m_next;
        return true;
    }

    bool read_u2(unsigned int& value) {
        if (get_left() < 2) {
            return false;
        }
        value = load_u2(m_next);
        m_next += 2;
        return true;
    }

    bool read_u4(unsigned int& value) {
        if (get_left() < 4) {
            return false;
        }
        value = load_u4(m_next);
        m_next += 4;
        return true;
    }

    // An index of 2 bytes, or of 3 behind a byte FF.
    bool read_index(unsigned int& value) {
        if (get_left() < 4) {
            return !is_at_end() && *m_next != 0xFF && read_u2(value);
        }
        unsigned int const word = load_u4(m_next);
        bool const is_long = word >= 0xFF000000u;
        value = is_long ? word & 0xFFFFFFu : word >> 16;
        m_next += is_long ? 4 : 2;
        return true;
    }

    template <unsigned int count>
    bool read_floats(float (&values)[count]) {
        if (get_left() < std::size_t(4) * count) {
            return false;
        }
        for (unsigned int i = 0; i < count; ++i) {
            values[i] = std::bit_cast<float>(load_u4(m_next + std::size_t(4) * i));
        }
        m_next += std::size_t(4) * count;
        return true;
    }

    // Bytes up to a NUL, and one more byte where that makes the length even. The last string of a
    // chunk may lack that byte, since the chunk has one of its own. `text` is followed by its NUL.
    bool read_string(std::string_view& text) {
        void const* const nul = is_at_end() ? nullptr : std::memchr(m_next, 0, get_left());
        if (!nul) {
            return false;
        }
        std::size_t const length =
            static_cast<std::size_t>(static_cast<unsigned char const*>(nul) - m_next);
        text = {reinterpret_cast<char const*>(m_next), length};
        m_next += length + 1;
        if (length % 2 == 0 && !is_at_end()) {
            ++m_next;
        }
        return true;
    }

  private:
    static unsigned int load_u2(unsigned char const* bytes) {
        return static_cast<unsigned int>(bytes[0] << 8 | bytes[1]);
    }
    static unsigned int load_u4(unsigned char const* bytes) {
        return load_u2(bytes) << 16 | load_u2(bytes + 2);
    }

    unsigned char const* m_file = nullptr;
    unsigned char const* m_next = nullptr;
    unsigned char const* m_end = nullptr;
};
