#pragma once

#include <platform/qz_gmath/export.h>
#include <platform/qz_gmath/gmath_lanes.h>

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
        GMathFloatLanes const scaled = gmath_absolute(values) * 32767.0f;
        GMathFloatLanes const clamped = gmath_lesser(scaled, gmath_spread(32767.0f));
        GMathIntLanes const whole = __builtin_convertvector(clamped, GMathIntLanes);
        GMathFloatLanes const rest = clamped - __builtin_convertvector(whole, GMathFloatLanes);
        GMathIntLanes const magnitude = whole - (rest >= 0.5f);  // which is -1 where it holds
        GMathIntLanes const sign = ((GMathIntLanes)values >> 16) & 0x8000;
        GMathIntLanes const result = (magnitude | sign) & (scaled >= 0.0f);  // not a NaN
        std::memcpy(halves, &result, sizeof result);
    }
    static float convert_normalized_half_to_float(unsigned short const& bits) {
        float const magnitude = static_cast<float>(bits & 0x7FFFu) / 32767.0f;
        return (bits & 0x8000u) != 0 ? -magnitude : magnitude;
    }

    static float convert_half_to_float(unsigned short const& bits);

    static Table const s_conv_ntof;  // normalised half to float
    static Table const s_conv_htof;  // half to float
};
