#include <tools/qzpoly/pictures/ground.h>

#include <algorithm>

namespace {

// Distances from the geometry's centre, relative to its size, between which shadows fade.
constexpr double fade_begin = 1.2;
constexpr double fade_end = 3.5;

}  // namespace

ToolGround::ToolGround(ToolExtent const& extent, ToolCamera const& camera)
    : m_vertical(camera.vertical) {
    bool const is_empty = extent.primitive_boxes.empty();
    GMathBbox3<double> const bbox =
        is_empty ? GMathBbox3<double>({0, 0, 0}, {0, 0, 0}) : extent.bbox;
    GMathVec3<double> const center = (bbox.minimum + bbox.maximum) * 0.5;
    m_size = gmath_length(bbox.maximum - bbox.minimum) * 0.5;
    // The lowest corner of the box; with an axis for vertical, that of the geometry.
    double lowest = 0;
    for (unsigned int axis = 0; axis < 3; ++axis) {
        lowest +=
            std::min(bbox.minimum[axis] * m_vertical[axis], bbox.maximum[axis] * m_vertical[axis]);
    }
    m_center = center + m_vertical * (lowest - gmath_dot(center, m_vertical));
    m_is_seen = !is_empty && gmath_dot(camera.eye - m_center, m_vertical) > 0;
}

bool ToolGround::find(GMathBasicRay const& ray, GMathVec3<double>& position,
                      float& strength) const {
    double const fall = -gmath_dot(ray.get_direction(), m_vertical);
    if (!m_is_seen || fall <= 0) {
        return false;
    }
    double const distance = gmath_dot(ray.get_origin() - m_center, m_vertical) / fall;
    position = ray.get_origin() + ray.get_direction() * distance;
    double const away = gmath_length(position - m_center) / m_size;
    double const f = std::clamp((fade_end - away) / (fade_end - fade_begin), 0.0, 1.0);
    strength = static_cast<float>(f * f * (3 - 2 * f));
    return strength > 0;
}
