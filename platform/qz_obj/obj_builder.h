#pragma once

#include <platform/qz_obj/obj_creases.h>
#include <platform/qz_obj/obj_file.h>
#include <platform/qz_obj/obj_groups.h>
#include <platform/qz_obj/obj_list.h>
#include <platform/qz_obj/obj_map.h>

// What the corners of a face name beside their point.
enum class ObjForm : unsigned char { POINTS, UVS, NORMALS, UVS_AND_NORMALS };

// The arrays of a mesh while its file is read.
class ObjBuilder {
  public:
    ObjBuilder(ObjLimits const& limits, ObjProgress& progress)
        : m_limits(limits), m_progress(progress) {}

    ObjList<GMathVec3<float>> positions;
    ObjMap uvs;
    ObjMap normals;
    ObjList<unsigned int> corners;  // while a face is read by corners, its own are there too
    ObjList<unsigned int> counts;
    ObjForward forward;
    ObjGroups groups;
    ObjCreases creases;
    ObjForm form = ObjForm::POINTS;  // of the last corner that was added

    // A file of `size` bytes is about to be read; 0 when that is not known.
    void reserve(unsigned long long const& size);
    // False: there might be too many.
    bool make_room(ObjList<GMathVec3<float>>& list, unsigned int const& extra) const {
        return list.make_room(extra, m_limits.largest_count);
    }
    // Room for all corners and faces of `size` bytes of text. False: that might be too many.
    bool make_room_for_faces(std::size_t const& size);

    // False: there are as many as there may be. Colors are of any range; a NaN is 0.
    bool add_point(GMathVec3<float> const& position) {
        return positions.append(position, m_limits.largest_count);
    }
    bool add_uv(GMathVec3<float> const& value) {
        return uvs.values.append(value, m_limits.largest_count);
    }
    bool add_normal(GMathVec3<float> const& value) {
        return normals.values.append(value, m_limits.largest_count);
    }
    void set_color(float const* rgb, float const& alpha);  // of the last point

    // A face by corners, each with the indices of its point, and of uv and normal or none.
    void begin_face() { m_face_begin = corners.get_count(); }
    bool add_corner(unsigned int const& point, unsigned int const& uv, unsigned int const& normal);
    bool end_face(ObjReport& report);

    // False: the file is refused.
    bool finish(ObjReport& report, ObjMesh& mesh);

  private:
    using Color = GMathVec4<unsigned char>;

    void fill_colors(unsigned int const& count);

    ObjLimits m_limits;
    ObjProgress& m_progress;
    ObjList<Color> m_colors;  // white for the last points, as far as it reaches
    unsigned int m_face_begin = 0;
};
