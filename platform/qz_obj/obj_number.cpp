#include <platform/qz_obj/obj_number.h>

#include <algorithm>
#include <charconv>
#include <limits>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

bool is_digit(char const& byte) { return byte >= '0' && byte <= '9'; }

// 1.#INF, 1.#IND, 1.#QNAN and 1.#SNAN behind the sign, some with digits that pad the width.
bool parse_marked(std::string_view const& text, float& value) {
    if (text.substr(0, 4) == "1.#I" && text.substr(4, 2) == "NF") {
        value = infinity;
        return true;
    }
    value = std::numeric_limits<float>::quiet_NaN();
    return text.substr(0, 6) == "1.#IND" || text.substr(0, 7) == "1.#QNAN" ||
           text.substr(0, 7) == "1.#SNAN" || text.substr(0, 6) == "1.#NAN";
}

// Of a number that no float but 0 or infinity stands for: which of the two. The power of ten of its
// first digit that is not 0 tells.
float get_extreme(std::string_view const& text) {
    std::size_t const mantissa_end = std::min(text.find_first_of("eE"), text.size());
    std::string_view const mantissa = text.substr(0, mantissa_end);
    std::size_t const point = std::min(mantissa.find('.'), mantissa.size());
    std::size_t const first = mantissa.find_first_of("123456789");
    if (first == std::string_view::npos) {
        return 0.0f;
    }
    long long power = static_cast<long long>(point) - static_cast<long long>(first);
    if (mantissa_end < text.size()) {
        std::size_t at = mantissa_end + 1;
        bool const is_negative = at < text.size() && text[at] == '-';
        at += at < text.size() && (text[at] == '-' || text[at] == '+') ? 1 : 0;
        long long exponent = 0;
        for (; at < text.size() && is_digit(text[at]); ++at) {
            exponent = std::min(exponent * 10 + (text[at] - '0'), 1000000000000ll);
        }
        power += is_negative ? -exponent : exponent;
    }
    return power > 0 ? infinity : 0.0f;
}

}  // namespace

ObjNumber obj_parse_number(std::string_view const& word, float& value) {
    bool const is_signed = !word.empty() && (word[0] == '-' || word[0] == '+');
    bool const is_negative = is_signed && word[0] == '-';
    std::string_view const text = word.substr(is_signed ? 1 : 0);
    if (text.empty() || text[0] == '-') {
        return ObjNumber::NONE;
    }
    float magnitude = 0.0f;
    if (parse_marked(text, magnitude)) {
        value = is_negative ? -magnitude : magnitude;
        return ObjNumber::WHOLE;
    }
    char const* const end = text.data() + text.size();
    auto const result = std::from_chars(text.data(), end, magnitude);
    if (result.ec == std::errc::invalid_argument) {
        return ObjNumber::NONE;
    }
    if (result.ec == std::errc::result_out_of_range) {
        std::size_t const length = static_cast<std::size_t>(result.ptr - text.data());
        magnitude = get_extreme(text.substr(0, length));
    }
    if (result.ptr != end && !is_digit(text[0]) && text[0] != '.') {
        return ObjNumber::NONE;  // a word such as "nano", not a NaN with junk
    }
    value = is_negative ? -magnitude : magnitude;
    return result.ptr == end    ? ObjNumber::WHOLE
           : *result.ptr == ',' ? ObjNumber::WITH_COMMA
                                : ObjNumber::WITH_JUNK;
}
