#include <poly/topology/neighbourhood.h>

#include <algorithm>

namespace {

constexpr unsigned int none = 0xFFFFFFFFu;

// The edges seen so far, as a linked list for each start vertex. Of the edges of one vertex pair
// only the first is listed.
class EdgeLists {
  public:
    struct Record {
        unsigned int face;
        unsigned int edge;
        unsigned int end;
        unsigned int next;
    };

    explicit EdgeLists(unsigned int const& vertex_count) : m_heads(vertex_count) {
        m_heads.fill(none);
    }

    // The listed edge from `start` to `end`, or null.
    Record const* find(unsigned int const& start, unsigned int const& end) const {
        for (unsigned int i = m_heads[start]; i != none; i = m_records[i].next) {
            if (m_records[i].end == end) {
                return &m_records[i];
            }
        }
        return nullptr;
    }
    void add(unsigned int const& start, unsigned int const& end, unsigned int const& face,
             unsigned int const& edge) {
        m_records.append({face, edge, end, m_heads[start]});
        m_heads[start] = m_records.get_count() - 1;
    }

  private:
    CoreArray<unsigned int> m_heads;
    CoreArray<Record> m_records;
};

bool has_invalid_corner(unsigned int const* vertices, unsigned int const& count) {
    return std::find(vertices, vertices + count, none) != vertices + count;
}

template <unsigned int face_size>
void compute_face_neighbourhood(CoreArray<unsigned int>& neighbours,
                                CoreBasicArray<unsigned int> const& indices,
                                unsigned int const& vertex_count, AppProgressBar* progress) {
    unsigned int const face_count = indices.get_count() / face_size;
    neighbours.reset(indices.get_count());
    neighbours.fill(none);
    EdgeLists lists(vertex_count);
    if (progress) {
        progress->set_step_count(face_count);
    }
    for (unsigned int face = 0; face < face_count; ++face) {
        unsigned int const first = face * face_size;
        unsigned int const* const v = indices.get_data() + first;
        for (unsigned int k = 0; k < face_size && !has_invalid_corner(v, face_size); ++k) {
            unsigned int const a = v[k];
            unsigned int const b = v[(k + 1) % face_size];
            if (a == b) {
                continue;
            }
            EdgeLists::Record const* found = lists.find(b, a);
            found = found ? found : lists.find(a, b);
            if (!found) {
                lists.add(a, b, face, first + k);
                continue;
            }
            unsigned int const f = found->edge;
            neighbours[first + k] = neighbours[f] != none ? neighbours[f] : f;
            neighbours[f] = first + k;
        }
        if (progress) {
            progress->step(face + 1);
        }
    }
}

// The outputs of the polygon form, and the splicing of an edge into what they hold.
struct PolygonLinks {
    CoreArray<unsigned int>& polygons;
    CoreArray<unsigned int>& edges;
    CoreArray<unsigned char>& manifold;
    CoreBasicArray<unsigned int> const& offsets;

    void link(unsigned int const& polygon, unsigned int const& edge, EdgeLists::Record const& found,
              bool const& is_opposite) {
        unsigned int const slot = offsets[polygon] + edge;
        unsigned int const other = offsets[found.face] + found.edge;
        if (polygons[other] == none) {
            polygons[slot] = found.face;
            edges[slot] = found.edge;
            if (is_opposite) {
                manifold[slot] = 1;
                manifold[other] = 1;
            }
        } else {
            polygons[slot] = polygons[other];
            edges[slot] = edges[other];
            manifold[other] = 0;
            manifold[offsets[polygons[other]] + edges[other]] = 0;
        }
        polygons[other] = polygon;
        edges[other] = edge;
        if (!is_opposite) {
            manifold[other] = 0;
        }
    }
};

}  // namespace

void compute_triangles_neighbourhood(CoreArray<unsigned int>& neighbours,
                                     CoreBasicArray<unsigned int> const& indices,
                                     unsigned int const& vertex_count, AppProgressBar* progress) {
    compute_face_neighbourhood<3>(neighbours, indices, vertex_count, progress);
}

void compute_quads_neighbourhood(CoreArray<unsigned int>& neighbours,
                                 CoreBasicArray<unsigned int> const& indices,
                                 unsigned int const& vertex_count, AppProgressBar* progress) {
    compute_face_neighbourhood<4>(neighbours, indices, vertex_count, progress);
}

void compute_polygons_neighbourhood(CoreArray<unsigned int>& neighbour_polygons,
                                    CoreArray<unsigned int>& neighbour_edges,
                                    CoreArray<unsigned char>& edge_manifold,
                                    CoreBasicArray<unsigned int> const& polygon_vertex_indices,
                                    CoreBasicArray<unsigned int> const& polygon_vertex_count,
                                    CoreBasicArray<unsigned int> const& polygon_offsets,
                                    unsigned int const& vertex_count, AppProgressBar* progress) {
    unsigned int const corner_count = polygon_vertex_indices.get_count();
    unsigned int const polygon_count = polygon_vertex_count.get_count();
    neighbour_polygons.reset(corner_count);
    neighbour_edges.reset(corner_count);
    edge_manifold.reset(corner_count);
    neighbour_polygons.fill(none);
    neighbour_edges.fill(none);
    edge_manifold.fill(0);
    EdgeLists lists(vertex_count);
    PolygonLinks links{neighbour_polygons, neighbour_edges, edge_manifold, polygon_offsets};
    if (progress) {
        progress->set_step_count(polygon_count);
    }
    for (unsigned int polygon = 0; polygon < polygon_count; ++polygon) {
        unsigned int const n = polygon_vertex_count[polygon];
        unsigned int const* const v = polygon_vertex_indices.get_data() + polygon_offsets[polygon];
        bool const is_valid = !has_invalid_corner(v, n);
        for (unsigned int k = 0; k < n && is_valid; ++k) {
            unsigned int const a = v[k];
            unsigned int const b = v[k + 1 == n ? 0 : k + 1];
            if (a == b) {
                continue;
            }
            EdgeLists::Record const* const opposite = lists.find(b, a);
            EdgeLists::Record const* const found = opposite ? opposite : lists.find(a, b);
            if (found) {
                links.link(polygon, k, *found, opposite != nullptr);
            } else {
                lists.add(a, b, polygon, k);
            }
        }
        if (progress) {
            progress->step(polygon + 1);
        }
    }
}
