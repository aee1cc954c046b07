#include <tools/qzpoly/check/mesh_faults.h>

#include <algorithm>
#include <cmath>

namespace {

ToolFaultMeaning const s_meanings[] = {
    {"invalid-position", "vertices with a coordinate that is no number or infinite",
     from_display(0.55f, 0.05f, 0.55f)},
    {"uncut-polygon", "polygons that cannot be cut well, as where they cross themselves",
     from_display(0.85f, 0.10f, 0.15f)},
    {"zero-area", "polygons without an area", from_display(0.95f, 0.35f, 0.60f)},
    {"repeated-vertex", "polygons that have a vertex twice", from_display(0.80f, 0.45f, 0.90f)},
    {"non-manifold-edge", "edges of more than two polygons", from_display(0.90f, 0.00f, 0.00f)},
    {"winding", "edges whose two polygons face different ways", from_display(0.95f, 0.50f, 0.00f)},
    {"duplicate-edge", "edges that lie on another edge, because points are not merged",
     from_display(0.10f, 0.55f, 0.20f)},
    {"border-edge", "edges of one polygon alone", from_display(0.05f, 0.35f, 0.95f)},
    {"non-planar", "polygons with a corner off their plane by more than 1 % of their size",
     from_display(0.95f, 0.80f, 0.25f)},
    {"uv-flipped", "polygons whose uv coordinates run the other way around",
     from_display(0.25f, 0.75f, 0.80f)},
    {"uv-outside", "polygons with a uv coordinate outside of 0 to 1",
     from_display(0.55f, 0.80f, 0.45f)},
    {"no-group", "polygons without a group, where others have one",
     from_display(0.60f, 0.50f, 0.40f)},
    {"unused-vertex", "vertices of no polygon", ToolColor(0, 0, 0)},
};
static_assert(std::size(s_meanings) == tool_fault_kind_count);

bool is_finite(GMathVec3<float> const& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

void find_vertex_faults(ToolPolygons const& polygons, ToolFaultCollector& collector) {
    std::vector<bool> is_used(polygons.positions.get_count());
    for (unsigned int const vertex : polygons.vertices) {
        is_used[vertex] = true;
    }
    for (unsigned int vertex = 0; vertex < is_used.size(); ++vertex) {
        if (!is_finite(polygons.positions[vertex])) {
            collector.add(ToolFaultKind::INVALID_POSITION, {.vertex = vertex});
        }
        if (!is_used[vertex]) {
            collector.add(ToolFaultKind::UNUSED_VERTEX, {.vertex = vertex});
        }
    }
}

// Files have no name for the group of polygons without one; loaders call it "default".
void find_group_faults(PolyMesh const& mesh, ToolFaultCollector& collector) {
    CoreArray<CoreString> const& names = mesh.get_shading_group_names();
    CoreArray<unsigned int> groups;
    mesh.get_polygon_shading_groups(groups);
    auto const is_named = [&](unsigned int const& group) {
        return group < names.get_count() && !names[group].is_empty() &&
               names[group].get_view() != "default";
    };
    bool const has_named = std::any_of(groups.begin(), groups.end(), is_named);
    for (unsigned int polygon = 0; has_named && polygon < groups.get_count(); ++polygon) {
        if (!is_named(groups[polygon])) {
            collector.add(ToolFaultKind::NO_GROUP, {.polygon = polygon});
        }
    }
}

void mark(ToolFaultKind const& kind, ToolFaultKind& worst) { worst = std::min(worst, kind); }

}  // namespace

ToolFaultMeaning const& get_meaning(ToolFaultKind const& kind) {
    return s_meanings[static_cast<std::size_t>(kind)];
}

ToolFaultKind find_fault_kind(std::string const& name) {
    std::size_t kind = 0;
    while (kind < tool_fault_kind_count && s_meanings[kind].name != name) {
        ++kind;
    }
    return static_cast<ToolFaultKind>(kind);
}

ToolPolygons::ToolPolygons(PolyMesh const& mesh) {
    mesh.get_point_cloud()->get_positions(positions);
    mesh.get_polygon_vertex_count(counts);
    mesh.get_polygon_vertex_indices(vertices);
    offsets.assign(1, 0);
    for (unsigned int polygon = 0; polygon < counts.get_count(); ++polygon) {
        offsets.push_back(offsets.back() + counts[polygon]);
        polygons.insert(polygons.end(), counts[polygon], polygon);
    }
}

bool ToolFaultCollector::is_ignored(ToolFaultKind const& kind) const {
    return std::find(m_ignored.begin(), m_ignored.end(), kind) != m_ignored.end();
}

void ToolFaultCollector::add(ToolFaultKind const& kind, ToolFaultPlace const& place) {
    if (is_ignored(kind)) {
        return;
    }
    ToolFaults::Row& row = m_faults.get_row(kind);
    ++row.count;
    if (row.places.size() < m_place_count) {
        row.places.push_back(place);
    }
    if (place.polygon != ToolFaultPlace::none && place.vertex == ToolFaultPlace::none) {
        mark(kind, m_faults.polygons[place.polygon]);
    }
}

void ToolFaultCollector::mark_edge(ToolFaultKind const& kind, unsigned int const& corner) {
    if (!is_ignored(kind)) {
        mark(kind, m_faults.edges[corner]);
    }
}

ToolFaults find_faults(PolyMesh const& mesh, std::vector<ToolFaultKind> const& ignored,
                       std::size_t const& place_count) {
    ToolPolygons const polygons(mesh);
    ToolFaults faults;
    faults.polygons.assign(polygons.counts.get_count(), ToolFaultKind::COUNT);
    faults.edges.assign(polygons.polygons.size(), ToolFaultKind::COUNT);
    ToolFaultCollector collector(ignored, place_count, faults);
    find_vertex_faults(polygons, collector);
    find_polygon_faults(mesh, polygons, collector);
    find_edge_faults(polygons, collector);
    find_uv_faults(mesh, polygons, collector);
    find_group_faults(mesh, collector);
    return faults;
}
