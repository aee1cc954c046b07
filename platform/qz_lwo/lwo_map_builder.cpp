#include <platform/qz_lwo/lwo_map_builder.h>

#include <algorithm>
#include <cassert>
#include <cmath>

namespace {

// What is noted of a point besides the numbers of values, which begin behind.
constexpr unsigned int unused = 0;
constexpr unsigned int without_value = 1;
constexpr unsigned int first_value = 2;

constexpr unsigned int corners_per_check = 1u << 20;

// Without indices, and with the same meaning, when corners take the values of their vertices.
void drop_plain_indices(LwoMesh const& mesh, LwoMapBuilder::Map& map) {
    if (map.values.get_count() == mesh.positions.get_count() &&
        std::equal(map.indices.begin(), map.indices.end(), mesh.polygon_vertex_indices.begin(),
                   mesh.polygon_vertex_indices.end())) {
        map.indices.clear();
    }
}

}  // namespace

LwoMapBuilder::LwoMapBuilder(LwoMesh const& mesh, LwoPolygons const& polygons,
                             CoreArray<LwoMapPart> const& parts,
                             unsigned long long const& list_limit, LwoReport& report)
    : m_mesh(mesh),
      m_polygons(polygons),
      m_parts(parts),
      m_list_limit(list_limit),
      m_report(report),
      m_first_value(first_value) {}

bool LwoMapBuilder::build(LwoMap const& map, Map& built) {
    built.values.reserve(map.value_limit);
    if (!add_values_of_points(map, built) || !add_values_of_corners(map, built)) {
        return false;
    }
    m_first_value += built.values.get_count();
    built.values.shrink_to_fit();
    drop_plain_indices(m_mesh, built);
    return true;
}

bool LwoMapBuilder::add_values_of_points(LwoMap const& map, Map& built) {
    unsigned int const first_part = map.first_parts[LwoMap::BY_POINT];
    if (first_part == lwo_no_part) {
        return true;
    }
    if (!mark_used_points()) {
        return false;
    }
    m_is_reached = false;
    m_is_in_order = true;
    for (unsigned int i = first_part; i != lwo_no_part; i = m_parts[i].next) {
        if (!(map.is_normal_map ? read_values_of_points<3>(m_parts[i], built)
                                : read_values_of_points<2>(m_parts[i], built))) {
            return false;
        }
    }
    if (!m_is_reached) {
        built.values.resize(0);
        return true;
    }
    bool const is_plain = m_is_in_order && built.values.get_count() == m_mesh.positions.get_count();
    if (is_plain && map.first_parts[LwoMap::BY_CORNER] == lwo_no_part) {
        // What normals are checked by takes the same time as a list.
        return !map.is_normal_map || charge_list(m_parts[first_part]);
    }
    return list_values_of_points(m_parts[first_part], built);
}

bool LwoMapBuilder::add_values_of_corners(LwoMap const& map, Map& built) {
    unsigned int const first_part = map.first_parts[LwoMap::BY_CORNER];
    for (unsigned int i = first_part; i != lwo_no_part; i = m_parts[i].next) {
        if (!(map.is_normal_map ? read_values_of_corners<3>(m_parts[i], built)
                                : read_values_of_corners<2>(m_parts[i], built))) {
            return false;
        }
    }
    return true;
}

template <unsigned int dimension>
bool LwoMapBuilder::read_values_of_points(LwoMapPart const& part, Map& built) {
    LwoByteReader data = part.chunk.data;
    LwoPoints const points = part.points;
    unsigned int* const values_of_points = m_values_of_points.get_data() + points.first;
    LwoProgress progress(m_report, data);
    bool is_reached = m_is_reached;
    bool is_in_order = m_is_in_order;
    while (!data.is_at_end()) {
        unsigned long long const offset = data.get_offset();
        unsigned int point = 0;
        float numbers[dimension];
        if (!data.read_index(point) || !data.read_floats(numbers)) {
            return m_report.refuse_end(part.chunk, data, "a value of the map");
        }
        if (point >= points.count) {
            return m_report.refuse_index(part.chunk, offset, "point", point, points.count);
        }
        unsigned int const value = built.values.get_count();
        is_in_order = is_in_order && points.first + point == value;
        if (values_of_points[point] != unused) {
            values_of_points[point] = m_first_value + value;
            is_reached = true;
        }
        add_value(part, offset, numbers, built);
        if (!progress.step()) {
            return false;
        }
    }
    m_is_reached = is_reached;
    m_is_in_order = is_in_order;
    return progress.tell();
}

