#pragma once

#include <platform/qz_core.h>
#include <platform/qz_gmath/gmath_half_float_converter.h>
#include <platform/qz_gmath/gmath_vec.h>

// A vector of three normalised halves, each in [-1, 1].
struct GMathShortNormal {
    unsigned short x;
    unsigned short y;
    unsigned short z;

    static GMathShortNormal encode(GMathVec3<float> const& v) {
        unsigned int halves[4];
        GMathHalfFloatConverter::convert_floats_to_normalized_halves(gmath_lanes(v), halves);
        return {static_cast<unsigned short>(halves[0]), static_cast<unsigned short>(halves[1]),
                static_cast<unsigned short>(halves[2])};
    }
    // The same of four vectors.
    static void encode(GMathVec3<GMathFloatLanes> const& v, GMathShortNormal* out) {
        unsigned int halves[3][4];
        GMathHalfFloatConverter::convert_floats_to_normalized_halves(v.x, halves[0]);
        GMathHalfFloatConverter::convert_floats_to_normalized_halves(v.y, halves[1]);
        GMathHalfFloatConverter::convert_floats_to_normalized_halves(v.z, halves[2]);
        for (unsigned int k = 0; k < 4; ++k) {
            out[k] = {static_cast<unsigned short>(halves[0][k]),
                      static_cast<unsigned short>(halves[1][k]),
                      static_cast<unsigned short>(halves[2][k])};
        }
    }
    GMathVec3<float> decode() const {
        return {GMathHalfFloatConverter::convert_normalized_half_to_float(x),
                GMathHalfFloatConverter::convert_normalized_half_to_float(y),
                GMathHalfFloatConverter::convert_normalized_half_to_float(z)};
    }

    // Equal bits.
    friend bool operator==(GMathShortNormal const& a, GMathShortNormal const& b) = default;
};

using GMathShortNormalArray = CoreArray<GMathShortNormal>;
