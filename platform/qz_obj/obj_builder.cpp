#include <platform/qz_obj/obj_builder.h>

#include <algorithm>

namespace {

// Nearest, halves up. The product is exact in double, and so is the sum where it matters.
unsigned char get_color_byte(float const& value) {
    double const clamped = value > 0.0f ? (value < 1.0f ? static_cast<double>(value) : 1.0) : 0.0;
    return static_cast<unsigned char>(clamped * 255.0 + 0.5);
}

}  // namespace

// Lines and corners are rarely shorter than this; if they are, the lists grow as any list does.
void ObjBuilder::reserve(unsigned long long const& size) {
    unsigned int const largest = m_limits.largest_count;
    positions.reserve(size, 20, largest);
    uvs.values.reserve(size, 16, largest);
    normals.values.reserve(size, 16, largest);
    corners.reserve(size, 4, largest);
    counts.reserve(size, 16, largest);
    uvs.get_indices().reserve(size, 6, largest);
    normals.get_indices().reserve(size, 6, largest);
    groups.reserve(size, 16, largest);
}

// A corner takes two bytes, a face with its three corners eight.
bool ObjBuilder::make_room_for_faces(std::size_t const& size) {
    unsigned int const corner_count = static_cast<unsigned int>(size / 2 + 1);
    unsigned int const face_count = static_cast<unsigned int>(size / 8 + 1);
    return corners.make_room(corner_count, m_limits.largest_count) &&
           counts.make_room(face_count, m_limits.largest_count) &&
           uvs.get_indices().make_room(corner_count, m_limits.largest_count) &&
           normals.get_indices().make_room(corner_count, m_limits.largest_count);
}

void ObjBuilder::set_color(float const* rgb, float const& alpha) {
    unsigned int const count = positions.get_count();
    fill_colors(count);
    m_colors.get_data()[count - 1] = {get_color_byte(rgb[0]), get_color_byte(rgb[1]),
                                      get_color_byte(rgb[2]), get_color_byte(alpha)};
}

void ObjBuilder::fill_colors(unsigned int const& count) {
    unsigned int const missing = count - m_colors.get_count();
    m_colors.make_room(missing, ~0u);
    std::fill_n(m_colors.get_end(), missing, Color(255, 255, 255, 255));
    m_colors.commit(missing);
}

bool ObjBuilder::add_corner(unsigned int const& point, unsigned int const& uv,
                            unsigned int const& normal) {
    if (corners.get_count() >= m_limits.largest_count) {
        return false;
    }
    uvs.add_corner(point, uv, corners, m_progress);
    normals.add_corner(point, normal, corners, m_progress);
    bool const has_uv = uv != ObjMap::no_index;
    bool const has_normal = normal != ObjMap::no_index;
    form = has_uv ? (has_normal ? ObjForm::UVS_AND_NORMALS : ObjForm::UVS)
                  : (has_normal ? ObjForm::NORMALS : ObjForm::POINTS);
    return corners.append(point, m_limits.largest_count);
}

bool ObjBuilder::end_face(ObjReport& report) {
    unsigned int const count = corners.get_count() - m_face_begin;
    if (count < 3) {
        corners.truncate(m_face_begin);
        uvs.truncate(m_face_begin);
        normals.truncate(m_face_begin);
        report.warn(ObjReport::SHORT_FACE);
        return true;
    }
    m_face_begin += count;
    return counts.append(count, m_limits.largest_count);
}

bool ObjBuilder::finish(ObjReport& report, ObjMesh& mesh) {
    unsigned int const point_count = positions.get_count();
    if (point_count == 0) {
        return report.refuse_file("the file ends without a point");
    }
    if (forward.is_beyond(point_count)) {
        CoreString reason("a face names point ");
        reason.append(forward.highest + 1ull).append(", but there are only ").append(point_count);
        return report.refuse_at(forward.line, reason.get_view());
    }
    groups.assign(counts.get_count());
    mesh.uv_maps.resize(1);
    mesh.uv_maps[0].name = "uv";
    if (!uvs.finish(corners, point_count, m_progress, report, mesh.uv_maps[0])) {
        mesh.uv_maps.clear();
    }
    mesh.normal_maps.resize(1);
    mesh.normal_maps[0].name = "normal";
    if (!normals.finish(corners, point_count, m_progress, report, mesh.normal_maps[0])) {
        mesh.normal_maps.clear();
    }
    if (m_colors.get_count() != 0) {
        fill_colors(point_count);
        mesh.color_maps.resize(1);
        mesh.color_maps[0].name = "color";
        mesh.color_maps[0].values = m_colors.take();
    }
    creases.finish(point_count, report, mesh.import_data);
    mesh.positions = positions.take();
    mesh.polygon_vertex_indices = corners.take();
    mesh.polygon_vertex_count = counts.take();
    mesh.polygon_shading_groups = groups.take_numbers();
    mesh.shading_group_names = groups.take_names();
    return true;
}
