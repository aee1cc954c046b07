#pragma once

#include <platform/qz_gmath/export.h>
#include <platform/qz_gmath/gmath_float_lanes.h>

// Conversions between floats and 16-bit forms.
//
// A normalised half has a sign bit (0x8000) and a 15-bit magnitude m, and means sign * m / 32767.
// A half is the IEEE 754 binary16 format.
class QZ_GMATH_EXPORT GMathHalfFloatConverter {
  public:
    // All 65,536 values of a conversion, indexed by the 16 bits.
    class QZ_GMATH_EXPORT Table {
      public:
        explicit Table(float (*convert)(unsigned short const& bits));
        float const& operator[](unsigned short const& bits) const { return m_values[bits]; }

      private:
        float m_values[65536];
    };

    // |value| * 32767 in float, rounded half away from zero and clamped to 32767. The sign bit is
    // that of the value, also when the magnitude is 0; a NaN gives 0.
    static unsigned short convert_float_to_normalized_half(float const& value) {
        float const scaled = (value < 0.0f ? -value : value) * 32767.0f;
        if (scaled != scaled) {
            return 0;
        }
        float const clamped = scaled < 32767.0f ? scaled : 32767.0f;
        unsigned int magnitude = static_cast<unsigned int>(clamped);
        magnitude += clamped - static_cast<float>(magnitude) >= 0.5f ? 1u : 0u;
        return static_cast<unsigned short>(magnitude | (__builtin_signbit(value) ? 0x8000u : 0u));
    }
    // The same of four floats.
    static void convert_floats_to_normalized_halves(GMathFloatLanes const& values,
                                                    unsigned int (&halves)[4]) {
#if QZ_GMATH_HAS_SSE2
        __m128 const scaled = _mm_mul_ps(values.get_absolute().get_lanes(), _mm_set1_ps(32767.0f));
        __m128 const clamped = _mm_min_ps(scaled, _mm_set1_ps(32767.0f));
        __m128i const whole = _mm_cvttps_epi32(clamped);
        __m128 const rest = _mm_sub_ps(clamped, _mm_cvtepi32_ps(whole));
        __m128 const is_upper = _mm_cmpge_ps(rest, _mm_set1_ps(0.5f));  // all bits: -1
        __m128i const magnitude = _mm_sub_epi32(whole, _mm_castps_si128(is_upper));
        __m128i const sign = _mm_and_si128(_mm_srli_epi32(_mm_castps_si128(values.get_lanes()), 16),
                                           _mm_set1_epi32(0x8000));
        __m128i const is_number = _mm_castps_si128(_mm_cmpord_ps(scaled, scaled));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(halves),
                         _mm_and_si128(_mm_or_si128(magnitude, sign), is_number));
#else
        float lanes[4];
        values.store(lanes);
        for (unsigned int k = 0; k < 4; ++k) {
            halves[k] = convert_float_to_normalized_half(lanes[k]);
        }
#endif
    }
    static float convert_normalized_half_to_float(unsigned short const& bits) {
        float const magnitude = static_cast<float>(bits & 0x7FFFu) / 32767.0f;
        return (bits & 0x8000u) != 0 ? -magnitude : magnitude;
    }

    static float convert_half_to_float(unsigned short const& bits);

    static Table const s_conv_ntof;  // normalised half to float
    static Table const s_conv_htof;  // half to float
};
