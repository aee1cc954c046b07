#pragma once

#include <platform/qz_core.h>
#include <platform/qz_lwo/lwo_mesh.h>
#include <platform/qz_lwo/lwo_polygons.h>
#include <platform/qz_lwo/lwo_report.h>

#include <map>
#include <string_view>
#include <utility>

constexpr unsigned int lwo_no_part = 0xFFFFFFFFu;

// One chunk of values: by point (VMAP), or by point and polygon (VMAD).
struct LwoMapPart {
    LwoChunk chunk;  // its data begin with the first value
    LwoPoints points;
    unsigned int first_polygon = 0;
    unsigned int polygon_count = 0;
    unsigned int next = lwo_no_part;  // part of the same kind of the same map
};

// All chunks of one type and name, as lists of parts in file order.
struct LwoMap {
    enum Kind { BY_POINT, BY_CORNER, KIND_COUNT };

    std::string_view name;  // lies in the bytes of the file
    bool is_normal_map = false;
    unsigned int first_parts[KIND_COUNT] = {lwo_no_part, lwo_no_part};
    unsigned int last_parts[KIND_COUNT] = {lwo_no_part, lwo_no_part};
    unsigned int value_limit = 0;  // the values are no more than this

    unsigned int get_dimension() const { return is_normal_map ? 3 : 2; }
};

// Notes the chunks of maps while they go by, since a map is complete only with the last of them.
class LwoMaps {
  public:
    // `chunk` is VMAP or VMAD. Maps of other types than TXUV and NORM are skipped.
    bool collect(LwoChunk const& chunk, LwoPolygons const& polygons, LwoReport& report);
    // Makes the maps, in the order of their first chunks. `mesh` has its points and polygons.
    // `file_size` limits the memory and work that maps may take together.
    bool build(LwoPolygons const& polygons, unsigned long long const& file_size, LwoMesh& mesh,
               LwoReport& report) const;

  private:
    void add_part(LwoMap::Kind const& kind, LwoMapPart const& part, LwoMap& map, LwoReport& report);
    LwoMap& find_map(bool const& is_normal_map, std::string_view const& name);

    CoreArray<LwoMapPart> m_parts;
    CoreArray<LwoMap> m_maps;
    std::map<std::pair<bool, std::string_view>, unsigned int> m_maps_by_name;
};
