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
    // Every `stride`-th of the numbers.
    EightNumbers(unsigned int const* numbers, unsigned int const& stride)
        : m_low(load(numbers, stride)), m_high(load(numbers + 4 * stride, stride)) {}

    // Bit k tells whether number k equals `number`.
    unsigned int get_equal_bits(unsigned int const& number) const {
        __m128i const all = _mm_set1_epi32(static_cast<int>(number));
        __m128i const words =
            _mm_packs_epi32(_mm_cmpeq_epi32(m_low, all), _mm_cmpeq_epi32(m_high, all));
        return static_cast<unsigned int>(_mm_movemask_epi8(_mm_packs_epi16(words, words))) & 0xFFu;
    }

  private:
    static __m128i load(unsigned int const* numbers, unsigned int const& stride) {
        return _mm_setr_epi32(static_cast<int>(numbers[0]), static_cast<int>(numbers[stride]),
                              static_cast<int>(numbers[2 * stride]),
                              static_cast<int>(numbers[3 * stride]));
    }

    __m128i m_low;
    __m128i m_high;
#else
    EightNumbers(unsigned int const* numbers, unsigned int const& stride)
        : m_numbers(numbers), m_stride(stride) {}

    unsigned int get_equal_bits(unsigned int const& number) const {
        unsigned int bits = 0;
        for (unsigned int k = 0; k < 8; ++k) {
            bits |= (m_numbers[k * m_stride] == number ? 1u : 0u) << k;
        }
        return bits;
    }

  private:
    unsigned int const* m_numbers;
    unsigned int m_stride;
#endif
};
