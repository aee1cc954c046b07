#pragma once

#include <poly/mesh/poly_mesh_records.h>

#include <cstring>

// The one way from a primitive to its corners.

// Where a primitive's corner ids are: from `offset` on, themselves if it is direct, else in
// triangle_indices.
struct PrimitivePlace {
    unsigned int offset;
    unsigned int info;  // of PolyMeshPrimitiveInfo; its edges may since have been hidden or shown

    bool is_quad() const { return (info & PolyMeshPrimitiveInfo::quad_bit) != 0; }
    bool is_direct() const { return (info & PolyMeshPrimitiveInfo::direct_bit) != 0; }
};

inline PrimitivePlace find_primitive(PolyMeshTopology const& topology,
                                     unsigned int const& primitive) {
    // Most meshes are all triangles or all quads: then two arrays need not be read.
    if (topology.uniform_corner_count != 0) {
        return {primitive * topology.uniform_corner_count, topology.uniform_info};
    }
    return {topology.primitive_index_offsets[primitive], topology.primitive_infos[primitive]};
}

// Three indices side by side. Not an array, so that compilers keep them in registers.
struct IndexTriple {
    unsigned int a;
    unsigned int b;
    unsigned int c;
};

// What an array of indices holds for three.
template <typename Array>
IndexTriple look_up(Array const& array, IndexTriple const& indices) {
    return {array[indices.a], array[indices.b], array[indices.c]};
}

inline bool is_quad(PolyMeshTopology const& topology, unsigned int const& primitive) {
    return find_primitive(topology, primitive).is_quad();
}

// Writes the primitive's 3 or 4 corner ids, and returns how many. `ids` has room for 4; the fourth
// of a triangle is left alone.
inline unsigned int get_primitive_corner_ids(PolyMeshTopology const& topology,
                                             unsigned int const& primitive, unsigned int* ids) {
    PrimitivePlace const place = find_primitive(topology, primitive);
    unsigned int const offset = place.offset;
    if (!place.is_direct()) {
        ids[0] = topology.triangle_indices[offset];
        ids[1] = topology.triangle_indices[offset + 1];
        ids[2] = topology.triangle_indices[offset + 2];
        return 3;
    }
    ids[0] = offset;
    ids[1] = offset + 1;
    ids[2] = offset + 2;
    if (!place.is_quad()) {
        return 3;
    }
    ids[3] = offset + 3;
    return 4;
}

// The same with the vertices of the corners.
inline unsigned int get_primitive_vertices(PolyMeshTopology const& topology,
                                           unsigned int const& primitive, unsigned int* vertices) {
    unsigned int ids[4];
    unsigned int const count = get_primitive_corner_ids(topology, primitive, ids);
    for (unsigned int k = 0; k < count; ++k) {
        vertices[k] = topology.polygon_vertex_indices[ids[k]];
    }
    return count;
}

// The same for loops over all primitives.
class PrimitiveReader {
  public:
    static constexpr unsigned int run_length = 8;

    explicit PrimitiveReader(PolyMeshTopology const& topology)
        : m_infos(topology.primitive_infos.get_data()),
          m_offsets(topology.primitive_index_offsets),
          m_triangle_indices(topology.triangle_indices),
          m_vertices(topology.polygon_vertex_indices) {}

    unsigned int get_corner_ids(unsigned int const& primitive, unsigned int (&ids)[4]) const {
        unsigned int const info = m_infos[primitive];
        unsigned int const offset = m_offsets[primitive];
        if ((info & PolyMeshPrimitiveInfo::direct_bit) == 0) {
            ids[0] = m_triangle_indices[offset];
            ids[1] = m_triangle_indices[offset + 1];
            ids[2] = m_triangle_indices[offset + 2];
            return 3;
        }
        ids[0] = offset;
        ids[1] = offset + 1;
        ids[2] = offset + 2;
        ids[3] = offset + 3;
        return (info & PolyMeshPrimitiveInfo::quad_bit) == 0 ? 3 : 4;
    }
    unsigned int get_vertices(unsigned int const& primitive, unsigned int (&vertices)[4]) const {
        unsigned int const count = get_corner_ids(primitive, vertices);
        for (unsigned int k = 0; k < count; ++k) {
            vertices[k] = m_vertices[vertices[k]];
        }
        return count;
    }
    unsigned int get_vertex(unsigned int const& corner_id) const { return m_vertices[corner_id]; }

    // Calls visit(first, vertices, size, count) for the first `primitive_count`, in order: for one,
    // or for `run_length` of them, with the vertices of `size` corners each.
    template <typename Visit>
    void visit_all(unsigned int const& primitive_count, Visit const& visit) const {
        unsigned int run[4 * run_length] = {};
        unsigned int primitive = 0;
        while (primitive < primitive_count) {
            unsigned int const size =
                primitive_count - primitive >= run_length ? get_run(primitive, run) : 0;
            if (size == 0) {
                unsigned int vertices[4];
                unsigned int const count = get_vertices(primitive, vertices);
                visit(primitive++, vertices, count, 1u);
            } else {
                visit(primitive, run, size, run_length);
                primitive += run_length;
            }
        }
    }

  private:
    // The vertices of a run of primitives from `first` on, if these are whole polygons of as many
    // corners, one after the other, as most are: how many corners each has. Else 0.
    unsigned int get_run(unsigned int const& first,
                         unsigned int (&vertices)[4 * run_length]) const {
        constexpr unsigned long long in_all = 0x0101010101010101ull;  // bytes of a word
        constexpr unsigned int kind = PolyMeshPrimitiveInfo::quad_bit;
        constexpr unsigned int direct = PolyMeshPrimitiveInfo::direct_bit;
        unsigned long long infos;
        static_assert(sizeof infos == run_length);
        std::memcpy(&infos, m_infos + first, sizeof infos);
        unsigned long long const kinds = infos & in_all * (kind | direct);
        unsigned int const size = 3 + static_cast<unsigned int>(infos & kind);
        unsigned int const offset = m_offsets[first];
        if (kinds != in_all * (direct + size - 3) ||
            m_offsets[first + run_length - 1] != offset + (run_length - 1) * size) {
            return 0;
        }
        m_vertices.read(offset, run_length * size, vertices);
        return size;
    }

    unsigned char const* m_infos;
    CoreIndexReader m_offsets;
    CoreIndexReader m_triangle_indices;
    CoreIndexReader m_vertices;
};
