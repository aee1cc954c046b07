#pragma once

#include <platform/qz_core.h>
#include <platform/qz_geometry.h>
#include <platform/qz_gmath.h>

// The records of a PolyMesh. Terms: a corner id is a position in polygon_vertex_indices; a
// primitive is a triangle or a quad, whole or cut from a larger polygon.

// One uv or color map as stored. `polygon_indices` holds the number of the value of every corner
// (absent: none). It is the entry's own array, or the topology's polygon_vertex_indices when there
// is one value per vertex: see map_entries.h.
struct PolyMeshUvMap {
    GeometryCompressedVertices values;
    CoreIndexArray* polygon_indices = nullptr;
    CoreString name;
};

struct PolyMeshColorMap {
    CoreArray<GMathVec4<unsigned char>> values;
    CoreIndexArray* polygon_indices = nullptr;
    CoreString name;
};

// One normal map as stored. An index n of a corner means: below the vertex count, the vertex's own
// normal; from there on, normals[n - vertex count]; absent, the flat normal of the surface there.
struct PolyMeshNormalMap {
    GMathShortNormalArray normals;
    CoreIndexArray polygon_indices;
    CoreString name;
};

// The byte of a primitive. Bits 6 and 7 mean nothing: writers keep them, readers mask them out.
struct PolyMeshPrimitiveInfo {
    static constexpr unsigned int quad_bit = 1u << 0;    // 4 corners and edges; else 3
    static constexpr unsigned int direct_bit = 1u << 1;  // a whole polygon; else cut from one
    static constexpr unsigned int edge_shift = 2;        // edge e is visible when bit 2 + e is set
    static constexpr unsigned int meaning_mask = 0x3Fu;

    // `edge` is 0 to 3.
    static constexpr unsigned int get_edge_bit(unsigned int const& edge) {
        return 1u << (edge_shift + edge);
    }
};

// Polygons, primitives, names, and the maps that do not depend on positions.
//
// | field                     | length               | an entry                                  |
// |---------------------------|----------------------|-------------------------------------------|
// | polygon_vertex_count      | polygons             | its corners                               |
// | polygon_vertex_indices    | corners              | its vertex; polygon after polygon         |
// | polygon_shading_groups    | polygons (or more)   | its shading group                         |
// | triangle_indices          | 3 per cut primitive  | a corner id                               |
// | primitive_polygon_indices | primitives           | the polygon that it belongs to            |
// | primitive_index_offsets   | primitives           | where its corners start (see below)       |
// | primitive_shading_groups  | primitives           | its polygon's shading group               |
// | primitive_infos           | primitives           | the bits of PolyMeshPrimitiveInfo         |
//
// The corners of a direct primitive start in polygon_vertex_indices, those of a cut one in
// triangle_indices.
struct PolyMeshTopology {
    // How uv values are kept; applies to maps assigned later.
    enum CompressionMode {
        COMPRESSION_NONE = 0,       // plain floats
        COMPRESSION_QUANTISED = 1,  // 16 bits within the box of the used values
        COMPRESSION_AUTOMATIC = 2,  // quantised, unless 1 % of the uv edges or more would collapse
    };

    PolyMeshTopology() = default;
    PolyMeshTopology(PolyMeshTopology const&) = delete;
    PolyMeshTopology& operator=(PolyMeshTopology const&) = delete;
    ~PolyMeshTopology();

    // Copies everything from `other` into this new record, except the creases. Deliberate: a mesh
    // that takes its own copy of a shared topology has none.
    void clone_from(PolyMeshTopology const& other);

    CoreIndexArray polygon_vertex_count;
    CoreIndexArray polygon_vertex_indices;
    CoreIndexArray polygon_shading_groups;
    CoreIndexArray triangle_indices;
    CoreIndexArray primitive_polygon_indices;
    CoreIndexArray primitive_index_offsets;
    CoreIndexArray primitive_shading_groups;
    CoreArray<unsigned char> primitive_infos;
    unsigned int primitive_index_count = 0;  // corners of all primitives
    unsigned int triangle_count = 0;
    unsigned int quad_count = 0;
    // 3 or 4 if every polygon is a primitive with so many corners, so that those of primitive p
    // start at p times that in polygon_vertex_indices; else 0.
    unsigned int uniform_corner_count = 0;
    unsigned int uniform_info = 0;  // the info of such primitives as they were built
    CoreArray<CoreString> shading_group_names;
    CoreArray<PolyMeshUvMap> uv_maps;
    CoreArray<PolyMeshColorMap> color_maps;
    CompressionMode uv_map_compression_mode = COMPRESSION_QUANTISED;
    CoreArray<float> crease_sharpnesses;
    CoreArray<int> crease_indices;
};

// A surface's summed normal: the areas that it shows along x, y and z, and how curved it is, from
// 0 (flat) to 1.
struct PolyMeshNormalSum {
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    float spread = 0.0f;
};

// What follows from the positions. The arrays by group have one entry per shading-group name.
struct PolyMeshGeometry {
    CoreArray<PolyMeshNormalMap> normal_maps;
    CoreArray<GMathBbox3<float>> shading_group_bbox;  // inverted for a group without valid corners
    CoreArray<PolyMeshNormalSum> shading_group_normals;
    GMathBbox3<float> mesh_bbox = GMathBbox3<float>::get_zero();  // of all valid vertices
    PolyMeshNormalSum mesh_normal;                                // of all groups
};

// Views of the plain arrays that describe polygons, as loaders hand them over.
struct PolyMeshPolygons {
    CoreBasicArray<unsigned int> vertex_indices;  // of all corners, polygon after polygon
    CoreBasicArray<unsigned int> vertex_count;    // corners of each polygon
    CoreBasicArray<unsigned int> shading_groups;  // of each polygon
};
