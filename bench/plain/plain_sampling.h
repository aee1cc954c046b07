#pragma once

#include <platform/qz_geometry.h>
#include <platform/qz_gmath.h>

#include <vector>

// A fragment on plain arrays: the arithmetic of samples and maps, and nothing else. Called and not
// inlined, as anything is that answers fragments from a library.
namespace plain {

struct Sample {
    GMathVec3<float> position, position_ds, position_dt, smooth_position;
    GMathVec3<float> normal, normal_ds, normal_dt;
};

// Meshes of one kind of primitive; an entry of each array per vertex.
template <unsigned int size>  // corners of a primitive: 3 or 4
struct Surface {
    std::vector<unsigned int> corners;
    std::vector<GMathVec3<float>> positions, normals, uvs;
    std::vector<GMathVec4<float>> colors;
    std::vector<float> numbers;
};

struct Place {
    unsigned int v[3];
    float w[3];
    unsigned int s_start, t_start;
};

template <unsigned int size>
inline Place find_place(unsigned int const* corners, GeometryFragment const& fragment) {
    unsigned int const* const v = corners + std::size_t(size) * fragment.primitive_index;
    float const s = static_cast<float>(fragment.s), t = static_cast<float>(fragment.t);
    if (size == 3) {
        return {{v[0], v[1], v[2]}, {(1.0f - s) - t, s, t}, 0, 0};
    }
    if (fragment.s <= fragment.t) {
        float const rest = static_cast<float>(fragment.t - fragment.s);
        return {{v[0], v[2], v[3]}, {1.0f - t, s, rest}, 2, 0};
    }
    float const rest = static_cast<float>(fragment.s - fragment.t);
    return {{v[0], v[1], v[2]}, {1.0f - s, rest, t}, 0, 1};
}

template <typename T>
inline T interpolate(Place const& place, T const (&x)[3]) {
    return (x[0] * place.w[0] + x[1] * place.w[1]) + x[2] * place.w[2];
}

template <unsigned int size>
[[gnu::noinline]] void compute_sample(Surface<size> const& surface,
                                      GeometryFragment const& fragment, Sample& out) {
    using Vec = GMathVec3<float>;
    Place const place = find_place<size>(surface.corners.data(), fragment);
    Vec const x[3] = {surface.positions[place.v[0]], surface.positions[place.v[1]],
                      surface.positions[place.v[2]]};
    Vec const n[3] = {surface.normals[place.v[0]], surface.normals[place.v[1]],
                      surface.normals[place.v[2]]};
    out.position = interpolate(place, x);
    out.position_ds = x[1] - x[place.s_start];
    out.position_dt = x[2] - x[place.t_start];
    Vec dropped[3];
    for (unsigned int k = 0; k < 3; ++k) {
        float const square = gmath_dot(n[k], n[k]);
        dropped[k] = square == 0.0f
                         ? out.position
                         : out.position + n[k] * (gmath_dot(n[k], x[k] - out.position) / square);
    }
    out.smooth_position = interpolate(place, dropped);
    out.normal = interpolate(place, n);
    out.normal_ds = n[1] - n[place.s_start];
    out.normal_dt = n[2] - n[place.t_start];
}

template <unsigned int size>
[[gnu::noinline]] void compute_uvw(Surface<size> const& surface, GeometryFragment const& fragment,
                                   GMathVec3<double> (&out)[3]) {
    Place const place = find_place<size>(surface.corners.data(), fragment);
    GMathVec3<float> const x[3] = {surface.uvs[place.v[0]], surface.uvs[place.v[1]],
                                   surface.uvs[place.v[2]]};
    out[0] = GMathVec3<double>(interpolate(place, x));
    out[1] = GMathVec3<double>(x[1] - x[place.s_start]);
    out[2] = GMathVec3<double>(x[2] - x[place.t_start]);
}

template <unsigned int size>
[[gnu::noinline]] void compute_color(Surface<size> const& surface, GeometryFragment const& fragment,
                                     GMathVec4<float>& out) {
    Place const place = find_place<size>(surface.corners.data(), fragment);
    GMathVec4<float> const& a = surface.colors[place.v[0]];
    GMathVec4<float> const& b = surface.colors[place.v[1]];
    GMathVec4<float> const& c = surface.colors[place.v[2]];
    out = {interpolate(place, {a.x, b.x, c.x}), interpolate(place, {a.y, b.y, c.y}),
           interpolate(place, {a.z, b.z, c.z}), interpolate(place, {a.w, b.w, c.w})};
}

template <unsigned int size>
[[gnu::noinline]] void compute_number(Surface<size> const& surface,
                                      GeometryFragment const& fragment, double (&out)[3]) {
    Place place = find_place<size>(surface.corners.data(), fragment);
    place.w[0] = (1.0f - place.w[1]) - place.w[2];
    float const x[3] = {surface.numbers[place.v[0]], surface.numbers[place.v[1]],
                        surface.numbers[place.v[2]]};
    out[0] = static_cast<double>(interpolate(place, x));
    out[1] = static_cast<double>(x[1] - x[place.s_start]);
    out[2] = static_cast<double>(x[2] - x[place.t_start]);
}

}  // namespace plain
