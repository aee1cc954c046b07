#include <poly/topology/neighbourhood.h>

#include <poly/topology/edge_lists.h>

#include <numeric>
#include <utility>

namespace {

constexpr unsigned int none = 0xFFFFFFFFu;

// Faces of `face_size` corners each, and the links of their edges by number.
template <unsigned int face_size>
class EqualFaces {
  public:
    using Edge = unsigned int;

    EqualFaces(CoreBasicArray<unsigned int> const& indices, CoreArray<unsigned int>& neighbours)
        : m_vertices(indices.get_data()),
          m_neighbours(neighbours.get_data()),
          m_count(indices.get_count() / face_size) {
        std::iota(neighbours.begin(), neighbours.end(), 0u);
    }

    unsigned int get_count() const { return m_count; }
    constexpr unsigned int get_size(unsigned int const&) const { return face_size; }
    unsigned int const* get_vertices(unsigned int const& face) const {
        return m_vertices + face * face_size;
    }
    Edge get_edge(unsigned int const& face, unsigned int const& k) const {
        return face * face_size + k;
    }

    // Takes `edge` into the ring of `first`, the first edge on the same two vertices.
    void link(Edge const& edge, Edge const& first) {
        std::swap(m_neighbours[edge], m_neighbours[first]);
    }

  private:
    unsigned int const* m_vertices;
    unsigned int* m_neighbours;
    unsigned int m_count;
};

struct PolygonEdge {
    unsigned int polygon;
    unsigned int k;
};

// Polygons of any size, and the links of their edges.
class PolygonFaces {
  public:
    using Edge = PolygonEdge;

    CoreBasicArray<unsigned int> const& vertices;
    CoreBasicArray<unsigned int> const& sizes;
    CoreBasicArray<unsigned int> const& offsets;
    CoreArray<unsigned int>& neighbour_polygons;
    CoreArray<unsigned int>& neighbour_edges;
    CoreArray<unsigned char>& edge_manifold;

    unsigned int get_count() const { return sizes.get_count(); }
    unsigned int get_size(unsigned int const& face) const { return sizes[face]; }
    unsigned int const* get_vertices(unsigned int const& face) const {
        return vertices.get_data() + offsets[face];
    }
    Edge get_edge(unsigned int const& face, unsigned int const& k) const { return {face, k}; }

