#include <tools/qzpoly/models/polygon_cuts.h>

#include <poly/topology/triangulate_polygon.h>

#include <numeric>

namespace {

std::vector<bool> find_whole_quads(PolyMesh const& mesh) {
    std::vector<bool> is_whole(mesh.get_polygon_count());
    for (unsigned int i = 0; i < mesh.get_primitive_count(); ++i) {
        is_whole[mesh.get_primitive_polygon_id(i)] = mesh.get_primitive_edge_count(i) == 4;
    }
    return is_whole;
}

}  // namespace

// Cuts once more what the mesh was cut from.
std::vector<unsigned int> count_missing_triangles(PolyMesh const& mesh) {
    CoreArray<GMathVec3<float>> positions;
    CoreArray<unsigned int> counts;
    CoreArray<unsigned int> vertices;
    mesh.get_point_cloud()->get_positions(positions);
    mesh.get_polygon_vertex_count(counts);
    mesh.get_polygon_vertex_indices(vertices);
    std::vector<bool> const is_whole_quad = find_whole_quads(mesh);
    std::vector<unsigned int> missing(counts.get_count());
    std::vector<unsigned int> triangles;
    unsigned int const* corners = vertices.get_data();
    for (unsigned int polygon = 0; polygon < missing.size(); ++polygon) {
        unsigned int const corner_count = counts[polygon];
        if (corner_count > 3 && !is_whole_quad[polygon]) {
            triangles.resize(std::size_t(3) * (corner_count - 2));
            unsigned int const written =
                triangulate_polygon(positions.get_data(), corners, corner_count, triangles.data());
            missing[polygon] = corner_count - 2 - written / 3;
        }
        corners += corner_count;
    }
    return missing;
}

unsigned int count_degenerate_triangles(PolyMesh const& mesh) {
    std::vector<unsigned int> const missing = count_missing_triangles(mesh);
    return std::accumulate(missing.begin(), missing.end(), 0u);
}
