#pragma once

#include <platform/qz_core.h>
#include <platform/qz_geometry.h>
#include <platform/qz_lwo/lwo_maps.h>
#include <platform/qz_lwo/lwo_mesh.h>
#include <platform/qz_lwo/lwo_polygons.h>
#include <platform/qz_lwo/lwo_report.h>

// Makes maps of their parts: a corner takes the value of its point and polygon if there is one,
// else that of its point, else none; of several values the last. Work is linear in the values of a
// map, and in the corners of the mesh only where one of them gets a value.
class LwoMapBuilder {
  public:
    using Map = GeometryMap<GMathVec3<float>>;

    // All are kept by reference. `list_limit`: bytes that the lists of corners of all maps may
    // take.
    LwoMapBuilder(LwoMesh const& mesh, LwoPolygons const& polygons,
                  CoreArray<LwoMapPart> const& parts, unsigned long long const& list_limit,
                  LwoReport& report);

    // `built` stays without values when no corner gets one. False when the map is refused.
    bool build(LwoMap const& map, Map& built);

  private:
    // The first corner of a polygon that has `vertex`, and where the polygon ends.
    struct Place {
        unsigned int vertex = 0;
        unsigned int corner = 0;
        unsigned int end = 0;
        bool is_dropped = false;  // the mesh does not have the polygon
    };

    bool add_values_of_points(LwoMap const& map, Map& built);
    bool add_values_of_corners(LwoMap const& map, Map& built);
    template <unsigned int dimension>
    bool read_values_of_points(LwoMapPart const& part, Map& built);
    template <unsigned int dimension>
    bool read_values_of_corners(LwoMapPart const& part, Map& built);
    template <unsigned int dimension>
    void add_value(LwoMapPart const& part, unsigned long long const& offset,
                   float const (&numbers)[dimension], Map& built);
    bool find_corner(unsigned int const& vertex, unsigned int const& polygon, Place& place) const;
    void set_corners(Place const& place, Map& built) const;
    bool list_values_of_points(LwoMapPart const& part, Map& built);
    bool list_no_values(LwoMapPart const& part, Map& built);
    bool charge_list(LwoMapPart const& part);
    bool mark_used_points();

    LwoMesh const& m_mesh;
    LwoPolygons const& m_polygons;
    CoreArray<LwoMapPart> const& m_parts;
    unsigned long long const m_list_limit;
    LwoReport& m_report;
    unsigned long long m_list_bytes = 0;

    // By point: whether corners use it, and the number of its value in this map or one before.
    // Numbers go on from map to map, so that nothing has to be cleared in between.
    CoreArray<unsigned int> m_values_of_points;
    unsigned int m_first_value;  // of this map
    bool m_is_reached = false;   // a corner gets a value of its point
    bool m_is_in_order = true;   // value i is that of point i, so far
};
