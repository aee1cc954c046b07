#include <tools/qzpoly/check/mesh_faults.h>
#include <tools/qzpoly/models/merged_vertices.h>
#include <tools/qzpoly/models/radix_order.h>

#include <algorithm>
#include <numeric>

namespace {

// The two ends of an edge, the lower number first.
struct Ends {
    unsigned int low;
    unsigned int high;

    friend bool operator==(Ends const& a, Ends const& b) = default;
};

class EdgeChecker {
  public:
    EdgeChecker(ToolPolygons const& polygons, ToolFaultCollector& collector)
        : m_polygons(polygons), m_collector(collector) {}

    void check() {
        std::vector<unsigned int> sides(m_polygons.polygons.size());
        std::iota(sides.begin(), sides.end(), 0);
        std::erase_if(sides, [&](unsigned int const& corner) {
            Ends const ends = get_ends(corner);
            return ends.low == ends.high;  // a fault of the polygon
        });
        std::vector<unsigned int> edges;  // a side of each
        visit_equal(sides, &EdgeChecker::get_ends,
                    [&](unsigned int const* corners, unsigned int const& count) {
                        check_edge(corners, count);
                        edges.push_back(corners[0]);
                    });
        m_merged = merge_vertices(m_polygons.positions);
        visit_equal(edges, &EdgeChecker::get_merged_ends,
                    [&](unsigned int const* corners, unsigned int const& count) {
                        for (unsigned int i = 0; count > 1 && i < count; ++i) {
                            add(ToolFaultKind::DUPLICATE_EDGE, &corners[i], 1);
                        }
                    });
    }

  private:
    // Sorts the corners, and visits each run of those with equal ends.
    template <typename Visit>
    void visit_equal(std::vector<unsigned int>& corners,
                     Ends (EdgeChecker::*get)(unsigned int const&) const, Visit const& visit) {
        order_by_key(corners, [&](unsigned int const& c) { return (this->*get)(c).high; });
        order_by_key(corners, [&](unsigned int const& c) { return (this->*get)(c).low; });
        for (std::size_t begin = 0, end = 0; begin < corners.size(); begin = end) {
            while (end < corners.size() &&
                   (this->*get)(corners[begin]) == (this->*get)(corners[end])) {
                ++end;
            }
            visit(&corners[begin], static_cast<unsigned int>(end - begin));
        }
    }

    unsigned int get_start(unsigned int const& corner) const { return m_polygons.vertices[corner]; }
    unsigned int get_end(unsigned int const& corner) const {
        return m_polygons.vertices[m_polygons.get_next(corner)];
    }
    Ends get_ends(unsigned int const& corner) const {
        return {std::min(get_start(corner), get_end(corner)),
                std::max(get_start(corner), get_end(corner))};
    }
    // Edges that have no length lie on no other.
    Ends get_merged_ends(unsigned int const& corner) const {
        unsigned int const a = m_merged[get_start(corner)];
        unsigned int const b = m_merged[get_end(corner)];
        return a == b ? get_ends(corner) : Ends{std::min(a, b), std::max(a, b)};
    }

    // The sides of one edge.
    void check_edge(unsigned int const* corners, unsigned int const& count) {
        if (count == 1) {
            add(ToolFaultKind::BORDER_EDGE, corners, count);
        } else if (count > 2) {
            add(ToolFaultKind::NON_MANIFOLD_EDGE, corners, count);
        } else if (get_start(corners[0]) == get_start(corners[1])) {
            add(ToolFaultKind::WINDING, corners, count);
        }
    }

    void add(ToolFaultKind const& kind, unsigned int const* corners, unsigned int const& count) {
        m_collector.add(kind, {.polygon = m_polygons.polygons[corners[0]],
                               .vertex = get_start(corners[0]),
                               .other_vertex = get_end(corners[0])});
        for (unsigned int i = 0; i < count; ++i) {
            m_collector.mark_edge(kind, corners[i]);
        }
    }

    ToolPolygons const& m_polygons;
    ToolFaultCollector& m_collector;
    std::vector<unsigned int> m_merged;
};

}  // namespace

void find_edge_faults(ToolPolygons const& polygons, ToolFaultCollector& collector) {
    EdgeChecker(polygons, collector).check();
}
