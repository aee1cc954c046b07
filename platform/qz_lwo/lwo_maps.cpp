#include <platform/qz_lwo/lwo_maps.h>

#include <platform/qz_lwo/lwo_axes.h>
#include <platform/qz_lwo/lwo_map_builder.h>

namespace {

// Every list of corners that maps need may be as long as the mesh, however short a map is in the
// file. The first figure is room for maps on small files, the second grows with what is in a file.
constexpr unsigned long long free_list_bytes = 64ull << 20;
constexpr unsigned long long list_bytes_per_byte = 8;

// The order of part lists can tell that the same points, or polygons, get values again.
bool is_given_again(LwoMap::Kind const& kind, LwoMapPart const& last, LwoMapPart const& part) {
    return kind == LwoMap::BY_POINT ? last.points.first == part.points.first
                                    : last.first_polygon == part.first_polygon;
}

// An array of maps with room for `count` gets one that takes over `source`.
template <typename Map>
Map& append_map(CoreArray<Map>& maps, GeometryMap<GMathVec3<float>>& source) {
    unsigned int const index = maps.get_count();
    maps.resize(index + 1);
    Map& map = maps[index];
    map.values.swap(source.values);
    map.indices.swap(source.indices);
    map.name.swap(source.name);
    return map;
}

}  // namespace

// Type (4 bytes), dimension (2 bytes), name, then the values.
bool LwoMaps::collect(LwoChunk const& chunk, LwoPolygons const& polygons, LwoReport& report) {
    LwoMap::Kind const kind = chunk.id == lwo_id("VMAD") ? LwoMap::BY_CORNER : LwoMap::BY_POINT;
    LwoPolygonList const& list = polygons.get_list();
    LwoMapPart part;
    part.chunk = chunk;
    LwoByteReader& data = part.chunk.data;
    unsigned int type = 0;
    unsigned int dimension = 0;
    std::string_view name;
    if (!data.read_u4(type)) {
        return report.refuse_end(chunk, data, "the type of the map");
    }
    bool const is_normal_map = type == lwo_id("NORM");
    if ((kind == LwoMap::BY_CORNER && list.is_skipped) ||
        (!is_normal_map && type != lwo_id("TXUV"))) {
        return true;
    }
    if (!data.read_u2(dimension) || !data.read_string(name)) {
        return report.refuse_end(chunk, data, "the head of the map");
    }
    if (dimension != (is_normal_map ? 3u : 2u)) {
        report.warn(LwoReport::MAP_DIMENSION, chunk, chunk.data.get_offset());
        return true;
    }
    if (!data.is_at_end()) {
        part.points = kind == LwoMap::BY_CORNER ? list.points : polygons.get_points();
        part.first_polygon = list.first;
        part.polygon_count = list.count;
        add_part(kind, part, find_map(is_normal_map, name), report);
    }
    return true;
}

bool LwoMaps::build(LwoPolygons const& polygons, unsigned long long const& file_size, LwoMesh& mesh,
                    LwoReport& report) const {
    LwoMapBuilder builder(mesh, polygons, m_parts,
                          free_list_bytes + list_bytes_per_byte * file_size, report);
    unsigned int normal_map_count = 0;
    for (LwoMap const& map : m_maps) {
        normal_map_count += map.is_normal_map ? 1 : 0;
    }
    mesh.normal_maps.reserve(normal_map_count);
    mesh.uv_maps.reserve(m_maps.get_count() - normal_map_count);
    for (LwoMap const& map : m_maps) {
        GeometryMap<GMathVec3<float>> built;
        if (!builder.build(map, built)) {
            return false;
        }
        if (built.values.is_empty()) {
            continue;
        }
        built.name = CoreString(map.name);
        if (!map.is_normal_map) {
            append_map(mesh.uv_maps, built);
        } else if (!lwo_convert_normals(mesh, append_map(mesh.normal_maps, built), report)) {
            return false;
        }
    }
    return true;
}

void LwoMaps::add_part(LwoMap::Kind const& kind, LwoMapPart const& part, LwoMap& map,
                       LwoReport& report) {
    unsigned int const index = m_parts.get_count();
    unsigned int const least_index_size = kind == LwoMap::BY_POINT ? 2 : 4;
    unsigned int const least_size = least_index_size + 4 * map.get_dimension();
    map.value_limit += static_cast<unsigned int>(part.chunk.data.get_left() / least_size);
    m_parts.append(part);
    unsigned int& last = map.last_parts[kind];
    if (last == lwo_no_part) {
        map.first_parts[kind] = index;
    } else {
        m_parts[last].next = index;
        if (is_given_again(kind, m_parts[last], part)) {
            report.warn(LwoReport::MAP_TWICE, part.chunk, part.chunk.offset);
        }
    }
    last = index;
}

LwoMap& LwoMaps::find_map(bool const& is_normal_map, std::string_view const& name) {
    auto const [place, is_new] =
        m_maps_by_name.try_emplace({is_normal_map, name}, m_maps.get_count());
    if (is_new) {
        LwoMap map;
        map.name = name;
        map.is_normal_map = is_normal_map;
        m_maps.append(map);
    }
    return m_maps[place->second];
}
