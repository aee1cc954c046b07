#include <poly/maps/uv_compression.h>

#include <algorithm>

namespace {

using Values = CoreBasicArray<GMathVec3<float>>;

// An edge counts as short below 1/32768 of the box: two codes of 16 bits would hardly tell its ends
// apart. This is the square of that, 2^-30.
constexpr float short_edge_factor = 0x1p-30f;

GMathBbox3<float> get_used_box(CoreIndexArray const& corner_indices, Values const& values) {
    GMathBbox3<float> box = GMathBbox3<float>::get_inverted();
    CoreIndexReader const indices(corner_indices);
    unsigned int const corner_count = corner_indices.get_count();
    unsigned int const value_count = values.get_count();
    GMathVec3<float> const* const vectors = values.get_data();
    for (unsigned int corner = 0; corner < corner_count; ++corner) {
        unsigned int const index = indices[corner];
        if (index < value_count) {
            box.extend(vectors[index]);
        }
    }
    bool const is_inverted = box.minimum.x > box.maximum.x && box.minimum.y > box.maximum.y &&
                             box.minimum.z > box.maximum.z;
    return is_inverted ? GMathBbox3<float>({0, 0, 0}, {1, 1, 1}) : box;
}

float get_short_edge_threshold(GMathBbox3<float> const& box) {
    GMathVec3<float> const size = box.maximum - box.minimum;
    float const extent = std::max(std::max(size.x, size.y), size.z);
    return extent * extent * short_edge_factor;
}

struct EdgeCounts {
    unsigned int edges = 0;
    unsigned int short_edges = 0;
};

// Edges with an end that has no value count among all edges, but not among the short ones.
EdgeCounts count_edges(PolyMeshTopology const& topology, CoreIndexArray const& corner_indices,
                       Values const& values, float const& threshold) {
    EdgeCounts counts;
    unsigned int first = 0;
    for (unsigned int polygon = 0; polygon < topology.polygon_vertex_count.get_count(); ++polygon) {
        unsigned int const n = topology.polygon_vertex_count[polygon];
        for (unsigned int k = 0; k < n; ++k) {
            unsigned int const begin = corner_indices[first + k];
            unsigned int const end = corner_indices[first + (k + 1 == n ? 0 : k + 1)];
            ++counts.edges;
            if (begin < values.get_count() && end < values.get_count()) {
                GMathVec3<float> const edge = values[end] - values[begin];
                counts.short_edges += gmath_dot(edge, edge) < threshold ? 1 : 0;
            }
        }
        first += n;
    }
    return counts;
}

bool keeps_its_edges(PolyMeshTopology const& topology, CoreIndexArray const& corner_indices,
                     Values const& values, GMathBbox3<float> const& box) {
    EdgeCounts const counts =
        count_edges(topology, corner_indices, values, get_short_edge_threshold(box));
    return counts.short_edges * 100u < counts.edges;  // deliberate: in 32 bits
}

}  // namespace

void compress_uv_values(PolyMeshTopology const& topology, CoreIndexArray const& corner_indices,
                        Values const& values, GeometryCompressedVertices& compressed) {
    PolyMeshTopology::CompressionMode const mode = topology.uv_map_compression_mode;
    if (mode == PolyMeshTopology::COMPRESSION_NONE) {
        compressed.copy_from(values, false);
        return;
    }
    if (corner_indices.is_empty()) {
        compressed.copy_from(values, true);
        return;
    }
    GMathBbox3<float> const box = get_used_box(corner_indices, values);
    bool const is_compressed = mode != PolyMeshTopology::COMPRESSION_AUTOMATIC ||
                               keeps_its_edges(topology, corner_indices, values, box);
    compressed.copy_from(values, box, is_compressed);
}
