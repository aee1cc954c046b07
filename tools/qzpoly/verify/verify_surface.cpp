#include <tools/qzpoly/verify/verify_surface.h>

#include <tools/qzpoly/models/merged_vertices.h>

#include <algorithm>
#include <numeric>

namespace {

// An edge of a primitive. Its ends have the numbers `low` and `high`.
struct DirectedEdge {
    unsigned int low;
    unsigned int high;
    bool is_rising;
    unsigned int vertices[2];
    unsigned int triangle;
};

void list_triangles(CoreArray<unsigned int> const& corners, PolyMesh const& mesh,
                    ToolVerifySurface& surface) {
    unsigned int const* v = corners.get_data();
    for (unsigned int primitive = 0; primitive < mesh.get_primitive_count(); ++primitive) {
        surface.first_triangles.push_back(static_cast<unsigned int>(surface.triangles.size()));
        surface.triangles.push_back({{v[0], v[1], v[2]}, primitive});
        unsigned int const count = mesh.get_primitive_edge_count(primitive);
        if (count == 4) {
            surface.triangles.push_back({{v[0], v[2], v[3]}, primitive});
        }
        v += count;
    }
    surface.first_triangles.push_back(static_cast<unsigned int>(surface.triangles.size()));
}

// The edges around one primitive.
void add_edges(unsigned int const* v, unsigned int const& count, unsigned int const& first_triangle,
               std::vector<unsigned int> const& numbers, std::vector<DirectedEdge>& edges) {
    std::size_t const begin = edges.size();
    for (unsigned int k = 0; k < count; ++k) {
        unsigned int const from = v[k];
        unsigned int const to = v[(k + 1) % count];
        DirectedEdge const edge = {std::min(numbers[from], numbers[to]),
                                   std::max(numbers[from], numbers[to]),
                                   numbers[from] < numbers[to],
                                   {from, to},
                                   first_triangle + (count == 4 && k >= 2 ? 1 : 0)};
        auto const opposite = std::find_if(edges.begin() + static_cast<std::ptrdiff_t>(begin),
                                           edges.end(), [&](DirectedEdge const& other) {
                                               return other.low == edge.low &&
                                                      other.high == edge.high &&
                                                      other.is_rising != edge.is_rising;
                                           });
        if (opposite != edges.end()) {
            edges.erase(opposite);
        } else if (edge.low != edge.high) {
            edges.push_back(edge);
        }
    }
}

std::vector<DirectedEdge> list_edges(CoreArray<unsigned int> const& corners,
                                     ToolVerifySurface const& surface,
                                     std::vector<unsigned int> const& numbers) {
    std::vector<DirectedEdge> edges;
    unsigned int const* v = corners.get_data();
    for (std::size_t i = 0; i + 1 < surface.first_triangles.size(); ++i) {
        unsigned int const first = surface.first_triangles[i];
        unsigned int const count = surface.first_triangles[i + 1] - first + 2;
        add_edges(v, count, first, numbers, edges);
        v += count;
    }
    return edges;
}

void pair_edges(CoreArray<unsigned int> const& corners, std::vector<unsigned int> const& numbers,
                ToolVerifySurface& surface) {
    std::vector<DirectedEdge> edges = list_edges(corners, surface, numbers);
    std::stable_sort(edges.begin(), edges.end(), [](DirectedEdge const& a, DirectedEdge const& b) {
        return a.low != b.low ? a.low < b.low : a.high < b.high;
    });
    surface.edges.clear();
    surface.unpaired_count = 0;
    for (std::size_t begin = 0, end = 0; begin < edges.size(); begin = end) {
        DirectedEdge const& edge = edges[begin];
        while (end < edges.size() && edges[end].low == edge.low && edges[end].high == edge.high) {
            ++end;
        }
        if (end - begin == 2 && edge.is_rising != edges[begin + 1].is_rising) {
            surface.edges.push_back(
                {{edge.vertices[0], edge.vertices[1]}, {edge.triangle, edges[begin + 1].triangle}});
        } else {
            ++surface.unpaired_count;
        }
    }
}

void add_diagonals(ToolVerifySurface& surface) {
    for (unsigned int i = 1; i < surface.triangles.size(); ++i) {
        ToolTriangle const& second = surface.triangles[i];
        if (second.primitive == surface.triangles[i - 1].primitive) {
            surface.edges.push_back({{second.vertices[0], second.vertices[1]}, {i - 1, i}});
        }
    }
}

void list_fans(std::vector<unsigned int> const& numbers, ToolVerifySurface& surface) {
    std::vector<unsigned int>& offsets = surface.fan_offsets;
    offsets.assign(numbers.size() + 1, 0);
    for (ToolTriangle const& triangle : surface.triangles) {
        for (unsigned int const& vertex : triangle.vertices) {
            ++offsets[numbers[vertex] + 1];
        }
    }
    std::partial_sum(offsets.begin(), offsets.end(), offsets.begin());
    surface.fan_triangles.resize(offsets.back());
    std::vector<unsigned int> next = offsets;
    for (unsigned int i = 0; i < surface.triangles.size(); ++i) {
        for (unsigned int const& vertex : surface.triangles[i].vertices) {
            surface.fan_triangles[next[numbers[vertex]]++] = i;
        }
    }
}

}  // namespace

ToolVerifySurface make_verify_surface(PolyMesh const& mesh) {
    ToolVerifySurface surface;
    CoreArray<unsigned int> corners;
    mesh.get_primitive_indices(corners);
    list_triangles(corners, mesh, surface);
    std::vector<unsigned int> numbers(mesh.get_vertex_count());
    std::iota(numbers.begin(), numbers.end(), 0u);
    pair_edges(corners, numbers, surface);
    if (surface.unpaired_count != 0) {
        unsigned int const unpaired_count = surface.unpaired_count;
        CoreArray<GMathVec3<float>> positions;
        mesh.get_point_cloud()->get_positions(positions);
        numbers = merge_vertices(positions);
        pair_edges(corners, numbers, surface);
        surface.is_paired_by_position = surface.unpaired_count == 0;
        // An open mesh is told by its vertices.
        surface.unpaired_count = surface.is_paired_by_position ? 0 : unpaired_count;
    }
    add_diagonals(surface);
    list_fans(numbers, surface);
    surface.fans = std::move(numbers);
    return surface;
}
