#pragma once

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define QZ_POLY_HAS_SSE2 1
#else
#define QZ_POLY_HAS_SSE2 0
#endif

// Four floats that are worked on side by side. Each lane is rounded as the scalar operation is, so
// that both bodies below give the same bits; every x86-64 processor has what the first one needs.
#if QZ_POLY_HAS_SSE2

class FloatLanes {
  public:
    // `values` are four floats at any address.
    explicit FloatLanes(float const* values) : m_lanes(_mm_loadu_ps(values)) {}
    explicit FloatLanes(float const& value) : m_lanes(_mm_set1_ps(value)) {}

    FloatLanes operator-(FloatLanes const& b) const { return _mm_sub_ps(m_lanes, b.m_lanes); }
    FloatLanes operator*(FloatLanes const& b) const { return _mm_mul_ps(m_lanes, b.m_lanes); }

    // Results of comparisons, to be joined by & and read by get_bits. A NaN fails them.
    FloatLanes operator>=(FloatLanes const& b) const { return _mm_cmpge_ps(m_lanes, b.m_lanes); }
    FloatLanes operator&(FloatLanes const& b) const { return _mm_and_ps(m_lanes, b.m_lanes); }
    // Bit k tells whether lane k holds.
    unsigned int get_bits() const { return static_cast<unsigned int>(_mm_movemask_ps(m_lanes)); }

  private:
    FloatLanes(__m128 const& lanes) : m_lanes(lanes) {}

    __m128 m_lanes;
};

#else

class LaneBits {
  public:
    explicit LaneBits(unsigned int const& bits) : m_bits(bits) {}
    LaneBits operator&(LaneBits const& b) const { return LaneBits(m_bits & b.m_bits); }
    unsigned int get_bits() const { return m_bits; }

  private:
    unsigned int m_bits;
};

class FloatLanes {
  public:
    explicit FloatLanes(float const* values)
        : m_lanes{values[0], values[1], values[2], values[3]} {}
    explicit FloatLanes(float const& value) : m_lanes{value, value, value, value} {}

    FloatLanes operator-(FloatLanes const& b) const {
        FloatLanes result(*this);
        for (unsigned int k = 0; k < 4; ++k) {
            result.m_lanes[k] -= b.m_lanes[k];
        }
        return result;
    }
    FloatLanes operator*(FloatLanes const& b) const {
        FloatLanes result(*this);
        for (unsigned int k = 0; k < 4; ++k) {
            result.m_lanes[k] *= b.m_lanes[k];
        }
        return result;
    }
    LaneBits operator>=(FloatLanes const& b) const {
        unsigned int bits = 0;
        for (unsigned int k = 0; k < 4; ++k) {
            bits |= (m_lanes[k] >= b.m_lanes[k] ? 1u : 0u) << k;
        }
        return LaneBits(bits);
    }

  private:
    float m_lanes[4];
};

#endif
