#pragma once

#include <poly/mesh/poly_mesh_records.h>

// The one way from a primitive to its corners.

inline bool is_quad(PolyMeshTopology const& topology, unsigned int const& primitive) {
    return (topology.primitive_infos[primitive] & PolyMeshPrimitiveInfo::quad_bit) != 0;
}

// Writes the primitive's 3 or 4 corner ids, and returns how many. `ids` has room for 4; the fourth
// of a triangle is left alone.
inline unsigned int get_primitive_corner_ids(PolyMeshTopology const& topology,
                                             unsigned int const& primitive, unsigned int* ids) {
    unsigned int const info = topology.primitive_infos[primitive];
    unsigned int const offset = topology.primitive_index_offsets[primitive];
    if ((info & PolyMeshPrimitiveInfo::direct_bit) == 0) {
        ids[0] = topology.triangle_indices[offset];
        ids[1] = topology.triangle_indices[offset + 1];
        ids[2] = topology.triangle_indices[offset + 2];
        return 3;
    }
    ids[0] = offset;
    ids[1] = offset + 1;
    ids[2] = offset + 2;
    if ((info & PolyMeshPrimitiveInfo::quad_bit) == 0) {
        return 3;
    }
    ids[3] = offset + 3;
    return 4;
}

// The corner ids of three of the primitive's corners, given by their numbers.
inline void get_primitive_corner_ids(PolyMeshTopology const& topology,
                                     unsigned int const& primitive,
                                     unsigned int const (&corners)[3], unsigned int (&ids)[3]) {
    unsigned int const info = topology.primitive_infos[primitive];
    unsigned int const offset = topology.primitive_index_offsets[primitive];
    ids[0] = offset + corners[0];
    ids[1] = offset + corners[1];
    ids[2] = offset + corners[2];
    if ((info & PolyMeshPrimitiveInfo::direct_bit) == 0) {
        ids[0] = topology.triangle_indices[ids[0]];
        ids[1] = topology.triangle_indices[ids[1]];
        ids[2] = topology.triangle_indices[ids[2]];
    }
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
        unsigned int const info = m_infos[primitive];
        unsigned int const offset = m_offsets[primitive];
        if ((info & PolyMeshPrimitiveInfo::direct_bit) == 0) {
            vertices[0] = m_vertices[m_triangle_indices[offset]];
            vertices[1] = m_vertices[m_triangle_indices[offset + 1]];
            vertices[2] = m_vertices[m_triangle_indices[offset + 2]];
            return 3;
        }
        vertices[0] = m_vertices[offset];
        vertices[1] = m_vertices[offset + 1];
        vertices[2] = m_vertices[offset + 2];
        if ((info & PolyMeshPrimitiveInfo::quad_bit) == 0) {
            return 3;
        }
        vertices[3] = m_vertices[offset + 3];
        return 4;
    }
    unsigned int get_vertex(unsigned int const& corner_id) const { return m_vertices[corner_id]; }

  private:
    unsigned char const* m_infos;
    CoreIndexReader m_offsets;
    CoreIndexReader m_triangle_indices;
    CoreIndexReader m_vertices;
};
