#pragma once

#include <cmath>

// Plain vectors: their components and nothing else, in order. Arithmetic is componentwise in T.
// Dot products and sums of products run from left to right: (x*x' + y*y') + z*z'.
template <typename T>
struct GMathVec2 {
    T x{};
    T y{};

    constexpr GMathVec2() = default;
    constexpr GMathVec2(T const& x_value, T const& y_value) : x(x_value), y(y_value) {}

    friend constexpr bool operator==(GMathVec2 const& a, GMathVec2 const& b) = default;
};

template <typename T>
struct GMathVec3 {
    T x;
    T y;
    T z;

    // Left uninitialised, so that large arrays cost nothing until they are filled.
    GMathVec3() = default;
    constexpr GMathVec3(T const& x_value, T const& y_value, T const& z_value)
        : x(x_value), y(y_value), z(z_value) {}
    // Converts every component.
    template <typename U>
    constexpr explicit GMathVec3(GMathVec3<U> const& other)
        : x(static_cast<T>(other.x)), y(static_cast<T>(other.y)), z(static_cast<T>(other.z)) {}

    // `axis` is 0, 1 or 2.
    constexpr T const& operator[](unsigned int const& axis) const {
        return axis == 0 ? x : axis == 1 ? y : z;
    }
    constexpr T& operator[](unsigned int const& axis) { return axis == 0 ? x : axis == 1 ? y : z; }

    constexpr GMathVec3& operator+=(GMathVec3 const& b) {
        x += b.x;
        y += b.y;
        z += b.z;
        return *this;
    }

    friend constexpr GMathVec3 operator+(GMathVec3 const& a, GMathVec3 const& b) {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }
    friend constexpr GMathVec3 operator-(GMathVec3 const& a, GMathVec3 const& b) {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend constexpr GMathVec3 operator-(GMathVec3 const& a) { return {-a.x, -a.y, -a.z}; }
    friend constexpr GMathVec3 operator*(GMathVec3 const& a, T const& b) {
        return {a.x * b, a.y * b, a.z * b};
    }
    friend constexpr GMathVec3 operator/(GMathVec3 const& a, T const& b) {
        return {a.x / b, a.y / b, a.z / b};
    }
    friend constexpr bool operator==(GMathVec3 const& a, GMathVec3 const& b) = default;
};

template <typename T>
struct GMathVec4 {
    T x;
    T y;
    T z;
    T w;

    GMathVec4() = default;
    constexpr GMathVec4(T const& x_value, T const& y_value, T const& z_value, T const& w_value)
        : x(x_value), y(y_value), z(z_value), w(w_value) {}

    friend constexpr bool operator==(GMathVec4 const& a, GMathVec4 const& b) = default;
};

template <typename T>
constexpr T gmath_dot(GMathVec3<T> const& a, GMathVec3<T> const& b) {
    return (a.x * b.x + a.y * b.y) + a.z * b.z;
}

template <typename T>
constexpr GMathVec3<T> gmath_cross(GMathVec3<T> const& a, GMathVec3<T> const& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// The square root of the dot product.
template <typename T>
T gmath_length(GMathVec3<T> const& a) {
    return std::sqrt(gmath_dot(a, a));
}

// a / length, componentwise; the zero vector when the length is 0. A NaN length is divided by.
template <typename T>
GMathVec3<T> gmath_unit(GMathVec3<T> const& a) {
    T const length = gmath_length(a);
    return length <= T(0) ? GMathVec3<T>(T(0), T(0), T(0)) : a / length;
}

inline bool gmath_isfinite(GMathVec3<float> const& a) {
    return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}
