#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Takes an input apart from front to back; behind its end there are zeros.
class ByteReader {
  public:
    ByteReader(std::uint8_t const* bytes, std::size_t const& size) : m_next(bytes), m_left(size) {}

    bool is_at_end() const { return m_left == 0; }

    template <typename T>
    T take() {
        T value{};
        std::size_t const size = std::min(m_left, sizeof value);
        if (size != 0) {
            std::memcpy(&value, m_next, size);
            m_next += size;
            m_left -= size;
        }
        return value;
    }

    // A number below `end`, which is at most 256 and not 0.
    unsigned int take_below(unsigned int const& end) { return take<std::uint8_t>() % end; }

  private:
    std::uint8_t const* m_next;
    std::size_t m_left;
};
