#include <tools/qzpoly/models/obj_writer.h>

#include <bit>
#include <charconv>

namespace {

constexpr unsigned int no_index = CoreIndexArray::absent;

class ObjWriter {
  public:
    ObjWriter(ToolObjContents const& contents, unsigned int const& uv_map, ToolMessages& messages)
        : m_contents(contents), m_messages(messages) {
        if (uv_map < contents.uv_maps.get_count()) {
            m_uvs = &contents.uv_maps[uv_map];
        }
        if (!contents.normal_maps.is_empty()) {
            m_normals = &contents.normal_maps[0];
        }
    }

    std::string write() {
        warn_of_maps();
        write_positions();
        if (m_uvs != nullptr) {
            for (GMathVec3<float> const& uv : m_uvs->values) {
                put("vt");
                put_numbers({uv.x, uv.y});
                if (std::bit_cast<unsigned int>(uv.z) != 0) {
                    put_numbers({uv.z});
                }
                put("\n");
            }
        }
        if (m_normals != nullptr) {
            for (GMathVec3<float> const& normal : m_normals->values) {
                put("vn");
                put_numbers({normal.x, normal.y, normal.z});
                put("\n");
            }
        }
        write_polygons();
        write_creases();
        return std::move(m_text);
    }

  private:
    template <typename Maps>
    void warn_of_others(char const* kind, Maps const& maps, void const* kept) {
        for (auto const& map : maps) {
            if (&map != kept) {
                m_messages.warn(
                    make_text("an OBJ file has one ", kind, " map: ", map.name, " is left out"));
            } else if (map.name != CoreString(kind)) {
                m_messages.warn(
                    make_text("an OBJ file has no names of maps: ", map.name, " becomes ", kind));
            }
        }
    }

    void warn_of_maps() {
        warn_of_others("uv", m_contents.uv_maps, m_uvs);
        warn_of_others("normal", m_contents.normal_maps, m_normals);
    }

    void write_positions() {
        CoreArray<GeometryColorMap> const& maps = m_contents.color_maps;
        bool const has_colors = !maps.is_empty() && maps[0].indices.is_empty();
        for (unsigned int i = 0; i < m_contents.positions.get_count(); ++i) {
            GMathVec3<float> const& p = m_contents.positions[i];
            put("v");
            put_numbers({p.x, p.y, p.z});
            if (has_colors) {
                GMathVec4<unsigned char> const& c = maps[0].values[i];
                put_numbers({get_part(c.x), get_part(c.y), get_part(c.z)});
                if (c.w != 255) {
                    put_numbers({get_part(c.w)});
                }
            }
            put("\n");
        }
    }

    static float get_part(unsigned char const& byte) { return static_cast<float>(byte) / 255.0f; }

    void write_polygons() {
        CoreString const usual("default");
        CoreString const* group = &usual;
        unsigned int corner = 0;
        for (unsigned int polygon = 0; polygon < m_contents.corner_counts.get_count(); ++polygon) {
            CoreString const& wanted = m_contents.group_names[m_contents.groups[polygon]];
            if (&wanted != group && wanted != *group) {
                write_group(wanted.get_view());
                group = &wanted;
            }
            put("f");
            for (unsigned int i = 0; i < m_contents.corner_counts[polygon]; ++i) {
                write_corner(corner++);
            }
            put("\n");
        }
    }

    void write_group(std::string_view const& name) {
        std::string shown(name);
        for (char& character : shown) {
            character = character == '\n' || character == '\r' ? '_' : character;
        }
        constexpr std::string_view blanks = " \t\v\f";
        if (shown != name || blanks.find(name.front()) != std::string_view::npos ||
            blanks.find(name.back()) != std::string_view::npos) {
            m_messages.warn(make_text("an OBJ file cannot hold the name of group '", name, "'"));
        }
        put("usemtl ");
        put(shown);
        put("\n");
    }

    template <typename Map>
    unsigned int get_index(Map const* map, unsigned int const& corner) const {
        return map == nullptr            ? no_index
               : map->indices.is_empty() ? m_contents.corners[corner]
                                         : map->indices[corner];
    }

    void write_corner(unsigned int const& corner) {
        unsigned int const uv = get_index(m_uvs, corner);
        unsigned int const normal = get_index(m_normals, corner);
        put(" ");
        put_index(m_contents.corners[corner]);
        if (uv != no_index || normal != no_index) {
            put("/");
        }
        if (uv != no_index) {
            put_index(uv);
        }
        if (normal != no_index) {
            put("/");
            put_index(normal);
        }
    }

    void write_creases() {
        for (unsigned int i = 0; i < m_contents.crease_sharpnesses.get_count(); ++i) {
            put("t crease 2/1/0 ");
            put_number(m_contents.crease_indices[2 * i]);
            put(" ");
            put_number(m_contents.crease_indices[2 * i + 1]);
            put_numbers({m_contents.crease_sharpnesses[i]});
            put("\n");
        }
    }

    void put(std::string_view const& text) { m_text += text; }
    void put_index(unsigned int const& index) { put_number(index + 1ull); }
    void put_numbers(std::initializer_list<float> const& numbers) {
        for (float const number : numbers) {
            put(" ");
            put_number(number);
        }
    }
    template <typename T>
    void put_number(T const& number) {
        char digits[40];
        char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        m_text.append(digits, end);
    }

    ToolObjContents const& m_contents;
    ToolMessages& m_messages;
    GeometryUvMap const* m_uvs = nullptr;
    GeometryNormalMap const* m_normals = nullptr;
    std::string m_text;
};

}  // namespace

std::string write_obj(ToolObjContents const& contents, unsigned int const& uv_map,
                      ToolMessages& messages) {
    return ObjWriter(contents, uv_map, messages).write();
}
