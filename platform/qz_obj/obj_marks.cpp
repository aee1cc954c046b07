#include <platform/qz_obj/obj_marks.h>

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr std::size_t step = 64;  // bytes marked at once

#if defined(__SSE2__)

void mark(char const* text, unsigned char* non_digits, unsigned char* word_ends) {
    __m128i const zero = _mm_set1_epi8('0');
    __m128i const nine = _mm_set1_epi8(9);
    __m128i const blank = _mm_set1_epi8(' ');
    std::uint64_t digit_bits = 0;
    std::uint64_t end_bits = 0;
    for (unsigned int i = 0; i < step; i += 16) {
        __m128i const bytes = _mm_loadu_si128(reinterpret_cast<__m128i const*>(text + i));
        // x <= y of unsigned bytes is min(x, y) == x.
        __m128i const values = _mm_sub_epi8(bytes, zero);
        __m128i const is_digit = _mm_cmpeq_epi8(_mm_min_epu8(values, nine), values);
        __m128i const is_end = _mm_cmpeq_epi8(_mm_min_epu8(bytes, blank), bytes);
        digit_bits |= std::uint64_t(unsigned(_mm_movemask_epi8(is_digit))) << i;
        end_bits |= std::uint64_t(unsigned(_mm_movemask_epi8(is_end))) << i;
    }
    digit_bits = ~digit_bits;
    std::memcpy(non_digits, &digit_bits, 8);
    std::memcpy(word_ends, &end_bits, 8);
}

#else

void mark(char const* text, unsigned char* non_digits, unsigned char* word_ends) {
    for (unsigned int i = 0; i < step; i += 8) {
        unsigned int digit_bits = 0;
        unsigned int end_bits = 0;
        for (unsigned int k = 0; k < 8; ++k) {
            unsigned char const byte = static_cast<unsigned char>(text[i + k]);
            digit_bits |= (byte - unsigned('0') <= 9u ? 1u : 0u) << k;
            end_bits |= (byte <= ' ' ? 1u : 0u) << k;
        }
        non_digits[i / 8] = static_cast<unsigned char>(~digit_bits);
        word_ends[i / 8] = static_cast<unsigned char>(end_bits);
    }
}

#endif

}  // namespace

void ObjMarks::init(char const* text, std::size_t const& capacity) {
    m_text = text;
    unsigned int const size = static_cast<unsigned int>((capacity + margin + step) / 8 + 16);
    m_non_digits.resize(size);
    m_word_ends.resize(size);
}

void ObjMarks::update(std::size_t const& begin, std::size_t const& end) {
    std::size_t const last = end + margin - step;  // the step that begins here is the last
    for (std::size_t at = begin / step * step; at <= last; at += step) {
        mark(m_text + at, m_non_digits.get_data() + at / 8, m_word_ends.get_data() + at / 8);
    }
}
