#pragma once

#include <cmath>
#include <cstring>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define QZ_GMATH_HAS_SSE2 1
#else
#define QZ_GMATH_HAS_SSE2 0
#endif

// Four floats that are worked on side by side, and the same in double. Each lane is rounded as the
// scalar operation is, so that both bodies below give the same bits; every x86-64 processor has
// what the first one needs.
#if QZ_GMATH_HAS_SSE2

class GMathFloatLanes {
  public:
    // `values` are four floats at any address.
    explicit GMathFloatLanes(float const* values) : m_lanes(_mm_loadu_ps(values)) {}
    explicit GMathFloatLanes(float const& value) : m_lanes(_mm_set1_ps(value)) {}
    GMathFloatLanes(float const& a, float const& b, float const& c, float const& d)
        : m_lanes(_mm_setr_ps(a, b, c, d)) {}
    // Three floats, and +0.
    static GMathFloatLanes load_three(float const* values) {
        double pair;
        std::memcpy(&pair, values, sizeof pair);
        return _mm_movelh_ps(_mm_castpd_ps(_mm_set_sd(pair)), _mm_load_ss(values + 2));
    }
    void store(float* values) const { _mm_storeu_ps(values, m_lanes); }
    __m128 const& get_lanes() const { return m_lanes; }

    GMathFloatLanes operator+(GMathFloatLanes const& b) const {
        return _mm_add_ps(m_lanes, b.m_lanes);
    }
    GMathFloatLanes operator-(GMathFloatLanes const& b) const {
        return _mm_sub_ps(m_lanes, b.m_lanes);
    }
    GMathFloatLanes operator*(GMathFloatLanes const& b) const {
        return _mm_mul_ps(m_lanes, b.m_lanes);
    }
    GMathFloatLanes operator/(GMathFloatLanes const& b) const {
        return _mm_div_ps(m_lanes, b.m_lanes);
    }
    GMathFloatLanes get_root() const { return _mm_sqrt_ps(m_lanes); }
    GMathFloatLanes get_absolute() const { return _mm_andnot_ps(_mm_set1_ps(-0.0f), m_lanes); }
    // Each lane of this where it is strictly less, or greater, than that of `b`; else that of `b`,
    // for a NaN too.
    GMathFloatLanes get_less(GMathFloatLanes const& b) const {
        return _mm_min_ps(m_lanes, b.m_lanes);
    }
    GMathFloatLanes get_greater(GMathFloatLanes const& b) const {
        return _mm_max_ps(m_lanes, b.m_lanes);
    }

    // Results of comparisons, to be joined by &, read by get_bits and used by keep. A NaN fails
    // them.
    GMathFloatLanes operator>=(GMathFloatLanes const& b) const {
        return _mm_cmpge_ps(m_lanes, b.m_lanes);
    }
    GMathFloatLanes operator>(GMathFloatLanes const& b) const {
        return _mm_cmpgt_ps(m_lanes, b.m_lanes);
    }
    GMathFloatLanes operator&(GMathFloatLanes const& b) const {
        return _mm_and_ps(m_lanes, b.m_lanes);
    }
    // Bit k tells whether lane k holds.
    unsigned int get_bits() const { return static_cast<unsigned int>(_mm_movemask_ps(m_lanes)); }
    // The values of the lanes that hold; +0 in the others.
    GMathFloatLanes keep(GMathFloatLanes const& values) const {
        return _mm_and_ps(m_lanes, values.m_lanes);
    }

    // Lane k of each becomes lane 0 to 3 of the k-th.
    static void transpose(GMathFloatLanes& a, GMathFloatLanes& b, GMathFloatLanes& c,
                          GMathFloatLanes& d) {
        _MM_TRANSPOSE4_PS(a.m_lanes, b.m_lanes, c.m_lanes, d.m_lanes);
    }
    // Adds the first three lanes to three floats.
    void add_to(float* three) const {
        double pair;
        std::memcpy(&pair, three, sizeof pair);
        __m128 const first = _mm_add_ps(_mm_castpd_ps(_mm_set_sd(pair)), m_lanes);
        pair = _mm_cvtsd_f64(_mm_castps_pd(first));
        std::memcpy(three, &pair, sizeof pair);
        three[2] += _mm_cvtss_f32(_mm_movehl_ps(m_lanes, m_lanes));
    }

  private:
    friend class GMathDoubleLanes;
    GMathFloatLanes(__m128 const& lanes) : m_lanes(lanes) {}

    __m128 m_lanes;
};

class GMathDoubleLanes {
  public:
    explicit GMathDoubleLanes(GMathFloatLanes const& values)
        : m_low(_mm_cvtps_pd(values.m_lanes)),
          m_high(_mm_cvtps_pd(_mm_movehl_ps(values.m_lanes, values.m_lanes))) {}

    GMathDoubleLanes operator+(double const& b) const {
        return {_mm_add_pd(m_low, _mm_set1_pd(b)), _mm_add_pd(m_high, _mm_set1_pd(b))};
    }
    GMathDoubleLanes operator*(GMathDoubleLanes const& b) const {
        return {_mm_mul_pd(m_low, b.m_low), _mm_mul_pd(m_high, b.m_high)};
    }
    GMathFloatLanes get_floats() const {
        return _mm_movelh_ps(_mm_cvtpd_ps(m_low), _mm_cvtpd_ps(m_high));
    }

  private:
    GMathDoubleLanes(__m128d const& low, __m128d const& high) : m_low(low), m_high(high) {}