template <unsigned int dimension>
bool LwoMapBuilder::read_values_of_corners(LwoMapPart const& part, Map& built) {
    LwoByteReader data = part.chunk.data;
    LwoProgress progress(m_report, data);
    while (!data.is_at_end()) {
        unsigned long long const offset = data.get_offset();
        unsigned int point = 0;
        unsigned int polygon = 0;
        float numbers[dimension];
        if (!data.read_index(point) || !data.read_index(polygon) || !data.read_floats(numbers)) {
            return m_report.refuse_end(part.chunk, data, "a value of the map");
        }
        if (point >= part.points.count) {
            return m_report.refuse_index(part.chunk, offset, "point", point, part.points.count);
        }
        if (polygon >= part.polygon_count) {
            return m_report.refuse_index(part.chunk, offset, "polygon", polygon,
                                         part.polygon_count);
        }
        Place place;
        if (find_corner(part.points.first + point, part.first_polygon + polygon, place)) {
            if (built.indices.is_empty() && !list_no_values(part, built)) {
                return false;
            }
            set_corners(place, built);
            add_value(part, offset, numbers, built);
        } else if (!place.is_dropped) {
            m_report.warn(LwoReport::POINT_NOT_IN_POLYGON, part.chunk, offset);
        }
        if (!progress.step()) {
            return false;
        }
    }
    return progress.tell();
}

// The walk is short: a polygon of a form with maps has at most 1023 corners.
inline bool LwoMapBuilder::find_corner(unsigned int const& vertex, unsigned int const& polygon,
                                       Place& place) const {
    unsigned int const* const corners = m_mesh.polygon_vertex_indices.get_data();
    unsigned int const first = m_polygons.get_first_corner(polygon);
    place.vertex = vertex;
    place.end = m_polygons.get_end_corner(polygon);
    place.is_dropped = first == place.end;
    place.corner = first;
    while (place.corner != place.end && corners[place.corner] != vertex) {
        ++place.corner;
    }
    return place.corner != place.end;
}

// A polygon may visit a point more than once: all these corners get the value.
inline void LwoMapBuilder::set_corners(Place const& place, Map& built) const {
    unsigned int const* const corners = m_mesh.polygon_vertex_indices.get_data();
    unsigned int* const indices = built.indices.get_data();
    unsigned int const value = built.values.get_count();
    for (unsigned int i = place.corner; i < place.end; ++i) {
        if (corners[i] == place.vertex) {
            indices[i] = value;
        }
    }
}

template <unsigned int dimension>
inline void LwoMapBuilder::add_value(LwoMapPart const& part, unsigned long long const& offset,
                                     float const (&numbers)[dimension], Map& built) {
    GMathVec3<float> value(numbers[0], numbers[1], dimension == 3 ? numbers[dimension - 1] : 0.0f);
    if (!gmath_isfinite(value)) {
        m_report.warn(LwoReport::NOT_FINITE, part.chunk, offset);
        bool const is_normal = dimension == 3;
        value.x = is_normal || !std::isfinite(value.x) ? 0.0f : value.x;
        value.y = is_normal || !std::isfinite(value.y) ? 0.0f : value.y;
        value.z = 0.0f;
    }
    assert(built.values.get_count() < built.values.get_capacity());
    built.values.append(value);
}

bool LwoMapBuilder::list_values_of_points(LwoMapPart const& part, Map& built) {
    if (!charge_list(part)) {
        return false;
    }
    unsigned int const count = m_mesh.polygon_vertex_indices.get_count();
    unsigned int const first = m_first_value;
    built.indices.resize(count);
    unsigned int* const indices = built.indices.get_data();
    for (unsigned int i = 0; i < count; ++i) {
        if (i % corners_per_check == 0 && !m_report.advance(0)) {
            return false;
        }
        unsigned int const value = m_values_of_points[m_mesh.polygon_vertex_indices[i]];
        indices[i] = value >= first ? value - first : CoreIndexArray::absent;
    }
    return true;
}

bool LwoMapBuilder::list_no_values(LwoMapPart const& part, Map& built) {
    if (!charge_list(part)) {
        return false;
    }
    built.indices.resize(m_mesh.polygon_vertex_indices.get_count());
    built.indices.fill(CoreIndexArray::absent);
    return true;
}

bool LwoMapBuilder::charge_list(LwoMapPart const& part) {
    m_list_bytes += sizeof(unsigned int) * m_mesh.polygon_vertex_indices.get_count();
    return m_list_bytes <= m_list_limit ||
           m_report.refuse(part.chunk, part.chunk.offset,
                           "too many maps, their lists of corners take too much memory");
}

bool LwoMapBuilder::mark_used_points() {
    if (!m_values_of_points.is_empty()) {
        return true;
    }
    m_values_of_points.resize(m_mesh.positions.get_count());
    m_values_of_points.fill(unused);
    for (unsigned int i = 0; i < m_mesh.polygon_vertex_indices.get_count(); ++i) {
        if (i % corners_per_check == 0 && !m_report.advance(0)) {
            return false;
        }
        m_values_of_points[m_mesh.polygon_vertex_indices[i]] = without_value;
    }
    return true;
}
