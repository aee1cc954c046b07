#pragma once

#include <platform/qz_gmath/gmath_vec.h>

// A 4x4 matrix, stored row by row: m_rc is entry 4r + c. It acts on column vectors, so the fourth
// column is the translation.
template <typename T>
struct GMathMatrix4x4 {
    T entries[16];

    static constexpr GMathMatrix4x4 get_identity() {
        return {{T(1), T(0), T(0), T(0), T(0), T(1), T(0), T(0), T(0), T(0), T(1), T(0), T(0), T(0),
                 T(0), T(1)}};
    }

    constexpr T const& operator()(unsigned int const& row, unsigned int const& column) const {
        return entries[4 * row + column];
    }
    constexpr T& operator()(unsigned int const& row, unsigned int const& column) {
        return entries[4 * row + column];
    }

    // The 3x3 part alone.
    constexpr GMathVec3<T> transform_vector(GMathVec3<T> const& v) const {
        return {transform_row(0, v), transform_row(1, v), transform_row(2, v)};
    }
    constexpr GMathVec3<T> transform_point(GMathVec3<T> const& p) const {
        return transform_vector(p) + GMathVec3<T>(entries[3], entries[7], entries[11]);
    }

    friend constexpr bool operator==(GMathMatrix4x4 const& a, GMathMatrix4x4 const& b) = default;

  private:
    constexpr T transform_row(unsigned int const& row, GMathVec3<T> const& v) const {
        return (entries[4 * row] * v.x + entries[4 * row + 1] * v.y) + entries[4 * row + 2] * v.z;
    }
};

// A linear map without translation, held as the images of the three axes.
template <typename T>
struct GMathLinearSpace3 {
    GMathVec3<T> axis_x;
    GMathVec3<T> axis_y;
    GMathVec3<T> axis_z;

    static constexpr GMathLinearSpace3 get_identity() {
        return {{T(1), T(0), T(0)}, {T(0), T(1), T(0)}, {T(0), T(0), T(1)}};
    }

    constexpr GMathVec3<T> transform(GMathVec3<T> const& v) const {
        return (axis_x * v.x + axis_y * v.y) + axis_z * v.z;
    }

    friend constexpr bool operator==(GMathLinearSpace3 const& a,
                                     GMathLinearSpace3 const& b) = default;
};
