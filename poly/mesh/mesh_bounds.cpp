#include <poly/mesh/mesh_bounds.h>

#include <poly/mesh/progress_task.h>

namespace {

// Deliberate: the z of the mesh box stays as it was.
void reset_bounds(PolyMeshGeometry& geometry) {
    geometry.mesh_bbox.minimum.x = geometry.mesh_bbox.minimum.y = 0.0f;
    geometry.mesh_bbox.maximum.x = geometry.mesh_bbox.maximum.y = 0.0f;
    geometry.shading_group_bbox.fill(GMathBbox3<float>::get_zero());
}

void log_invalid_vertex(unsigned int const& vertex, GMathVec3<float> const& p) {
    CoreLogHandler& log = CoreLogHandler::get_main();
    if (log.is_admitted(2)) {
        CoreLogStream stream;
        stream << "PolyMesh: vertex " << vertex << " is not valid: (" << p.x << ", " << p.y << ", "
               << p.z << ")\n";
        log.log(2, stream);
    }
}

void update_mesh_box(CoreBasicArray<GMathVec3<float>> const& positions, GMathBbox3<float>& box,
                     AppProgressBar* progress) {
    ProgressTask const task(progress, "compute vertices bbox", 0.3f);
    set_step_count(progress, positions.get_count());
    GMathBbox3<float> grown = GMathBbox3<float>::get_inverted();
    for (unsigned int vertex = 0; vertex < positions.get_count(); ++vertex) {
        if (gmath_isfinite(positions[vertex])) {
            grown.extend(positions[vertex]);
        } else {
            log_invalid_vertex(vertex, positions[vertex]);
        }
        step(progress, vertex + 1);
    }
    box = grown;
}

void extend_by_polygon(PolyMeshTopology const& topology,
                       CoreBasicArray<GMathVec3<float>> const& positions,
                       unsigned int const& first_corner, unsigned int const& corner_count,
                       GMathBbox3<float>& box) {
    GMathBbox3<float> grown = box;
    unsigned int const end = first_corner + corner_count;
    for (unsigned int corner = first_corner; corner < end; ++corner) {
        GMathVec3<float> const& p = positions[topology.polygon_vertex_indices[corner]];
        if (gmath_isfinite(p)) {
            grown.extend(p);
        }
    }
    box = grown;
}

void update_group_boxes(PolyMeshTopology const& topology,
                        CoreBasicArray<GMathVec3<float>> const& positions,
                        CoreArray<GMathBbox3<float>>& boxes, AppProgressBar* progress) {
    ProgressTask const task(progress, "compute shading group bboxes", 0.7f);
    unsigned int const polygon_count = topology.polygon_vertex_count.get_count();
    set_step_count(progress, polygon_count);
    boxes.fill(GMathBbox3<float>::get_inverted());
    unsigned int corner = 0;
    for (unsigned int polygon = 0; polygon < polygon_count; ++polygon) {
        unsigned int const group = topology.polygon_shading_groups[polygon];
        unsigned int const corner_count = topology.polygon_vertex_count[polygon];
        if (group < boxes.get_count()) {
            extend_by_polygon(topology, positions, corner, corner_count, boxes[group]);
        }
        corner += corner_count;
        step(progress, polygon + 1);
    }
}

}  // namespace

void update_bounds(PolyMeshTopology const& topology,
                   CoreBasicArray<GMathVec3<float>> const& positions, PolyMeshGeometry& geometry,
                   AppProgressBar* progress) {
    if (positions.is_empty()) {
        reset_bounds(geometry);
        if (progress) {
            progress->set_value(1.0);
        }
        return;
    }
    update_mesh_box(positions, geometry.mesh_bbox, progress);
    update_group_boxes(topology, positions, geometry.shading_group_bbox, progress);
}
