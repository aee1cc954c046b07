#pragma once

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define QZ_POLY_HAS_SSE2 1
#else
#define QZ_POLY_HAS_SSE2 0
#endif

// Eight numbers that are compared side by side. Both bodies give the same bits.
class EightNumbers {
  public:
#if QZ_POLY_HAS_SSE2
    explicit EightNumbers(unsigned int const* numbers)
        : m_low(_mm_loadu_si128(reinterpret_cast<__m128i const*>(numbers))),
          m_high(_mm_loadu_si128(reinterpret_cast<__m128i const*>(numbers + 4))) {}

    // Bit k tells whether number k equals `number`.
    unsigned int get_equal_bits(unsigned int const& number) const {
        __m128i const all = _mm_set1_epi32(static_cast<int>(number));
        __m128i const words =
            _mm_packs_epi32(_mm_cmpeq_epi32(m_low, all), _mm_cmpeq_epi32(m_high, all));
        return static_cast<unsigned int>(_mm_movemask_epi8(_mm_packs_epi16(words, words))) & 0xFFu;
    }

  private:
    __m128i m_low;
    __m128i m_high;
#else
    explicit EightNumbers(unsigned int const* numbers) : m_numbers(numbers) {}

    unsigned int get_equal_bits(unsigned int const& number) const {
        unsigned int bits = 0;
        for (unsigned int k = 0; k < 8; ++k) {
            bits |= (m_numbers[k] == number ? 1u : 0u) << k;
        }
        return bits;
    }

  private:
    unsigned int const* m_numbers;
#endif
};