    void link(Edge const& edge, Edge const& first) {
        unsigned int const slot = offsets[edge.polygon] + edge.k;
        unsigned int const first_slot = offsets[first.polygon] + first.k;
        if (slot == first_slot) {
            return;
        }
        // Two edges on one vertex pair run the same way where they start at the same vertex.
        bool const is_opposite = vertices[slot] != vertices[first_slot];
        unsigned int const polygon = neighbour_polygons[first_slot];
        unsigned int const k = neighbour_edges[first_slot];
        if (polygon == none) {
            neighbour_polygons[slot] = first.polygon;
            neighbour_edges[slot] = first.k;
            edge_manifold[slot] = is_opposite ? 1 : 0;
            edge_manifold[first_slot] = is_opposite ? 1 : 0;
        } else {
            neighbour_polygons[slot] = polygon;
            neighbour_edges[slot] = k;
            edge_manifold[first_slot] = 0;
            edge_manifold[offsets[polygon] + k] = 0;
        }
        neighbour_polygons[first_slot] = edge.polygon;
        neighbour_edges[first_slot] = edge.k;
    }
};

template <typename Faces>
bool is_valid(Faces const& faces, unsigned int const& face) {
    unsigned int const* const vertices = faces.get_vertices(face);
    bool is_face_valid = true;
    for (unsigned int k = 0; k < faces.get_size(face); ++k) {
        is_face_valid &= vertices[k] != none;
    }
    return is_face_valid;
}

// Calls `visit(k, a, b)` for each edge of a face, k running from a to another vertex b.
template <typename Faces, typename Visit>
void visit_edges(Faces const& faces, unsigned int const& face, Visit const& visit) {
    unsigned int const* const vertices = faces.get_vertices(face);
    unsigned int const size = faces.get_size(face);
    unsigned int a = size != 0 ? vertices[0] : none;
    for (unsigned int k = 0; k < size; ++k) {
        unsigned int const b = vertices[k + 1 == size ? 0 : k + 1];
        if (a != b) {
            visit(k, a, b);
        }
        a = b;
    }
}

// Links each edge with the first one on the same two vertices, in the order of the faces.
template <typename Faces>
void link_edges(Faces& faces, unsigned int const& vertex_count, AppProgressBar* progress) {
    using Edge = typename Faces::Edge;
    unsigned int const face_count = faces.get_count();
    if (progress) {
        progress->set_step_count(face_count);
    }
    EdgeLists<Edge> lists(vertex_count);
    for (unsigned int face = 0; face < face_count; ++face) {
        if (is_valid(faces, face)) {
            visit_edges(faces, face,
                        [&](unsigned int, unsigned int a, unsigned int b) { lists.count(a, b); });
        }
    }
    lists.finish_counting();
    for (unsigned int face = 0; face < face_count; ++face) {
        if (is_valid(faces, face)) {
            visit_edges(faces, face, [&](unsigned int k, unsigned int a, unsigned int b) {
                lists.add(a, b, faces.get_edge(face, k));
            });
        }
        if (progress) {
            progress->step(face + 1);
        }
    }
    lists.link_all([&](Edge const& edge, Edge const& first) { faces.link(edge, first); });
}

template <unsigned int face_size>
void link_equal_faces(CoreArray<unsigned int>& neighbours,
                      CoreBasicArray<unsigned int> const& indices, unsigned int const& vertex_count,
                      AppProgressBar* progress) {
    neighbours.reset(indices.get_count());
    EqualFaces<face_size> faces(indices, neighbours);
    link_edges(faces, vertex_count, progress);
    // An edge that is a ring of its own has no neighbour.
    unsigned int* const edges = neighbours.get_data();
    for (unsigned int e = 0, count = neighbours.get_count(); e < count; ++e) {
        edges[e] = edges[e] == e ? none : edges[e];
    }
}

}  // namespace

void compute_triangles_neighbourhood(CoreArray<unsigned int>& neighbours,
                                     CoreBasicArray<unsigned int> const& indices,
                                     unsigned int const& vertex_count, AppProgressBar* progress) {
    link_equal_faces<3>(neighbours, indices, vertex_count, progress);
}

void compute_quads_neighbourhood(CoreArray<unsigned int>& neighbours,
                                 CoreBasicArray<unsigned int> const& indices,
                                 unsigned int const& vertex_count, AppProgressBar* progress) {
    link_equal_faces<4>(neighbours, indices, vertex_count, progress);
}

void compute_polygons_neighbourhood(CoreArray<unsigned int>& neighbour_polygons,
                                    CoreArray<unsigned int>& neighbour_edges,
                                    CoreArray<unsigned char>& edge_manifold,
                                    CoreBasicArray<unsigned int> const& polygon_vertex_indices,
                                    CoreBasicArray<unsigned int> const& polygon_vertex_count,
                                    CoreBasicArray<unsigned int> const& polygon_offsets,
                                    unsigned int const& vertex_count, AppProgressBar* progress) {
    neighbour_polygons.reset(polygon_vertex_indices.get_count());
    neighbour_edges.reset(polygon_vertex_indices.get_count());
    edge_manifold.reset(polygon_vertex_indices.get_count());
    neighbour_polygons.fill(none);
    neighbour_edges.fill(none);
    edge_manifold.fill(0);
    PolygonFaces faces{polygon_vertex_indices, polygon_vertex_count, polygon_offsets,
                       neighbour_polygons,     neighbour_edges,      edge_manifold};
    link_edges(faces, vertex_count, progress);
}
