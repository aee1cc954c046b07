#include <poly/mesh/triangle_normals.h>

#include <limits>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

using Lanes = GMathFloatLanes;
using VectorLanes = GMathVec3<Lanes>;  // a vector in each lane
using DoubleLanes = double __attribute__((vector_size(32)));

// Divided by its length; zero unless that is above 0, so a NaN length gives zero as well.
VectorLanes get_unit(VectorLanes const& v, Lanes const& length) {
    return gmath_keep(length > 0.0f, v / length);
}
VectorLanes get_unit(VectorLanes const& v) { return get_unit(v, gmath_root(gmath_dot(v, v))); }

// Lane k with the fourth component goes to row k.
void store(VectorLanes const& v, Lanes const& fourth, float (*rows)[4]) {
    Lanes const xy01 = __builtin_shufflevector(v.x, v.y, 0, 4, 1, 5);
    Lanes const xy23 = __builtin_shufflevector(v.x, v.y, 2, 6, 3, 7);
    Lanes const zw01 = __builtin_shufflevector(v.z, fourth, 0, 4, 1, 5);
    Lanes const zw23 = __builtin_shufflevector(v.z, fourth, 2, 6, 3, 7);
    gmath_store(__builtin_shufflevector(xy01, zw01, 0, 1, 4, 5), rows[0]);
    gmath_store(__builtin_shufflevector(xy01, zw01, 2, 3, 6, 7), rows[1]);
    gmath_store(__builtin_shufflevector(xy23, zw23, 0, 1, 4, 5), rows[2]);
    gmath_store(__builtin_shufflevector(xy23, zw23, 2, 3, 6, 7), rows[3]);
}

// The positions of every third vertex.
VectorLanes load(GMathVec3<float> const* positions, unsigned int const* vertices) {
    return gmath_lanes(positions[vertices[0]], positions[vertices[3]], positions[vertices[6]],
                       positions[vertices[9]]);
}

void store_weighted(VectorLanes const& normal, Lanes const& cosine, float (*rows)[4]) {
    DoubleLanes const weight = __builtin_convertvector(cosine, DoubleLanes) + 1.0;
    auto const multiply = [&](Lanes const& component) {
        return __builtin_convertvector(__builtin_convertvector(component, DoubleLanes) * weight,
                                       Lanes);
    };
    store({multiply(normal.x), multiply(normal.y), multiply(normal.z)}, gmath_spread(0.0f), rows);
}

void store_areas(VectorLanes const& normal, Lanes const& length, float (*rows)[4]) {
    GMathIntLanes const is_finite = length <= std::numeric_limits<float>::max();
    store(gmath_keep(is_finite, {gmath_absolute(normal.x), gmath_absolute(normal.y),
                                 gmath_absolute(normal.z)}),
          gmath_keep(is_finite, length), rows);
}

void compute_four(VectorLanes const& a, VectorLanes const& b, VectorLanes const& c,
                  unsigned int const& first, TriangleNormals& out) {
    VectorLanes const edge_ab = b - a;
    VectorLanes const edge_bc = c - b;
    VectorLanes const edge_ca = a - c;
    VectorLanes const normal = gmath_cross(edge_ca, edge_ab);
    Lanes const length = gmath_root(gmath_dot(normal, normal));
    store_areas(normal, length, out.areas + first);
    VectorLanes const unit_ab = get_unit(edge_ab);
    VectorLanes const unit_bc = get_unit(edge_bc);
    VectorLanes const unit_ca = get_unit(edge_ca);
    VectorLanes const unit = get_unit(normal, length);
    store_weighted(unit, gmath_dot(unit_ca, unit_ab), out.weighted[0] + first);
    store_weighted(unit, gmath_dot(unit_ab, unit_bc), out.weighted[1] + first);
    store_weighted(unit, gmath_dot(unit_bc, unit_ca), out.weighted[2] + first);
}

#if defined(__x86_64__)

// The same steps with eight lanes. Functions for these registers must all be marked, and be made
// part of their callers, for nothing else may run on a processor without them.
#define QZ_POLY_AVX2 __attribute__((target("avx2")))
#define QZ_POLY_AVX2_INLINE __attribute__((target("avx2"), always_inline)) static inline

