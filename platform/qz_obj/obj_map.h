#pragma once

#include <platform/qz_geometry.h>
#include <platform/qz_obj/obj_list.h>
#include <platform/qz_obj/obj_progress.h>
#include <platform/qz_obj/obj_report.h>

// The highest index that was ahead of its values when it was read, and its line: enough to tell at
// the end of the file whether any index dangles.
struct ObjForward {
    unsigned int highest = 0;
    unsigned long long line = 0;  // 0: no index was ahead

    void note(unsigned int const& index, unsigned long long const& at_line) {
        if (line == 0 || index > highest) {
            highest = index;
            line = at_line;
        }
    }
    bool is_beyond(unsigned int const& count) const { return line != 0 && highest >= count; }
};

// A map of texture points or normals in the making. Its indices are stored only when they must be:
// not while no corner has one, nor while each is that of the corner's vertex.
class ObjMap {
  public:
    enum State { ABSENT, SAME, LISTED };
    static constexpr unsigned int no_index = ~0u;

    ObjList<GMathVec3<float>> values;
    ObjForward forward;

    State const& get_state() const { return m_state; }
    // Entries for every corner when the state is LISTED, else empty; the fast reader writes here.
    ObjList<unsigned int>& get_indices() { return m_indices; }

    // The corner behind `corners` has this vertex and this index, or none.
    void add_corner(unsigned int const& vertex, unsigned int const& index,
                    ObjList<unsigned int> const& corners, ObjProgress& progress);
    // Forgets the corners from number `corner_count` on.
    void truncate(unsigned int const& corner_count);

    // Puts the map into `map`, unless no corner has a value: then false. Indices that dangle become
    // `no_index`, with a warning.
    bool finish(ObjList<unsigned int> const& corners, unsigned int const& point_count,
                ObjProgress& progress, ObjReport& report, GeometryMap<GMathVec3<float>>& map);

  private:
    void list(ObjList<unsigned int> const& corners, ObjProgress& progress);
    void drop_dangling(ObjProgress& progress, ObjReport& report);

    ObjList<unsigned int> m_indices;
    State m_state = ABSENT;
};
