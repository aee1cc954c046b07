#pragma once

#include <platform/qz_gmath.h>

#include <cmath>

// Random numbers that are the same everywhere, for one seed and stream.
//
// G. Steele, D. Lea, C. Flood, "Fast splittable pseudorandom number generators", OOPSLA 2014.
class ToolRandom {
  public:
    ToolRandom(unsigned long long const& seed, unsigned long long const& stream)
        : m_state(mix(seed) + stream * gap) {
        m_state = mix(m_state);
    }

    // In [0, 1).
    double get_number() { return static_cast<double>(get_bits() >> 11) * 0x1p-53; }
    double get_number(double const& low, double const& high) {
        return low + (high - low) * get_number();
    }
    // Below `end`.
    unsigned int get_index(std::size_t const& end) {
        return static_cast<unsigned int>(get_number() * static_cast<double>(end));
    }
    GMathVec3<double> get_direction() {
        for (;;) {
            double const x = get_number(-1, 1);
            double const y = get_number(-1, 1);
            double const z = get_number(-1, 1);
            double const square = x * x + y * y + z * z;
            if (square > 1e-4 && square <= 1) {
                return GMathVec3<double>(x, y, z) / std::sqrt(square);
            }
        }
    }

  private:
    static constexpr unsigned long long gap = 0x9E3779B97F4A7C15ull;

    static unsigned long long mix(unsigned long long const& value) {
        unsigned long long z = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    unsigned long long get_bits() {
        m_state += gap;
        return mix(m_state);
    }

    unsigned long long m_state;
};