    __m128d m_low;
    __m128d m_high;
};

#else

class GMathLaneBits;

class GMathFloatLanes {
  public:
    explicit GMathFloatLanes(float const* values)
        : m_lanes{values[0], values[1], values[2], values[3]} {}
    explicit GMathFloatLanes(float const& value) : m_lanes{value, value, value, value} {}
    GMathFloatLanes(float const& a, float const& b, float const& c, float const& d)
        : m_lanes{a, b, c, d} {}
    static GMathFloatLanes load_three(float const* values) {
        return {values[0], values[1], values[2], 0.0f};
    }
    void store(float* values) const {
        for (unsigned int k = 0; k < 4; ++k) {
            values[k] = m_lanes[k];
        }
    }

    GMathFloatLanes operator+(GMathFloatLanes const& b) const {
        return map([&](unsigned int const& k) { return m_lanes[k] + b.m_lanes[k]; });
    }
    GMathFloatLanes operator-(GMathFloatLanes const& b) const {
        return map([&](unsigned int const& k) { return m_lanes[k] - b.m_lanes[k]; });
    }
    GMathFloatLanes operator*(GMathFloatLanes const& b) const {
        return map([&](unsigned int const& k) { return m_lanes[k] * b.m_lanes[k]; });
    }
    GMathFloatLanes operator/(GMathFloatLanes const& b) const {
        return map([&](unsigned int const& k) { return m_lanes[k] / b.m_lanes[k]; });
    }
    GMathFloatLanes get_root() const {
        return map([&](unsigned int const& k) { return std::sqrt(m_lanes[k]); });
    }
    GMathFloatLanes get_absolute() const {
        return map([&](unsigned int const& k) { return std::fabs(m_lanes[k]); });
    }
    GMathFloatLanes get_less(GMathFloatLanes const& b) const {
        return map([&](unsigned int const& k) {
            return m_lanes[k] < b.m_lanes[k] ? m_lanes[k] : b.m_lanes[k];
        });
    }
    GMathFloatLanes get_greater(GMathFloatLanes const& b) const {
        return map([&](unsigned int const& k) {
            return m_lanes[k] > b.m_lanes[k] ? m_lanes[k] : b.m_lanes[k];
        });
    }
    GMathLaneBits operator>=(GMathFloatLanes const& b) const;
    GMathLaneBits operator>(GMathFloatLanes const& b) const;

    static void transpose(GMathFloatLanes& a, GMathFloatLanes& b, GMathFloatLanes& c,
                          GMathFloatLanes& d) {
        GMathFloatLanes const from[4] = {a, b, c, d};
        GMathFloatLanes* const to[4] = {&a, &b, &c, &d};
        for (unsigned int k = 0; k < 16; ++k) {
            to[k / 4]->m_lanes[k % 4] = from[k % 4].m_lanes[k / 4];
        }
    }
    void add_to(float* three) const {
        for (unsigned int k = 0; k < 3; ++k) {
            three[k] += m_lanes[k];
        }
    }

  private:
    friend class GMathDoubleLanes;
    friend class GMathLaneBits;

    template <typename Operation>
    static GMathFloatLanes map(Operation const& get) {
        return {get(0), get(1), get(2), get(3)};
    }

    float m_lanes[4];
};

class GMathLaneBits {
  public:
    explicit GMathLaneBits(unsigned int const& bits) : m_bits(bits) {}
    GMathLaneBits operator&(GMathLaneBits const& b) const {
        return GMathLaneBits(m_bits & b.m_bits);
    }
    unsigned int get_bits() const { return m_bits; }
    GMathFloatLanes keep(GMathFloatLanes const& values) const {
        return GMathFloatLanes::map([&](unsigned int const& k) {
            return (m_bits >> k & 1u) != 0 ? values.m_lanes[k] : 0.0f;
        });
    }

  private:
    unsigned int m_bits;
};

inline GMathLaneBits GMathFloatLanes::operator>=(GMathFloatLanes const& b) const {
    unsigned int bits = 0;
    for (unsigned int k = 0; k < 4; ++k) {
        bits |= (m_lanes[k] >= b.m_lanes[k] ? 1u : 0u) << k;
    }
    return GMathLaneBits(bits);
}

inline GMathLaneBits GMathFloatLanes::operator>(GMathFloatLanes const& b) const {
    unsigned int bits = 0;
    for (unsigned int k = 0; k < 4; ++k) {
        bits |= (m_lanes[k] > b.m_lanes[k] ? 1u : 0u) << k;
    }
    return GMathLaneBits(bits);
}

class GMathDoubleLanes {
  public:
    explicit GMathDoubleLanes(GMathFloatLanes const& values)
        : m_lanes{values.m_lanes[0], values.m_lanes[1], values.m_lanes[2], values.m_lanes[3]} {}

    GMathDoubleLanes operator+(double const& b) const {
        GMathDoubleLanes result(*this);
        for (double& lane : result.m_lanes) {
            lane += b;
        }
        return result;
    }
    GMathDoubleLanes operator*(GMathDoubleLanes const& b) const {
        GMathDoubleLanes result(*this);
        for (unsigned int k = 0; k < 4; ++k) {
            result.m_lanes[k] *= b.m_lanes[k];
        }
        return result;
    }
    GMathFloatLanes get_floats() const {
        return GMathFloatLanes::map(
            [&](unsigned int const& k) { return static_cast<float>(m_lanes[k]); });
    }

  private:
    double m_lanes[4];
};

#endif
