#include <tools/qzpoly/verify/verify_stage.h>

#include <tools/qzpoly/models/extent.h>
#include <tools/qzpoly/models/motion.h>
#include <tools/qzpoly/terminal/terminal.h>

#include <algorithm>
#include <cmath>

namespace {

using Wide = GMathVec3<double>;
using Box = GMathBbox3<double>;

constexpr Wide far_center(148376, 1234, -223423);
constexpr double far_size = 200;
constexpr unsigned int bound_time_count = 33;

CoreArray<unsigned int> get_corners(PolyMesh const& mesh) {
    CoreArray<unsigned int> corners;
    mesh.get_primitive_indices(corners);
    return corners;
}

template <typename Positions>
Box bound_corners(CoreArray<unsigned int> const& corners, Positions const& positions) {
    Box box = Box::get_inverted();
    for (unsigned int const& vertex : corners) {
        GMathVec3<float> const p = positions[vertex];
        if (gmath_isfinite(p)) {
            box.extend(Wide(p));
        }
    }
    return box;
}

double get_longest_side(Box const& box) {
    Wide const sides = box.maximum - box.minimum;
    return std::max({sides.x, sides.y, sides.z});
}

bool is_within(Box const& box, GMathVec3<float> const& position) {
    Wide const p(position);
    return box.minimum.x <= p.x && p.x <= box.maximum.x && box.minimum.y <= p.y &&
           p.y <= box.maximum.y && box.minimum.z <= p.z && p.z <= box.maximum.z;
}

unsigned long long count_bound_faults_at(ToolVerifyStage const& stage,
                                         CoreArray<unsigned int> const& corners,
                                         double const& time) {
    PolyMesh const& mesh = stage.get_mesh();
    CtxEval const ctx(&stage.get_shader_ctx());
    GeometryPositionArray const positions = stage.get_positions(time);
    Box const mesh_box = mesh.get_bbox_at(ctx, time);
    unsigned long long fault_count = 0;
    unsigned int const* vertices = corners.get_data();
    for (unsigned int primitive = 0; primitive < mesh.get_primitive_count(); ++primitive) {
        unsigned int const count = mesh.get_primitive_edge_count(primitive);
        Box box;
        mesh.compute_primitive_bbox_at(ctx, primitive, time, box);
        bool const is_finite = std::all_of(vertices, vertices + count, [&](unsigned int const& v) {
            return gmath_isfinite(positions[v]);
        });
        for (unsigned int k = 0; k < count; ++k) {
            GMathVec3<float> const p = positions[vertices[k]];
            bool const is_outside = gmath_isfinite(p) && !is_within(mesh_box, p);
            fault_count += is_outside || (is_finite && !is_within(box, p)) ? 1 : 0;
        }
        vertices += count;
    }
    return fault_count;
}

}  // namespace

ToolVerifyStage::ToolVerifyStage(PolyMesh const& mesh, ToolVerifyPlace const& place)
    : m_place(place), m_mesh(mesh.get_copy()) {
    CoreArray<unsigned int> const corners = get_corners(mesh);
    GeometryPointCloud cloud(*mesh.get_point_cloud(), true);
    CoreArray<GMathVec3<float>> positions;
    cloud.get_positions(positions);
    Box const box = bound_corners(corners, positions);
    Wide const center = (box.minimum + box.maximum) * 0.5;
    double const size = get_longest_side(box);
    bool const stays = !place.is_far && gmath_length(center) <= size;
    Wide const new_center = place.is_far ? far_center : stays ? center : Wide(0, 0, 0);
    double const scale = place.is_far ? far_size / size : 1.0;
    for (GMathVec3<float>& p : positions) {
        p = stays ? p : GMathVec3<float>((Wide(p) - center) * scale + new_center);
    }
    cloud.set_positions(positions);
    cloud.set_velocities({});  // whatever motion the mesh has of its own
    if (place.is_moving) {
        // By a third of a turn in a unit of time, about an axis that is none of the space's, and a
        // little onwards.
        Wide const turn(0.5, 1.9, -0.7);
        Wide const shift(0.1 * size * scale, 0, 0.05 * size * scale);
        for (GMathVec3<float>& p : positions) {
            p = GMathVec3<float>(shift + gmath_cross(turn, Wide(p) - new_center));
        }
        cloud.set_velocities(positions);
        m_times = {-0.5, 0.5};
        m_shader_ctx = make_shader_ctx(m_times);
    }
    m_mesh->set_point_cloud(cloud, nullptr);
    measure(corners);
}

void ToolVerifyStage::measure(CoreArray<unsigned int> const& corners) {
    m_bbox = bound_corners(corners, get_positions(0));
    m_size = get_longest_side(m_bbox);
    for (double const& time : m_times) {
        Box const box = bound_corners(corners, get_positions(time));
        m_bbox.extend(box.minimum);
        m_bbox.extend(box.maximum);
    }
    for (unsigned int axis = 0; axis < 3; ++axis) {
        m_reach =
            std::max({m_reach, std::abs(m_bbox.minimum[axis]), std::abs(m_bbox.maximum[axis])});
    }
}

GeometryPositionArray ToolVerifyStage::get_positions(double const& time) const {
    GeometryPointCloudData const& data = m_mesh->get_point_cloud()->get_data();
    GeometryPositionArray positions;
    positions.init(data.point_count);
    positions.append(data.positions.get_data(), 1.0f);
    if (m_place.is_moving) {
        positions.append(data.velocities.get_data(), static_cast<float>(time));
    }
    return positions;
}

bool can_be_staged(PolyMesh const& mesh) {
    Box const box = bound_corners(get_corners(mesh), mesh.get_point_cloud()->get_data().positions);
    return is_drawable(box) && get_longest_side(box) > 0;
}

bool has_finite_corners(PolyMesh const& mesh) {
    CoreArray<unsigned int> const corners = get_corners(mesh);
    return std::all_of(corners.begin(), corners.end(), [&](unsigned int const& vertex) {
        return gmath_isfinite(mesh.get_point_cloud()->get_data().positions[vertex]);
    });
}

unsigned long long count_bound_faults(ToolVerifyStage const& stage) {
    CoreArray<unsigned int> const corners = get_corners(stage.get_mesh());
    unsigned long long fault_count = 0;
    for (unsigned int i = 0; i < bound_time_count && !is_interrupted(); ++i) {
        double const time = static_cast<double>(i) / (bound_time_count - 1) - 0.5;
        fault_count += count_bound_faults_at(stage, corners, time);
    }
    return fault_count;
}
