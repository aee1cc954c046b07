#pragma once

#include <platform/qz_gmath/gmath_vec.h>

#include <limits>

// An axis-aligned box: its minimum corner, then its maximum corner.
template <typename T>
struct GMathBbox3 {
    GMathVec3<T> minimum;
    GMathVec3<T> maximum;

    GMathBbox3() = default;
    constexpr GMathBbox3(GMathVec3<T> const& minimum_value, GMathVec3<T> const& maximum_value)
        : minimum(minimum_value), maximum(maximum_value) {}
    template <typename U>
    constexpr explicit GMathBbox3(GMathBbox3<U> const& other)
        : minimum(other.minimum), maximum(other.maximum) {}

    // The box that holds nothing: its minimum is the largest finite T, its maximum the negative.
    static constexpr GMathBbox3 get_inverted() {
        constexpr T largest = std::numeric_limits<T>::max();
        return {{largest, largest, largest}, {-largest, -largest, -largest}};
    }
    // The box [0, 0, 0] to [0, 0, 0].
    static constexpr GMathBbox3 get_zero() { return {{T(0), T(0), T(0)}, {T(0), T(0), T(0)}}; }

    // Grows to hold `point`, by strict comparisons: a NaN component changes nothing.
    constexpr void extend(GMathVec3<T> const& point) {
        extend_axis(point.x, minimum.x, maximum.x);
        extend_axis(point.y, minimum.y, maximum.y);
        extend_axis(point.z, minimum.z, maximum.z);
    }

    constexpr bool is_empty() const {
        return minimum.x > maximum.x || minimum.y > maximum.y || minimum.z > maximum.z;
    }

    friend constexpr bool operator==(GMathBbox3 const& a, GMathBbox3 const& b) = default;

  private:
    static constexpr void extend_axis(T const& value, T& low, T& high) {
        low = value < low ? value : low;
        high = value > high ? value : high;
    }
};
