#include <platform/qz_lwo/lwo_surfaces.h>

#include <map>
#include <string_view>

namespace {

constexpr unsigned int no_group = 0xFFFFFFFFu;
constexpr unsigned int polygons_per_check = 0x1000;

// Groups by number of a surface. Several surfaces may have one name; each name is looked up once.
class Groups {
  public:
    Groups(LwoContents const& contents, CoreArray<CoreString>& names)
        : m_contents(contents), m_names(names), m_groups(contents.names.get_count()) {
        m_groups.fill(no_group);
    }

    unsigned int get_group(unsigned int const& surface) {
        unsigned int& group =
            surface == lwo_no_surface ? m_group_without_surface : m_groups[surface];
        if (group == no_group) {
            group = find_group(surface == lwo_no_surface ? "" : m_contents.names[surface]);
        }
        return group;
    }

  private:
    unsigned int find_group(std::string_view const& name) {
        std::string_view const shown_name = name.empty() ? "default" : name;
        auto const [place, is_new] = m_groups_by_name.try_emplace(shown_name, m_names.get_count());
        if (is_new) {
            m_names.append(CoreString(shown_name));
        }
        return place->second;
    }

    LwoContents const& m_contents;
    CoreArray<CoreString>& m_names;
    CoreArray<unsigned int> m_groups;
    unsigned int m_group_without_surface = no_group;
    std::map<std::string_view, unsigned int> m_groups_by_name;
};

}  // namespace

bool lwo_read_surface_tags(LwoChunk const& chunk, LwoContents const& contents,
                           LwoPolygons& polygons, LwoReport& report) {
    LwoPolygonList const list = polygons.get_list();
    LwoByteReader data = chunk.data;
    unsigned int type = 0;
    if (!data.read_u4(type)) {
        return report.refuse_end(chunk, data, "the type of the tags");
    }
    if (list.is_skipped || type != lwo_id("SURF")) {
        return true;
    }
    unsigned int const name_count = contents.names.get_count();
    LwoProgress progress(report, data);
    while (!data.is_at_end()) {
        unsigned long long const offset = data.get_offset();
        unsigned int polygon = 0;
        unsigned int surface = 0;
        if (!data.read_index(polygon) || !data.read_u2(surface)) {
            return report.refuse_end(chunk, data, "a tag");
        }
        if (polygon >= list.count) {
            return report.refuse_index(chunk, offset, "polygon", polygon, list.count);
        }
        if (surface >= name_count) {
            return report.refuse_index(chunk, offset, "tag", surface, name_count);
        }
        polygons.set_surface(list.first + polygon, surface);
        if (!progress.step()) {
            return false;
        }
    }
    return progress.tell();
}

bool lwo_build_groups(LwoContents const& contents, LwoPolygons const& polygons, LwoMesh& mesh,
                      LwoReport& report) {
    Groups groups(contents, mesh.shading_group_names);
    mesh.polygon_shading_groups.resize(mesh.polygon_vertex_count.get_count());
    unsigned int* out = mesh.polygon_shading_groups.get_data();
    unsigned int const count = polygons.get_count();
    for (unsigned int i = 0; i < count; ++i) {
        if (i % polygons_per_check == 0 && !report.advance(0)) {
            return false;
        }
        if (polygons.get_first_corner(i) != polygons.get_end_corner(i)) {
            *out++ = groups.get_group(polygons.get_surface(i));
        }
    }
    return true;
}
