#include <platform/qz_obj/obj_plain_number.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int largest_exponent = 20;

constexpr double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9, 1e10,
                             1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20};
constexpr double inverse_powers[] = {1e-0,  1e-1,  1e-2,  1e-3,  1e-4,  1e-5,  1e-6,
                                     1e-7,  1e-8,  1e-9,  1e-10, 1e-11, 1e-12, 1e-13,
                                     1e-14, 1e-15, 1e-16, 1e-17, 1e-18, 1e-19, 1e-20};

// Reads what stands behind e: a sign or none, and one to three digits.
bool read_exponent(char const* at, char const* end, int& exponent) {
    bool const is_negative = *at == '-';
    at += *at == '-' || *at == '+' ? 1 : 0;
    int value = 0;
    if (end - at < 1 || end - at > 3) {
        return false;
    }
    for (; at < end; ++at) {
        unsigned int const digit = static_cast<unsigned char>(*at) - unsigned('0');
        if (digit > 9) {
            return false;
        }
        value = value * 10 + static_cast<int>(digit);
    }
    exponent = is_negative ? -value : value;
    return value <= largest_exponent;
}

}  // namespace

bool obj_read_long_number(char const* word, unsigned int const& length,
                          std::uint64_t const& non_digits, float& value) {
    unsigned int const is_negative = *word == '-' ? 1 : 0;
    std::uint64_t others = (non_digits & ((1ull << length) - 1)) ^ is_negative;
    std::uint64_t const end = 1ull << length;
    unsigned int const point = static_cast<unsigned int>(std::countr_zero(others | end));
    unsigned int const has_point = word[point] == '.' && point < length ? 1 : 0;
    others &= others - has_point;  // without the point, the lowest bit
    unsigned int const mantissa_end = static_cast<unsigned int>(std::countr_zero(others | end));
    int exponent = 0;
    if (mantissa_end < length &&
        ((word[mantissa_end] | 0x20) != 'e' ||
         !read_exponent(word + mantissa_end + 1, word + length, exponent))) {
        return false;
    }
    unsigned int const before_point = point - is_negative;
    unsigned int const count = mantissa_end - is_negative - has_point;
    if (count == 0 || before_point > obj_most_plain_digits) {
        return false;
    }
    ObjScale const& scale = obj_scale_table[before_point + 17 * is_negative];
    double result = obj_scale_digits(word + is_negative, before_point,
                                     std::min(count, obj_most_plain_digits), scale);
    // Digits that are left out add less than scale.low. That is no more than 1e-14 of the result,
    // 91 steps of its lowest bit, when the result is as large as this.
    bool const is_cut = count > obj_most_plain_digits;
    if (is_cut && !(std::abs(result) >= std::abs(scale.low) * 1e14)) {
        return false;
    }
    // The power and the product are each rounded once: 5 steps in all, 96 of a cut number.
    result *= exponent < 0 ? inverse_powers[-exponent] : powers[exponent];
    if (obj_is_near_half_way(result, is_cut ? 128 : 8)) {
        return false;
    }
    value = static_cast<float>(result);
    return true;
}
