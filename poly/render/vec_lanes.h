#pragma once

#include <platform/qz_gmath.h>

#include <cmath>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// A vector of three or four floats in one register, with +, -, *, / by component and by one float.
// Each lane is rounded as the scalar operation is, so results have the same bits on any processor.
using VecLanes = float __attribute__((vector_size(16)));
using IntLanes = int __attribute__((vector_size(16)));

// Put together from components, since these may only just have been computed: a processor has to
// wait for parts of a word that were stored one by one.
inline VecLanes make_lanes(GMathVec3<float> const& v) { return VecLanes{v.x, v.y, v.z, 0.0f}; }

template <typename T>
GMathVec3<T> get_vec3(VecLanes const& lanes) {
    return {static_cast<T>(lanes[0]), static_cast<T>(lanes[1]), static_cast<T>(lanes[2])};
}

// Of the first three lanes, in the order in which vectors are summed up.
inline float get_dot(VecLanes const& a, VecLanes const& b) {
    VecLanes const products = a * b;
    return (products[0] + products[1]) + products[2];
}

// All of `a` or all of `b`, without a jump.
inline VecLanes choose_lanes(bool const& is_a, VecLanes const& a, VecLanes const& b) {
    int const bits = -static_cast<int>(is_a);
    IntLanes const mask = {bits, bits, bits, bits};
    return (VecLanes)(((IntLanes)a & mask) | ((IntLanes)b & ~mask));
}

// Four bytes as numbers.
inline VecLanes make_lanes(GMathVec4<unsigned char> const& v) {
#if defined(__SSE2__)
    int word;
    static_assert(sizeof word == sizeof v);
    std::memcpy(&word, &v, sizeof word);
    __m128i const zero = _mm_setzero_si128();
    __m128i const pairs = _mm_unpacklo_epi8(_mm_cvtsi32_si128(word), zero);
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(pairs, zero));
#else
    IntLanes const numbers = {v.x, v.y, v.z, v.w};
    return __builtin_convertvector(numbers, VecLanes);
#endif
}

inline VecLanes get_root(VecLanes const& lanes) {
#if defined(__SSE2__)
    return (VecLanes)_mm_sqrt_ps((__m128)lanes);
#else
    return VecLanes{std::sqrt(lanes[0]), std::sqrt(lanes[1]), std::sqrt(lanes[2]),
                    std::sqrt(lanes[3])};
#endif
}

// All lanes alike.
inline VecLanes spread(float const& x) { return VecLanes{x, x, x, x}; }
inline GMathVec3<VecLanes> spread(GMathVec3<float> const& v) {
    return {spread(v.x), spread(v.y), spread(v.z)};
}

// Bit k tells whether lane k of a comparison holds.
inline unsigned int get_bits(IntLanes const& lanes) {
#if defined(__SSE2__)
    return static_cast<unsigned int>(_mm_movemask_ps((__m128)lanes));
#else
    unsigned int bits = 0;
    for (unsigned int k = 0; k < 4; ++k) {
        bits |= (lanes[k] != 0 ? 1u : 0u) << k;
    }
    return bits;
#endif
}
