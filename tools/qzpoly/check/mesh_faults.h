#pragma once

#include <tools/qzpoly/pictures/image.h>

#include <poly/mesh/poly_mesh.h>

#include <array>
#include <string>
#include <vector>

// What may be wrong with a mesh, the worst first. A picture shows the worst of a place.
enum class ToolFaultKind : unsigned char {
    INVALID_POSITION,
    UNCUT_POLYGON,
    ZERO_AREA,
    REPEATED_VERTEX,
    NON_MANIFOLD_EDGE,
    WINDING,
    DUPLICATE_EDGE,
    BORDER_EDGE,
    NON_PLANAR,
    UV_FLIPPED,
    UV_OUTSIDE,
    NO_GROUP,
    UNUSED_VERTEX,
    COUNT,  // also: no fault
};
constexpr std::size_t tool_fault_kind_count = static_cast<std::size_t>(ToolFaultKind::COUNT);

struct ToolFaultMeaning {
    char const* name;
    char const* meaning;
    ToolColor color;  // in pictures
};
ToolFaultMeaning const& get_meaning(ToolFaultKind const& kind);
// COUNT for an unknown name.
ToolFaultKind find_fault_kind(std::string const& name);

// Where a fault is; `none` in what does not apply. Numbers count from 0.
struct ToolFaultPlace {
    static constexpr unsigned int none = 0xFFFFFFFFu;

    unsigned int polygon = none;
    unsigned int vertex = none;
    unsigned int other_vertex = none;  // the other end of an edge
    unsigned int map = none;
};

struct ToolFaults {
    struct Row {
        unsigned int count = 0;
        std::vector<ToolFaultPlace> places;  // the first ones
    };

    std::array<Row, tool_fault_kind_count> rows;
    std::vector<ToolFaultKind> polygons;  // the worst of each
    std::vector<ToolFaultKind> edges;     // the worst of each, by the corner that it starts at

    Row& get_row(ToolFaultKind const& kind) { return rows[static_cast<std::size_t>(kind)]; }
    Row const& get_row(ToolFaultKind const& kind) const {
        return rows[static_cast<std::size_t>(kind)];
    }
};

// The polygons of a mesh as plain arrays.
struct ToolPolygons {
    CoreArray<GMathVec3<float>> positions;
    CoreArray<unsigned int> counts;
    CoreArray<unsigned int> vertices;
    std::vector<unsigned int> offsets;   // of the first corner of each polygon, and of the end
    std::vector<unsigned int> polygons;  // of each corner

    explicit ToolPolygons(PolyMesh const& mesh);
    // The corner behind this one.
    unsigned int get_next(unsigned int const& corner) const {
        unsigned int const polygon = polygons[corner];
        return corner + 1 == offsets[polygon + 1] ? offsets[polygon] : corner + 1;
    }
};

// Collects faults of the kinds that are wanted.
class ToolFaultCollector {
  public:
    ToolFaultCollector(std::vector<ToolFaultKind> const& ignored, std::size_t const& place_count,
                       ToolFaults& faults)
        : m_ignored(ignored), m_place_count(place_count), m_faults(faults) {}

    void add(ToolFaultKind const& kind, ToolFaultPlace const& place);
    // The sides of an edge that was added.
    void mark_edge(ToolFaultKind const& kind, unsigned int const& corner);

  private:
    bool is_ignored(ToolFaultKind const& kind) const;

    std::vector<ToolFaultKind> m_ignored;
    std::size_t m_place_count;
    ToolFaults& m_faults;
};

// The parts of find_faults.
void find_edge_faults(ToolPolygons const& polygons, ToolFaultCollector& collector);
void find_polygon_faults(PolyMesh const& mesh, ToolPolygons const& polygons,
                         ToolFaultCollector& collector);
void find_uv_faults(PolyMesh const& mesh, ToolPolygons const& polygons,
                    ToolFaultCollector& collector);

// Everything that is wrong with a mesh, but for `ignored` kinds; with the first `place_count`
// places of each. Takes linear time.
ToolFaults find_faults(PolyMesh const& mesh, std::vector<ToolFaultKind> const& ignored,
                       std::size_t const& place_count);
