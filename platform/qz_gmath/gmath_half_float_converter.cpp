#include <platform/qz_gmath/gmath_half_float_converter.h>

#include <bit>

GMathHalfFloatConverter::Table::Table(float (*convert)(unsigned short const& bits)) {
    for (unsigned int bits = 0; bits < 65536; ++bits) {
        m_values[bits] = convert(static_cast<unsigned short>(bits));
    }
}

float GMathHalfFloatConverter::convert_half_to_float(unsigned short const& bits) {
    unsigned int const sign = (bits & 0x8000u) << 16;
    unsigned int const exponent = (bits >> 10) & 0x1Fu;
    unsigned int const fraction = bits & 0x3FFu;
    if (exponent == 0) {  // zero, or a subnormal: fraction * 2^-24, exact in a float
        float const magnitude = static_cast<float>(fraction) * 0x1p-24f;
        return sign != 0 ? -magnitude : magnitude;
    }
    unsigned int const wide_exponent = exponent == 31 ? 255u : exponent + 112u;
    return std::bit_cast<float>(sign | (wide_exponent << 23) | (fraction << 13));
}

GMathHalfFloatConverter::Table const
    GMathHalfFloatConverter::s_conv_ntof(convert_normalized_half_to_float);
GMathHalfFloatConverter::Table const GMathHalfFloatConverter::s_conv_htof(convert_half_to_float);
