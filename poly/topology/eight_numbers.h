#pragma once

#include <platform/qz_gmath.h>

// Eight numbers that are compared side by side.
class EightNumbers {
  public:
    // Every `stride`-th of the numbers.
    EightNumbers(unsigned int const* numbers, unsigned int const& stride)
        : m_low(load(numbers, stride)), m_high(load(numbers + 4 * stride, stride)) {}

    // Bit k tells whether number k equals `number`.
    unsigned int get_equal_bits(unsigned int const& number) const {
        int const n = static_cast<int>(number);
        GMathIntLanes const all = {n, n, n, n};
        return gmath_get_bits(m_low == all) | gmath_get_bits(m_high == all) << 4;
    }

  private:
    static GMathIntLanes load(unsigned int const* numbers, unsigned int const& stride) {
        return GMathIntLanes{static_cast<int>(numbers[0]), static_cast<int>(numbers[stride]),
                             static_cast<int>(numbers[2 * stride]),
                             static_cast<int>(numbers[3 * stride])};
    }

    GMathIntLanes m_low;
    GMathIntLanes m_high;
};
