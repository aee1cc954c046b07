#pragma once

#include <cmath>

// Constants of a scalar type.
template <typename T>
struct GMath;

template <>
struct GMath<float> {
    // The gap between 1 and the next float, 2^-23.
    static constexpr float s_epsilon = 1.1920929e-07f;
};

template <>
struct GMath<double> {
    // The gap between 1 and the next double, 2^-52.
    static constexpr double s_epsilon = 2.2204460492503131e-16;
};

inline bool gmath_isfinitef(float const& value) { return std::isfinite(value); }
