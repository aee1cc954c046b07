#pragma once

#include <platform/qz_obj/obj_bytes.h>

#include <array>
#include <bit>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Reads the numbers that files are made of, an optional minus and 1 to 16 digits with or without a
// point, in one straight run of instructions: digits differ too much for a branch to be foreseen.
//
// The digits, the point taken out, fill 16 places from the left, the rest being zeros. With d of
// them before the point the value is x = a * 10^(d-8) + b * 10^(d-16), where a and b are the two
// halves. That is computed in double as q. Both powers, both products and the sum are each rounded
// once, nothing cancels, so |q - x| <= 3 * 2^-53 * q, less than 3 steps of the lowest bit of q.
// Rounding q to float is then the same as rounding x, unless a value half way between two floats
// lies between them. Those have 1000... in the 29 bits that a float drops; when these bits of q are
// within 4 steps of it, the number is left to the slow reader. Every x but 0 lies in [1e-16, 1e16),
// far from the ends of the float range.

inline constexpr unsigned int obj_most_plain_digits = 16;

// The factors of a and b, by the number of digits before the point; the second half is negative.
struct alignas(16) ObjScale {
    double high;
    double low;
};

inline constexpr std::array<ObjScale, 34> obj_scale_table = [] {
    constexpr double powers[] = {1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8,
                                 1e-7,  1e-6,  1e-5,  1e-4,  1e-3,  1e-2,  1e-1,  1e0,  1e1,
                                 1e2,   1e3,   1e4,   1e5,   1e6,   1e7,   1e8};
    std::array<ObjScale, 34> table{};
    for (unsigned int i = 0; i <= obj_most_plain_digits; ++i) {
        table[i] = {powers[i + 8], powers[i]};
        table[i + 17] = {-powers[i + 8], -powers[i]};
    }
    return table;
}();

#if defined(__SSE2__)

// Read from place 16 - n on, n bytes have all these bits set, the others none.
constexpr std::array<unsigned char, 32> obj_make_masks(unsigned char const& bits) {
    std::array<unsigned char, 32> masks{};
    for (unsigned int i = 0; i < 16; ++i) {
        masks[i] = bits;
    }
    return masks;
}
inline constexpr std::array<unsigned char, 32> obj_byte_masks = obj_make_masks(0xFF);
inline constexpr std::array<unsigned char, 32> obj_digit_masks = obj_make_masks(0x0F);

// a * scale.high + b * scale.low of `count` digits, `before_point` of them before the point.
// 17 bytes must be readable.
inline double obj_scale_digits(char const* digits, unsigned int const& before_point,
                               unsigned int const& count, ObjScale const& scale) {
    auto const load = [](void const* at) {
        return _mm_loadu_si128(static_cast<__m128i const*>(at));
    };
    __m128i const is_before = load(obj_byte_masks.data() + 16 - before_point);
    __m128i const is_digit = load(obj_digit_masks.data() + 16 - count);
    // Bytes behind the point move up by one; 0x0F makes digits of bytes.
    __m128i const joined = _mm_or_si128(_mm_and_si128(is_before, load(digits)),
                                        _mm_andnot_si128(is_before, load(digits + 1)));
    __m128i const ones = _mm_and_si128(joined, is_digit);
    // Digits 0, 2, 4... and 1, 3, 5... in 16 bits each, then numbers of four digits in 32 bits.
    __m128i const even = _mm_and_si128(ones, _mm_set1_epi16(0xFF));
    __m128i const odd = _mm_srli_epi16(ones, 8);
    __m128i const fours = _mm_add_epi32(_mm_madd_epi16(even, _mm_set1_epi32(1000 | 10 << 16)),
                                        _mm_madd_epi16(odd, _mm_set1_epi32(100 | 1 << 16)));
    __m128i const packed = _mm_packs_epi32(fours, fours);
    __m128i const eights = _mm_madd_epi16(packed, _mm_set1_epi32(10000 | 1 << 16));
    __m128d const parts = _mm_mul_pd(_mm_cvtepi32_pd(eights), _mm_load_pd(&scale.high));
    return _mm_cvtsd_f64(_mm_add_sd(parts, _mm_unpackhi_pd(parts, parts)));
}

#else

inline double obj_scale_digits(char const* digits, unsigned int const& before_point,
                               unsigned int const& count, ObjScale const& scale) {
    unsigned int halves[2] = {0, 0};
    for (unsigned int i = 0; i < obj_most_plain_digits; ++i) {
        char const digit = i < count ? digits[i < before_point ? i : i + 1] : '0';
        halves[i / 8] = halves[i / 8] * 10 + static_cast<unsigned int>(digit - '0');
    }
    return halves[0] * scale.high + halves[1] * scale.low;
}

#endif

// A value half way between two floats lies within `slack` steps of the lowest bit of `value`.
inline bool obj_is_near_half_way(double const& value, std::uint64_t const& slack) {
    constexpr std::uint64_t dropped_bits = (1ull << 29) - 1;
    constexpr std::uint64_t half_way = 1ull << 28;
    std::uint64_t const bits = std::bit_cast<std::uint64_t>(value);
    return ((bits - (half_way - slack)) & dropped_bits) <= 2 * slack;
}

// Reads the word of `length` bytes at `word`, 0 to 63, if it is such a number; false leaves `value`
// alone. `non_digits` has its bit i set where byte i is no digit, the byte behind the word
// included. 64 bytes must be readable.
inline bool obj_read_plain_number(char const* word, unsigned int const& length,
                                  std::uint64_t const& non_digits, float& value) {
    unsigned int const is_negative = *word == '-' ? 1 : 0;
    std::uint64_t const end = 1ull << length;
    std::uint64_t const others = (non_digits & (end - 1)) ^ is_negative;  // beside the minus
    unsigned int const point = static_cast<unsigned int>(std::countr_zero(others | end));
    unsigned int const has_point = others != 0 ? 1 : 0;
    unsigned int const before_point = point - is_negative;
    unsigned int const count = length - is_negative - has_point;
    // All digits, but for at most one other byte, the point. One test for all: see above.
    bool const is_odd = ((others & (others - 1)) != 0) | ((word[point] != '.') & (has_point != 0)) |
                        (count - 1 >= obj_most_plain_digits);
    if (is_odd) [[unlikely]] {
        return false;
    }
    double const result = obj_scale_digits(word + is_negative, before_point, count,
                                           obj_scale_table[before_point + 17 * is_negative]);
    if (obj_is_near_half_way(result, 4)) [[unlikely]] {
        return false;
    }
    value = static_cast<float>(result);
    return true;
}

// The same for numbers of more digits, of which the first 16 are taken, and with exponents up
// to 20. When it returns false, there may still be a number.
bool obj_read_long_number(char const* word, unsigned int const& length,
                          std::uint64_t const& non_digits, float& value);
