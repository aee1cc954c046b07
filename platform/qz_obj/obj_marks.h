#pragma once

#include <platform/qz_core.h>
#include <platform/qz_obj/obj_bytes.h>

#include <cstddef>
#include <cstdint>

// Two bits for each byte of a text: not a digit, and no part of a word (a blank, a control
// character). Made for a whole block at a time, they find the ends of numbers without a branch per
// byte, and without waiting for one number's bytes before the next can be looked for.
class ObjMarks {
  public:
    // Bytes past a marked text that must be readable, and that are marked too.
    static constexpr std::size_t margin = 128;

    // `text` may have up to `capacity` bytes.
    void init(char const* text, std::size_t const& capacity);
    // Marks bytes `begin` to `end`, offsets into the text, and the margin behind them.
    void update(std::size_t const& begin, std::size_t const& end);

    // Bit 0 belongs to the byte at `at`; at least the lowest 57 bits are meant, others are 0.
    std::uint64_t get_non_digits(char const* at) const { return get(m_non_digits, at); }
    std::uint64_t get_word_ends(char const* at) const { return get(m_word_ends, at); }

  private:
    std::uint64_t get(CoreArray<unsigned char> const& bits, char const* at) const {
        std::size_t const offset = static_cast<std::size_t>(at - m_text);
        return obj_load_8(bits.get_data() + (offset >> 3)) >> (offset & 7);
    }

    char const* m_text = nullptr;
    CoreArray<unsigned char> m_non_digits;
    CoreArray<unsigned char> m_word_ends;
};
