#include <platform/qz_obj/obj_map.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

bool is_same(CoreArray<unsigned int> const& indices, ObjList<unsigned int> const& corners) {
    return std::equal(indices.begin(), indices.end(), corners.get_data());
}

}  // namespace

void ObjMap::add_corner(unsigned int const& vertex, unsigned int const& index,
                        ObjList<unsigned int> const& corners, ObjProgress& progress) {
    if (m_state == ABSENT && corners.get_count() == 0 && index == vertex) {
        m_state = SAME;
    }
    if (m_state != LISTED && index != (m_state == SAME ? vertex : no_index)) {
        list(corners, progress);
    }
    if (m_state == LISTED) {
        m_indices.append(index, ~0u);
    }
}

void ObjMap::truncate(unsigned int const& corner_count) {
    if (m_state == LISTED) {
        m_indices.truncate(corner_count);
    }
}

bool ObjMap::finish(ObjList<unsigned int> const& corners, unsigned int const& point_count,
                    ObjProgress& progress, ObjReport& report, GeometryMap<GMathVec3<float>>& map) {
    if (m_state == ABSENT || corners.get_count() == 0) {
        return false;
    }
    unsigned int const value_count = values.get_count();
    if (value_count == 0 && m_state == SAME) {
        report.warn_at(ObjReport::MAP_INDEX, forward.line, corners.get_count());
        return false;
    }
    bool const is_dangling = forward.is_beyond(value_count);
    if (m_state == SAME && (is_dangling || value_count != point_count)) {
        list(corners, progress);
    }
    if (is_dangling) {
        drop_dangling(progress, report);
    }
    CoreArray<unsigned int> indices = m_indices.take();
    if (std::all_of(indices.begin(), indices.end(),
                    [](unsigned int const& index) { return index == no_index; }) &&
        m_state == LISTED) {
        return false;
    }
    if (value_count != point_count || !is_same(indices, corners)) {
        map.indices = std::move(indices);
    }
    map.values = values.take();
    return true;
}

// Writes out what the corners so far have.
void ObjMap::list(ObjList<unsigned int> const& corners, ObjProgress& progress) {
    unsigned int const count = corners.get_count();
    m_indices.make_room(count, ~0u);
    m_indices.commit(count);
    for (unsigned int done = 0; done < count && !progress.is_stopped();) {
        unsigned int const part = std::min(count - done, ObjProgress::elements_between_looks);
        unsigned int* const indices = m_indices.get_data() + done;
        if (m_state == SAME) {
            std::memcpy(indices, corners.get_data() + done, part * sizeof(unsigned int));
        } else {
            std::fill_n(indices, part, no_index);
        }
        done += part;
    }
    m_state = LISTED;
}

void ObjMap::drop_dangling(ObjProgress& progress, ObjReport& report) {
    unsigned int const value_count = values.get_count();
    unsigned int const count = m_indices.get_count();
    unsigned int* const indices = m_indices.get_data();
    unsigned long long dropped = 0;
    for (unsigned int done = 0; done < count && !progress.is_stopped();) {
        unsigned int const end = done + std::min(count - done, ObjProgress::elements_between_looks);
        for (; done < end; ++done) {
            bool const is_dangling = indices[done] >= value_count && indices[done] != no_index;
            dropped += is_dangling ? 1 : 0;
            indices[done] = is_dangling ? no_index : indices[done];
        }
    }
    if (dropped != 0) {
        report.warn_at(ObjReport::MAP_INDEX, forward.line, dropped);
    }
}