struct WideVectors {
    __m256 x;
    __m256 y;
    __m256 z;
};

QZ_POLY_AVX2_INLINE WideVectors subtract(WideVectors const& a, WideVectors const& b) {
    return {_mm256_sub_ps(a.x, b.x), _mm256_sub_ps(a.y, b.y), _mm256_sub_ps(a.z, b.z)};
}

QZ_POLY_AVX2_INLINE __m256 dot(WideVectors const& a, WideVectors const& b) {
    return _mm256_add_ps(_mm256_add_ps(_mm256_mul_ps(a.x, b.x), _mm256_mul_ps(a.y, b.y)),
                         _mm256_mul_ps(a.z, b.z));
}

QZ_POLY_AVX2_INLINE WideVectors cross(WideVectors const& a, WideVectors const& b) {
    return {_mm256_sub_ps(_mm256_mul_ps(a.y, b.z), _mm256_mul_ps(a.z, b.y)),
            _mm256_sub_ps(_mm256_mul_ps(a.z, b.x), _mm256_mul_ps(a.x, b.z)),
            _mm256_sub_ps(_mm256_mul_ps(a.x, b.y), _mm256_mul_ps(a.y, b.x))};
}

QZ_POLY_AVX2_INLINE WideVectors keep(__m256 const& mask, WideVectors const& v) {
    return {_mm256_and_ps(mask, v.x), _mm256_and_ps(mask, v.y), _mm256_and_ps(mask, v.z)};
}

QZ_POLY_AVX2_INLINE __m256 get_length(WideVectors const& v) { return _mm256_sqrt_ps(dot(v, v)); }

QZ_POLY_AVX2_INLINE WideVectors get_unit(WideVectors const& v, __m256 const& length) {
    __m256 const is_long = _mm256_cmp_ps(length, _mm256_setzero_ps(), _CMP_GT_OQ);
    return keep(is_long, {_mm256_div_ps(v.x, length), _mm256_div_ps(v.y, length),
                          _mm256_div_ps(v.z, length)});
}

QZ_POLY_AVX2_INLINE WideVectors get_unit(WideVectors const& v) {
    return get_unit(v, get_length(v));
}

// The positions of two vertices; what follows them is not touched.
QZ_POLY_AVX2_INLINE __m256 load_pair(float const* positions, unsigned int const& a,
                                     unsigned int const& b) {
    __m128i const three = _mm_setr_epi32(-1, -1, -1, 0);
    return _mm256_setr_m128(_mm_maskload_ps(positions + 3ull * a, three),
                            _mm_maskload_ps(positions + 3ull * b, three));
}

QZ_POLY_AVX2_INLINE WideVectors load(float const* positions, unsigned int const* v) {
    __m256 const p0 = load_pair(positions, v[0], v[12]);
    __m256 const p1 = load_pair(positions, v[3], v[15]);
    __m256 const p2 = load_pair(positions, v[6], v[18]);
    __m256 const p3 = load_pair(positions, v[9], v[21]);
    __m256 const xy01 = _mm256_unpacklo_ps(p0, p1);
    __m256 const xy23 = _mm256_unpacklo_ps(p2, p3);
    return {_mm256_shuffle_ps(xy01, xy23, _MM_SHUFFLE(1, 0, 1, 0)),
            _mm256_shuffle_ps(xy01, xy23, _MM_SHUFFLE(3, 2, 3, 2)),
            _mm256_shuffle_ps(_mm256_unpackhi_ps(p0, p1), _mm256_unpackhi_ps(p2, p3),
                              _MM_SHUFFLE(1, 0, 1, 0))};
}

QZ_POLY_AVX2_INLINE void store_pair(__m256 const& rows, float (*out)[4], unsigned int const& k) {
    _mm_storeu_ps(out[k], _mm256_castps256_ps128(rows));
    _mm_storeu_ps(out[k + 4], _mm256_extractf128_ps(rows, 1));
}

