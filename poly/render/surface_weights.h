#pragma once

#include <poly/mesh/primitive_corners.h>

#include <platform/qz_geometry.h>
#include <platform/qz_gmath.h>

#include <span>

// Where parameters (s, t) lie among the corners q0, q1, q2 (and q3) of a primitive. Whatever
// samples a surface learns here how a quad is cut.
//
//      t                        t
//      |                        q3 ---- q2
//      q2                       |  2 /  |        1: the first half, s > t
//      | \                      |  / 1  |        2: the second half, s <= t
//      q0 - q1 -- s             q0 ---- q1 -- s
//
// On its triangle, a point has the weights w0, w1, w2 of the corners c0, c1, c2. The derivatives of
// anything that is linear on the triangle are differences of two of its values at these corners.

// One triangle of a primitive.
struct SurfaceTriangle {
    unsigned int corners[3];  // c0, c1, c2, as numbers of the primitive's corners
    unsigned int s_start;     // the derivative by s is x1 - x[s_start], which is 0 or 2
    unsigned int t_start;     // the derivative by t is x2 - x[t_start], which is 0 or 1
};

// A triangle that is a primitive of its own; the first half of a quad; the second half.
inline constexpr SurfaceTriangle surface_triangles[3] = {
    {{0, 1, 2}, 0, 0},
    {{0, 1, 2}, 0, 1},
    {{0, 2, 3}, 2, 0},
};

// All triangles of a primitive.
inline std::span<SurfaceTriangle const> get_surface_triangles(bool const& is_quad) {
    return is_quad ? std::span(surface_triangles + 1, 2) : std::span(surface_triangles, 1);
}

// The parameters on the primitive of the point with the weights `u` of c1 and `v` of c2 on triangle
// number `triangle` of `surface_triangles`.
template <unsigned int triangle>
void compute_surface_parameters(float const& u, float const& v, float& s, float& t) {
    s = triangle == 1 ? u + v : u;
    t = triangle == 2 ? u + v : v;
}

// A triangle, and the weights on it of its three corners. Not in an array, so that compilers keep
// them in registers.
struct SurfaceWeights {
    SurfaceTriangle const* triangle;
    float w0;
    float w1;
    float w2;

    // The value, and its derivatives, of what takes the values x0, x1, x2 at c0, c1, c2.
    template <typename T>
    T interpolate(T const& x0, T const& x1, T const& x2) const {
        return (x0 * w0 + x1 * w1) + x2 * w2;
    }
    GMathFloatLanes derive_by_s(GMathFloatLanes const& x0, GMathFloatLanes const& x1,
                                GMathFloatLanes const& x2) const {
        return x1 - gmath_choose(triangle->s_start == 0, x0, x2);
    }
    GMathFloatLanes derive_by_t(GMathFloatLanes const& x0, GMathFloatLanes const& x1,
                                GMathFloatLanes const& x2) const {
        return x2 - gmath_choose(triangle->t_start == 0, x0, x1);
    }
};

// The weights that surfaces and maps are sampled with. The halves are told apart, and a difference
// of s and t is formed, in doubles; everything else is in floats.
inline SurfaceWeights compute_sampling_weights(bool const& is_quad, double const& s,
                                               double const& t) {
    float const narrow_s = static_cast<float>(s);
    float const narrow_t = static_cast<float>(t);
    if (!is_quad) {
        return {&surface_triangles[0], (1.0f - narrow_s) - narrow_t, narrow_s, narrow_t};
    }
    // {1 - s, s - t, t} on the first half, {1 - t, s, t - s} on the second. Looked up, because no
    // processor can foresee which of them it will be.
    unsigned int const second = s <= t ? 1 : 0;
    double const wide[2] = {s, t};
    float const rest = static_cast<float>(wide[second] - wide[1 - second]);
    float const terms[3] = {narrow_s, rest, narrow_t};
    return {&surface_triangles[1 + second], 1.0f - terms[2 * second], terms[1 - second],
            terms[2 - second]};
}

// The weights that properties are evaluated with. Deliberate: on a quad, w0 is rounded otherwise
// than in sampling.
inline SurfaceWeights compute_property_weights(bool const& is_quad, double const& s,
                                               double const& t) {
    SurfaceWeights weights = compute_sampling_weights(is_quad, s, t);
    weights.w0 = (1.0f - weights.w1) - weights.w2;
    return weights;
}

// The corner ids of c0, c1, c2.
inline IndexTriple get_surface_corner_ids(PolyMeshTopology const& topology,
                                          PrimitivePlace const& place,
                                          SurfaceTriangle const& triangle) {
    IndexTriple const ids = {place.offset + triangle.corners[0], place.offset + triangle.corners[1],
                             place.offset + triangle.corners[2]};
    return place.is_direct() ? ids : look_up(topology.triangle_indices, ids);
}
