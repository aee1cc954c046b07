#pragma once

#include <platform/qz_gmath/gmath_vec.h>

#include <cmath>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Four floats in one register, with +, -, *, / and comparisons by lane; a single float stands for
// four. Each lane is rounded as the scalar operation is, so results have the same bits on any
// processor. The lanes are those of four vectors' components, or the components of one vector.
//
//     GMathVec3<GMathFloatLanes> const n = gmath_lanes(n0, n1, n2, n3);
//     GMathFloatLanes const length = gmath_root(gmath_dot(n, n));
using GMathFloatLanes = float __attribute__((vector_size(16)));
// Of comparisons: all bits of a lane are set where it holds, and none elsewhere. A NaN fails all
// comparisons but !=.
using GMathIntLanes = int __attribute__((vector_size(16)));

// Four floats in memory, at any address that floats may have. (Copied as bytes, compilers leave
// them on the stack. Behind the type, the attributes would not lower the alignment for clang.)
using GMathFloatsInMemory __attribute__((aligned(4), may_alias)) = GMathFloatLanes;
inline GMathFloatLanes gmath_lanes(float const* four) {
    return *reinterpret_cast<GMathFloatsInMemory const*>(four);
}
inline void gmath_store(GMathFloatLanes const& lanes, float* four) {
    *reinterpret_cast<GMathFloatsInMemory*>(four) = lanes;
}

// One float in all lanes.
inline GMathFloatLanes gmath_spread(float const& x) { return GMathFloatLanes{x, x, x, x}; }
inline GMathVec3<GMathFloatLanes> gmath_spread(GMathVec3<float> const& v) {
    return {gmath_spread(v.x), gmath_spread(v.y), gmath_spread(v.z)};
}

// Vector k in lane k.
inline GMathVec3<GMathFloatLanes> gmath_lanes(GMathVec3<float> const& v0,
                                              GMathVec3<float> const& v1,
                                              GMathVec3<float> const& v2,
                                              GMathVec3<float> const& v3) {
    return {GMathFloatLanes{v0.x, v1.x, v2.x, v3.x}, GMathFloatLanes{v0.y, v1.y, v2.y, v3.y},
            GMathFloatLanes{v0.z, v1.z, v2.z, v3.z}};
}

// The components of one vector, and +0. Put together one by one, since they may only just have been
// computed: a processor has to wait for parts of a word that were stored one by one.
inline GMathFloatLanes gmath_lanes(GMathVec3<float> const& v) {
    return GMathFloatLanes{v.x, v.y, v.z, 0.0f};
}
// The same of a vector in an array, which is read as two words; and its sum with the first lanes.
inline GMathFloatLanes gmath_load_three(float const* three) {
    using Pair = double __attribute__((vector_size(16)));
    double pair;
    std::memcpy(&pair, three, sizeof pair);
    GMathFloatLanes const third = {three[2], 0.0f, 0.0f, 0.0f};
    return __builtin_shufflevector((GMathFloatLanes)Pair{pair, 0.0}, third, 0, 1, 4, 5);
}
inline void gmath_add_to(GMathFloatLanes const& lanes, float* three) {
    using Pair = double __attribute__((vector_size(16)));
    double pair;
    std::memcpy(&pair, three, sizeof pair);
    Pair const sum = (Pair)((GMathFloatLanes)Pair{pair, 0.0} + lanes);
    pair = sum[0];
    std::memcpy(three, &pair, sizeof pair);
    three[2] += lanes[2];
}
template <typename T>
GMathVec3<T> gmath_vec3(GMathFloatLanes const& lanes) {
    return {static_cast<T>(lanes[0]), static_cast<T>(lanes[1]), static_cast<T>(lanes[2])};
}
// Of the first three lanes, in the order in which vectors are summed up.
inline float gmath_dot(GMathFloatLanes const& a, GMathFloatLanes const& b) {
    GMathFloatLanes const products = a * b;
    return (products[0] + products[1]) + products[2];
}

// Four bytes as numbers.
inline GMathFloatLanes gmath_lanes(GMathVec4<unsigned char> const& v) {
#if defined(__SSE2__)
    int word;
    static_assert(sizeof word == sizeof v);
    std::memcpy(&word, &v, sizeof word);
    __m128i const zero = _mm_setzero_si128();
    __m128i const pairs = _mm_unpacklo_epi8(_mm_cvtsi32_si128(word), zero);
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(pairs, zero));
#else
    return __builtin_convertvector((GMathIntLanes{v.x, v.y, v.z, v.w}), GMathFloatLanes);
#endif
}

inline GMathFloatLanes gmath_root(GMathFloatLanes const& a) {
#if defined(__SSE2__)
    return (GMathFloatLanes)_mm_sqrt_ps((__m128)a);
#else
    return GMathFloatLanes{std::sqrt(a[0]), std::sqrt(a[1]), std::sqrt(a[2]), std::sqrt(a[3])};
#endif
}
inline GMathFloatLanes gmath_absolute(GMathFloatLanes const& a) {
    return (GMathFloatLanes)((GMathIntLanes)a & 0x7FFFFFFF);
}

// `a` where it is strictly less, or greater, than `b`; else `b`, for a NaN too.
inline GMathFloatLanes gmath_lesser(GMathFloatLanes const& a, GMathFloatLanes const& b) {
#if defined(__SSE2__)
    return (GMathFloatLanes)_mm_min_ps((__m128)a, (__m128)b);
#else
    return a < b ? a : b;
#endif
}
inline GMathFloatLanes gmath_greater(GMathFloatLanes const& a, GMathFloatLanes const& b) {
#if defined(__SSE2__)
    return (GMathFloatLanes)_mm_max_ps((__m128)a, (__m128)b);
#else
    return a > b ? a : b;
#endif
}
// The lanes where the comparison holds; +0 in the others.
inline GMathFloatLanes gmath_keep(GMathIntLanes const& comparison, GMathFloatLanes const& lanes) {
    return (GMathFloatLanes)(comparison & (GMathIntLanes)lanes);
}
inline GMathVec3<GMathFloatLanes> gmath_keep(GMathIntLanes const& comparison,
                                             GMathVec3<GMathFloatLanes> const& v) {
    return {gmath_keep(comparison, v.x), gmath_keep(comparison, v.y), gmath_keep(comparison, v.z)};
}
// All of `a` or all of `b`, without a jump.
inline GMathFloatLanes gmath_choose(bool const& is_a, GMathFloatLanes const& a,
                                    GMathFloatLanes const& b) {
    int const bits = -static_cast<int>(is_a);
    GMathIntLanes const mask = {bits, bits, bits, bits};
    return (GMathFloatLanes)(((GMathIntLanes)a & mask) | ((GMathIntLanes)b & ~mask));
}
// Bit k tells whether lane k of a comparison holds.
inline unsigned int gmath_get_bits(GMathIntLanes const& comparison) {
#if defined(__SSE2__)
    return static_cast<unsigned int>(_mm_movemask_ps((__m128)comparison));
#else
    unsigned int bits = 0;
    for (unsigned int k = 0; k < 4; ++k) {
        bits |= (comparison[k] != 0 ? 1u : 0u) << k;
    }
    return bits;
#endif
}
