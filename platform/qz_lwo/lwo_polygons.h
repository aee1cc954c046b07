#pragma once

#include <platform/qz_core.h>
#include <platform/qz_lwo/lwo_contents.h>
#include <platform/qz_lwo/lwo_mesh.h>
#include <platform/qz_lwo/lwo_report.h>

constexpr unsigned int lwo_no_surface = 0xFFFFFFFFu;

// The points of one chunk PNTS: what the indices of the chunks behind it count from.
struct LwoPoints {
    unsigned int first = 0;
    unsigned int count = 0;
};

// The polygons of one chunk POLS, in the numbers of LwoPolygons.
struct LwoPolygonList {
    unsigned int first = 0;
    unsigned int count = 0;
    LwoPoints points;
    bool is_skipped = false;  // not polygons: chunks that refer to them are skipped too
};

// Reads points and polygons to their places in the mesh, in right-handed axes. Numbers all polygons
// of the file, those of fewer than 3 corners too, which the mesh does not get: other chunks refer
// to polygons by such numbers.
class LwoPolygons {
  public:
    // Makes room for all that the contents promise. Both are kept by reference.
    LwoPolygons(LwoContents const& contents, LwoMesh& mesh);

    // Nothing can refer to what came before.
    void begin_layer();
    bool read_points(LwoChunk const& chunk, LwoReport& report);
    bool read_polygons(LwoChunk const& chunk, LwoReport& report);
    // Polygons of the forms LWOB and LWLO, with their surfaces.
    bool read_old_polygons(LwoChunk const& chunk, LwoReport& report);
    // Gives back the room that was not needed.
    void finish();

    LwoPoints const& get_points() const { return m_points; }
    LwoPolygonList const& get_list() const { return m_list; }
    unsigned int get_count() const { return m_count; }

    // Corners of the mesh that `polygon` has: none when it was dropped.
    unsigned int get_first_corner(unsigned int const& polygon) const {
        return m_first_corners[polygon];
    }
    unsigned int get_end_corner(unsigned int const& polygon) const {
        return m_first_corners[polygon + 1];
    }
    // Number of a name, or `lwo_no_surface`.
    unsigned int get_surface(unsigned int const& polygon) const { return m_surfaces[polygon]; }
    void set_surface(unsigned int const& polygon, unsigned int const& surface) {
        m_surfaces[polygon] = surface;
    }

  private:
    bool begin_list(LwoChunk const& chunk, LwoReport const& report);
    template <bool is_old>
    bool read_corners(LwoChunk const& chunk, LwoByteReader& data, unsigned int const& count,
                      LwoReport& report);
    bool read_old_surface(LwoChunk const& chunk, LwoByteReader& data, unsigned int& surface,
                          LwoReport const& report);
    void add_polygon(unsigned int const& corner_count, unsigned int const& surface);

    LwoContents const& m_contents;
    LwoMesh& m_mesh;
    CoreArray<unsigned int> m_first_corners;  // by polygon, and where the last one ends
    CoreArray<unsigned int> m_surfaces;       // by polygon
    unsigned int m_count = 0;
    unsigned int m_kept_count = 0;
    unsigned int m_corner_count = 0;
    unsigned int m_point_count = 0;
    bool m_has_points = false;
    LwoPoints m_points;
    LwoPolygonList m_list;
};
