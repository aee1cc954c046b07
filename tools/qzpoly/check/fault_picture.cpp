#include <tools/qzpoly/check/fault_picture.h>

#include <tools/qzpoly/pictures/picture_text.h>
#include <tools/qzpoly/pictures/scene.h>
#include <tools/qzpoly/terminal/terminal.h>

#include <algorithm>
#include <thread>
#include <tuple>

namespace {

constexpr double edge_half_width = 1.6;  // pixels
constexpr unsigned int sample_count = 12;

// An edge of a polygon, by its ends.
struct Side {
    unsigned int polygon;
    unsigned int low;
    unsigned int high;
    ToolFaultKind kind = ToolFaultKind::COUNT;

    Side(unsigned int const& of_polygon, unsigned int const& a, unsigned int const& b)
        : polygon(of_polygon), low(std::min(a, b)), high(std::max(a, b)) {}
    friend bool operator<(Side const& a, Side const& b) {
        return std::tie(a.polygon, a.low, a.high) < std::tie(b.polygon, b.low, b.high);
    }
};

std::vector<Side> list_faulty_sides(ToolPolygons const& polygons, ToolFaults const& faults) {
    std::vector<Side> sides;
    for (unsigned int corner = 0; corner < faults.edges.size(); ++corner) {
        if (faults.edges[corner] != ToolFaultKind::COUNT) {
            sides.emplace_back(polygons.polygons[corner], polygons.vertices[corner],
                               polygons.vertices[polygons.get_next(corner)]);
            sides.back().kind = faults.edges[corner];
        }
    }
    std::sort(sides.begin(), sides.end());
    return sides;
}

// A layer for each kind, the worst last and so on top.
std::vector<ToolEdgeLayer> make_layers(PolyMesh const& mesh, ToolFaults const& faults) {
    std::vector<Side> const sides = list_faulty_sides(ToolPolygons(mesh), faults);
    std::vector<ToolEdgeLayer> layers = {
        {list_visible_edges(mesh), from_display(0.5f, 0.5f, 0.5f)}};
    std::array<ToolEdges, tool_fault_kind_count> edges;
    CoreArray<unsigned int> vertices;
    mesh.get_primitive_indices(vertices);
    unsigned int const* corners = vertices.get_data();
    for (unsigned int primitive = 0; primitive < mesh.get_primitive_count(); ++primitive) {
        unsigned int const count = mesh.get_primitive_edge_count(primitive);
        for (unsigned int edge = 0; edge < count && !sides.empty(); ++edge) {
            Side const side(mesh.get_primitive_polygon_id(primitive), corners[edge],
                            corners[(edge + 1) % count]);
            auto const found = std::lower_bound(sides.begin(), sides.end(), side);
            if (found != sides.end() && !(side < *found)) {
                ToolEdges& of_kind = edges[static_cast<std::size_t>(found->kind)];
                of_kind.resize(mesh.get_primitive_count());
                of_kind[primitive] = static_cast<unsigned char>(of_kind[primitive] | 1u << edge);
            }
        }
        corners += count;
    }
    for (std::size_t kind = tool_fault_kind_count; kind-- > 0;) {
        if (!edges[kind].empty()) {
            layers.push_back({std::move(edges[kind]),
                              get_meaning(static_cast<ToolFaultKind>(kind)).color,
                              edge_half_width});
        }
    }
    return layers;
}

std::vector<ToolColor> color_primitives(PolyMesh const& mesh, ToolFaults const& faults) {
    ToolColor const plain = from_display(0.84f, 0.84f, 0.84f);
    std::vector<ToolColor> colors(mesh.get_primitive_count(), plain);
    for (unsigned int primitive = 0; primitive < colors.size(); ++primitive) {
        ToolFaultKind const kind = faults.polygons[mesh.get_primitive_polygon_id(primitive)];
        if (kind != ToolFaultKind::COUNT) {
            colors[primitive] = get_meaning(kind).color;
        }
    }
    return colors;
}

void draw_key(ToolFaults const& faults, ToolImage& image) {
    unsigned int const scale = std::max(1u, image.height / 400);
    unsigned int const line = (tool_letter_height + 4) * scale;
    unsigned int top = line;
    for (std::size_t kind = 0; kind < tool_fault_kind_count; ++kind) {
        if (faults.rows[kind].count != 0) {
            ToolFaultMeaning const& meaning = get_meaning(static_cast<ToolFaultKind>(kind));
            fill(image, line, top, 8 * scale, 8 * scale, meaning.color);
            draw_text(image, make_text(meaning.name, " ", faults.rows[kind].count),
                      line + 12 * scale, top, scale, ToolColor(0, 0, 0));
            top += line;
        }
    }
}

}  // namespace

bool draw_faults(PolyMesh const& mesh, ToolFaults const& faults, ToolCameraOptions const& camera,
                 ToolMessages& messages, ToolImage& image) {
    ToolScene scene(mesh, {});
    ToolCamera view;
    ToolRenderSettings settings;
    settings.thread_count = std::max(1u, std::thread::hardware_concurrency());
    settings.samples_per_pixel = sample_count;
    settings.shade_mode = &tool_primitive_color_mode;
    settings.appearance.primitive_colors = color_primitives(mesh, faults);
    settings.edge_layers = make_layers(mesh, faults);
    if (!make_camera(camera, scene.get_extent(), messages, view) ||
        !scene.prepare(GeometryRaytraceCtx::TEST_TOLERANT, false, settings.thread_count,
                       messages)) {
        return false;
    }
    ToolProgress progress("rendering");
    progress.get_bar().start();
    if (!scene.draw(view, settings, progress.get_bar(), messages, image)) {
        return false;
    }
    draw_key(faults, image);
    return true;
}