QZ_POLY_AVX2_INLINE void store(WideVectors const& v, __m256 const& fourth, float (*out)[4]) {
    __m256 const xy01 = _mm256_unpacklo_ps(v.x, v.y);
    __m256 const xy23 = _mm256_unpackhi_ps(v.x, v.y);
    __m256 const zw01 = _mm256_unpacklo_ps(v.z, fourth);
    __m256 const zw23 = _mm256_unpackhi_ps(v.z, fourth);
    store_pair(_mm256_shuffle_ps(xy01, zw01, _MM_SHUFFLE(1, 0, 1, 0)), out, 0);
    store_pair(_mm256_shuffle_ps(xy01, zw01, _MM_SHUFFLE(3, 2, 3, 2)), out, 1);
    store_pair(_mm256_shuffle_ps(xy23, zw23, _MM_SHUFFLE(1, 0, 1, 0)), out, 2);
    store_pair(_mm256_shuffle_ps(xy23, zw23, _MM_SHUFFLE(3, 2, 3, 2)), out, 3);
}

struct WideDoubles {
    __m256d low;
    __m256d high;
};

QZ_POLY_AVX2_INLINE WideDoubles widen(__m256 const& v) {
    return {_mm256_cvtps_pd(_mm256_castps256_ps128(v)),
            _mm256_cvtps_pd(_mm256_extractf128_ps(v, 1))};
}

QZ_POLY_AVX2_INLINE __m256 multiply(WideDoubles const& a, WideDoubles const& b) {
    return _mm256_setr_m128(_mm256_cvtpd_ps(_mm256_mul_pd(a.low, b.low)),
                            _mm256_cvtpd_ps(_mm256_mul_pd(a.high, b.high)));
}

QZ_POLY_AVX2_INLINE void store_weighted(WideVectors const& normal, __m256 const& cosine,
                                        float (*rows)[4]) {
    WideDoubles weight = widen(cosine);
    weight = {_mm256_add_pd(weight.low, _mm256_set1_pd(1.0)),
              _mm256_add_pd(weight.high, _mm256_set1_pd(1.0))};
    store({multiply(widen(normal.x), weight), multiply(widen(normal.y), weight),
           multiply(widen(normal.z), weight)},
          _mm256_setzero_ps(), rows);
}

QZ_POLY_AVX2 void compute_eight(GMathVec3<float> const* positions, unsigned int const* vertices,
                                TriangleNormals& out) {
    float const* const points = reinterpret_cast<float const*>(positions);
    WideVectors const a = load(points, vertices);
    WideVectors const b = load(points, vertices + 1);
    WideVectors const c = load(points, vertices + 2);
    WideVectors const edge_ab = subtract(b, a);
    WideVectors const edge_bc = subtract(c, b);
    WideVectors const edge_ca = subtract(a, c);
    WideVectors const normal = cross(edge_ca, edge_ab);
    __m256 const length = get_length(normal);
    __m256 const is_finite =
        _mm256_cmp_ps(length, _mm256_set1_ps(std::numeric_limits<float>::max()), _CMP_LE_OQ);
    __m256 const without_sign = _mm256_andnot_ps(_mm256_set1_ps(-0.0f), is_finite);
    store(keep(without_sign, normal), _mm256_and_ps(is_finite, length), out.areas);
    WideVectors const unit_ab = get_unit(edge_ab);
    WideVectors const unit_bc = get_unit(edge_bc);
    WideVectors const unit_ca = get_unit(edge_ca);
    WideVectors const unit = get_unit(normal, length);
    store_weighted(unit, dot(unit_ca, unit_ab), out.weighted[0]);
    store_weighted(unit, dot(unit_ab, unit_bc), out.weighted[1]);
    store_weighted(unit, dot(unit_bc, unit_ca), out.weighted[2]);
}

#endif

}  // namespace

void compute_triangle_normals(GMathVec3<float> const* positions, unsigned int const* vertices,
                              TriangleNormals& out) {
    for (unsigned int first = 0; first < TriangleNormals::count; first += 4) {
        unsigned int const* const v = vertices + 3 * first;
        compute_four(load(positions, v), load(positions, v + 1), load(positions, v + 2), first,
                     out);
    }
}

ComputeTriangleNormals get_fastest_triangle_normals() {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) {
        return compute_eight;
    }
#endif
    return compute_triangle_normals;
}
