#pragma once

#include <poly/mesh/poly_mesh_records.h>

#include <array>

// Where a fragment lies, in the words of the definition.
struct PlainPlace {
    unsigned int ids[3];
    float w[3];
    unsigned int s_start = 0, t_start = 0;

    PlainPlace(PolyMeshTopology const& topology, unsigned int const& primitive, double const& s,
               double const& t) {
        unsigned int const info = topology.primitive_infos[primitive];
        bool const is_quad = (info & PolyMeshPrimitiveInfo::quad_bit) != 0;
        bool const is_second = is_quad && !(s > t);
        float const a = float(s), b = float(t);
        w[0] = is_second ? 1.0f - b : is_quad ? 1.0f - a : (1.0f - a) - b;
        w[1] = is_quad && !is_second ? float(s - t) : a;
        w[2] = is_second ? float(t - s) : b;
        s_start = is_second ? 2 : 0;
        t_start = is_quad && !is_second ? 1 : 0;
        for (unsigned int k = 0; k < 3; ++k) {
            unsigned int const id =
                topology.primitive_index_offsets[primitive] + (is_second && k != 0 ? k + 1 : k);
            ids[k] = (info & PolyMeshPrimitiveInfo::direct_bit) != 0
                         ? id
                         : topology.triangle_indices[id];
        }
    }
    // The value, and its derivatives by s and by t.
    template <typename T>
    std::array<T, 3> interpolate(T const (&x)[3]) const {
        return {(x[0] * w[0] + x[1] * w[1]) + x[2] * w[2], x[1] - x[s_start], x[2] - x[t_start]};
    }
};
