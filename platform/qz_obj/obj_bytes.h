#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

// What a byte means outside of names and comments. Bytes above 127 belong to words.
enum class ObjByte : unsigned char { WORD, BLANK, LINE_END, NUL, BACKSLASH, HASH };

inline constexpr std::array<ObjByte, 256> obj_byte_table = [] {
    std::array<ObjByte, 256> table{};
    table[' '] = table['\t'] = table['\v'] = table['\f'] = ObjByte::BLANK;
    table['\n'] = table['\r'] = ObjByte::LINE_END;
    table['\0'] = ObjByte::NUL;
    table['\\'] = ObjByte::BACKSLASH;
    table['#'] = ObjByte::HASH;
    return table;
}();

inline ObjByte obj_get_byte(char const* at) {
    return obj_byte_table[static_cast<unsigned char>(*at)];
}

inline bool obj_is_blank(char const* at) { return obj_get_byte(at) == ObjByte::BLANK; }
inline bool obj_is_line_end(char const* at) { return obj_get_byte(at) == ObjByte::LINE_END; }

inline char const* obj_skip_blanks(char const* at) {
    while (obj_is_blank(at)) {
        ++at;
    }
    return at;
}

// A keyword of `length` letters and a blank stand at `at`.
template <unsigned int length>
bool obj_is_keyword(char const* at, char const* keyword) {
    return std::memcmp(at, keyword, length) == 0 && (at[length] == ' ' || at[length] == '\t');
}

// The line end at `at`: LF, CR LF or CR alone. What follows a CR must be readable. A branch, so
// that the next line need not wait for these bytes.
inline char const* obj_skip_line_end(char const* at) {
    return *at == '\n' ? at + 1 : at[1] == '\n' ? at + 2 : at + 1;
}

// Eight bytes as a number whose lowest byte is the first, on every processor.
inline std::uint64_t obj_load_8(void const* at) {
    std::uint64_t word;
    std::memcpy(&word, at, 8);
    if constexpr (std::endian::native == std::endian::big) {
        std::uint64_t turned = 0;
        for (int i = 0; i < 8; ++i) {
            turned = turned << 8 | ((word >> (8 * i)) & 0xFF);
        }
        word = turned;
    }
    return word;
}

// The value of `count` decimal digits, 1 to 8; eight bytes must be readable. The shift puts zeros
// in front of the digits; each step then joins neighbours: digits to pairs, to fours, to all eight.
inline unsigned int obj_join_digits(char const* digits, unsigned int const& count) {
    std::uint64_t word = obj_load_8(digits) << (-8 * static_cast<int>(count) & 63);
    word = ((word & 0x0F0F0F0F0F0F0F0Full) * (10 * 256 + 1)) >> 8;
    word = ((word & 0x00FF00FF00FF00FFull) * (100 * 65536 + 1)) >> 16;
    word = ((word & 0x0000FFFF0000FFFFull) * (10000 * 4294967296ull + 1)) >> 32;
    return static_cast<unsigned int>(word);
}
