#pragma once

#include <platform/qz_gmath.h>
#include <poly/mesh/poly_mesh_records.h>

#include <cmath>
#include <vector>

// Vertex normals, and the sums of one group, as plain loops over plain arrays.
namespace plain {

struct Normals {
    std::vector<GMathShortNormal> normals;
    PolyMeshNormalSum sum;  // with lengths in the fourth component
};

inline void add_triangle(GMathVec3<float> const* positions, unsigned int const& a,
                         unsigned int const& b, unsigned int const& c, GMathVec3<float>* sums,
                         PolyMeshNormalSum& group) {
    using Vec = GMathVec3<float>;
    Vec const ab = positions[b] - positions[a];
    Vec const bc = positions[c] - positions[b];
    Vec const ca = positions[a] - positions[c];
    Vec const normal = gmath_cross(ca, ab);
    float const length = gmath_length(normal);
    if (std::isfinite(length)) {
        group.x += std::fabs(normal.x);
        group.y += std::fabs(normal.y);
        group.z += std::fabs(normal.z);
        group.spread += length;
    }
    auto const get_unit = [](Vec const& v, float const& size) {
        return size > 0 ? v / size : Vec(0, 0, 0);
    };
    Vec const unit_ab = get_unit(ab, gmath_length(ab));
    Vec const unit_bc = get_unit(bc, gmath_length(bc));
    Vec const unit_ca = get_unit(ca, gmath_length(ca));
    GMathVec3<double> const unit(get_unit(normal, length));
    sums[a] += Vec(unit * (static_cast<double>(gmath_dot(unit_ca, unit_ab)) + 1.0));
    sums[b] += Vec(unit * (static_cast<double>(gmath_dot(unit_ab, unit_bc)) + 1.0));
    sums[c] += Vec(unit * (static_cast<double>(gmath_dot(unit_bc, unit_ca)) + 1.0));
}

inline GMathShortNormal pack(GMathVec3<float> const& v) {
    using Converter = GMathHalfFloatConverter;
    return {Converter::convert_float_to_normalized_half(v.x),
            Converter::convert_float_to_normalized_half(v.y),
            Converter::convert_float_to_normalized_half(v.z)};
}

// Polygons are triangles or quads.
inline void compute_normals(std::vector<GMathVec3<float>> const& positions,
                            std::vector<unsigned int> const& corners,
                            std::vector<unsigned int> const& counts, Normals& out) {
    std::vector<GMathVec3<float>> sums(positions.size(), GMathVec3<float>(0, 0, 0));
    out.sum = {};
    unsigned int const* v = corners.data();
    for (unsigned int const& count : counts) {
        add_triangle(positions.data(), v[0], v[1], v[2], sums.data(), out.sum);
        if (count == 4) {
            add_triangle(positions.data(), v[0], v[2], v[3], sums.data(), out.sum);
        }
        v += count;
    }
    out.normals = std::vector<GMathShortNormal>(positions.size());
    for (std::size_t i = 0; i < sums.size(); ++i) {
        float const length = gmath_length(sums[i]);
        out.normals[i] = length > 0 ? pack(sums[i] * (1.0f / length)) : GMathShortNormal{0, 0, 0};
    }
}

}  // namespace plain
