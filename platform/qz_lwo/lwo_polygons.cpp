#include <platform/qz_lwo/lwo_polygons.h>

#include <platform/qz_lwo/lwo_axes.h>

#include <cassert>

namespace {

constexpr unsigned int count_bits = 0x3FFu;  // the 6 bits above are flags of the polygon
constexpr unsigned int least_corners = 3;

bool is_polygon_type(unsigned int const& type) {
    return type == lwo_id("FACE") || type == lwo_id("PTCH") || type == lwo_id("SUBD");
}

}  // namespace

// Sizes are upper limits that follow from the bytes there are. Memory that is never written costs
// nothing, and growing step by step would.
LwoPolygons::LwoPolygons(LwoContents const& contents, LwoMesh& mesh)
    : m_contents(contents), m_mesh(mesh) {
    mesh.positions.resize(contents.point_count);
    mesh.polygon_vertex_indices.resize(contents.index_limit);
    mesh.polygon_vertex_count.resize(contents.index_limit);
    m_first_corners.resize(contents.index_limit + 1);
    m_first_corners[0] = 0;
    m_surfaces.resize(contents.index_limit);
}

void LwoPolygons::begin_layer() {
    m_has_points = false;
    m_points = LwoPoints();
    m_list = LwoPolygonList();
}

bool LwoPolygons::read_points(LwoChunk const& chunk, LwoReport& report) {
    LwoByteReader data = chunk.data;
    m_has_points = true;
    m_points.first = m_point_count;
    m_points.count = static_cast<unsigned int>(data.get_left() / 12);
    assert(m_points.count <= m_mesh.positions.get_count() - m_points.first);
    LwoProgress progress(report, data);
    GMathVec3<float>* out = m_mesh.positions.get_data() + m_points.first;
    float point[3];
    while (data.read_floats(point)) {
        *out++ = lwo_convert_point(point);
        if (!progress.step()) {
            return false;
        }
    }
    m_point_count += m_points.count;
    return progress.tell();
}

bool LwoPolygons::read_polygons(LwoChunk const& chunk, LwoReport& report) {
    LwoByteReader data = chunk.data;
    unsigned int type = 0;
    if (!data.read_u4(type)) {
        return report.refuse_end(chunk, data, "the type of the polygons");
    }
    if (!begin_list(chunk, report)) {
        return false;
    }
    m_list.is_skipped = !is_polygon_type(type);
    if (m_list.is_skipped) {
        return true;
    }
    LwoProgress progress(report, data);
    while (!data.is_at_end()) {
        unsigned int head = 0;
        if (!data.read_u2(head)) {
            return report.refuse_end(chunk, data, "the corner count of a polygon");
        }
        unsigned int const count = head & count_bits;
        if (!read_corners<false>(chunk, data, count, report)) {
            return false;
        }
        add_polygon(count, lwo_no_surface);
        if (!progress.step()) {
            return false;
        }
    }
    m_list.count = m_count - m_list.first;
    return progress.tell();
}

bool LwoPolygons::read_old_polygons(LwoChunk const& chunk, LwoReport& report) {
    if (!begin_list(chunk, report)) {
        return false;
    }
    LwoByteReader data = chunk.data;
    LwoProgress progress(report, data);
    while (!data.is_at_end()) {
        unsigned int count = 0;
        unsigned int surface = lwo_no_surface;
        if (!data.read_u2(count)) {
            return report.refuse_end(chunk, data, "the corner count of a polygon");
        }
        if (!read_corners<true>(chunk, data, count, report) ||
            !read_old_surface(chunk, data, surface, report)) {
            return false;
        }
        add_polygon(count, surface);
        if (!progress.step()) {
            return false;
        }
    }
    m_list.count = m_count - m_list.first;
    return progress.tell();
}

void LwoPolygons::finish() {
    m_mesh.polygon_vertex_indices.resize(m_corner_count);
    m_mesh.polygon_vertex_indices.shrink_to_fit();
    m_mesh.polygon_vertex_count.resize(m_kept_count);
    m_mesh.polygon_vertex_count.shrink_to_fit();
    m_first_corners.resize(m_count + 1);
    m_first_corners.shrink_to_fit();
    m_surfaces.resize(m_count);
    m_surfaces.shrink_to_fit();
}

bool LwoPolygons::begin_list(LwoChunk const& chunk, LwoReport const& report) {
    if (!m_has_points) {
        return report.refuse(chunk, chunk.offset, "polygons without points before them");
    }
    m_list = LwoPolygonList();
    m_list.first = m_count;
    m_list.points = m_points;
    return true;
}

template <bool is_old>
bool LwoPolygons::read_corners(LwoChunk const& chunk, LwoByteReader& data,
                               unsigned int const& count, LwoReport& report) {
    if (count > data.get_left() / 2) {
        return report.refuse_end(chunk, data, "the corners of a polygon");
    }
    if (count < least_corners) {
        report.warn(LwoReport::SMALL_POLYGON, chunk, data.get_offset() - 2);
    }
    assert(count <= m_mesh.polygon_vertex_indices.get_count() - m_corner_count);
    LwoPoints const points = m_points;
    unsigned int* const out = m_mesh.polygon_vertex_indices.get_data() + m_corner_count;
    for (unsigned int i = count; i-- > 0;) {  // backwards: the corners are reversed
        unsigned long long const offset = data.get_offset();
        unsigned int index = 0;
        if (!(is_old ? data.read_u2(index) : data.read_index(index))) {
            return report.refuse_end(chunk, data, "the corners of a polygon");
        }
        if (index >= points.count) {
            return report.refuse_index(chunk, offset, "point", index, points.count);
        }
        out[i] = points.first + index;
    }
    return true;
}

// The number of a name from 1, 0 for none. A negative number has its polygon followed by a count of
// detail polygons and by these, which are read like all others.
bool LwoPolygons::read_old_surface(LwoChunk const& chunk, LwoByteReader& data,
                                   unsigned int& surface, LwoReport const& report) {
    unsigned long long const offset = data.get_offset();
    unsigned int number = 0;
    if (!data.read_u2(number)) {
        return report.refuse_end(chunk, data, "the surface of a polygon");
    }
    if (number >= 0x8000u) {
        number = 0x10000u - number;
        if (!data.skip(2)) {
            return report.refuse_end(chunk, data, "the number of detail polygons");
        }
    }
    if (number > m_contents.names.get_count()) {
        return report.refuse_index(chunk, offset, "surface (from 1)", number,
                                   m_contents.names.get_count());
    }
    surface = number == 0 ? lwo_no_surface : number - 1;
    return true;
}

void LwoPolygons::add_polygon(unsigned int const& corner_count, unsigned int const& surface) {
    if (corner_count >= least_corners) {
        m_mesh.polygon_vertex_count[m_kept_count++] = corner_count;
        m_corner_count += corner_count;
    }
    m_surfaces[m_count++] = surface;
    m_first_corners[m_count] = m_corner_count;
}
