#include <tools/qzpoly/check/mesh_faults.h>

namespace {

constexpr float slack = 1e-5f;  // uv coordinates that are kept in 16 bits are off by as much

bool is_outside(float const& value) { return !(value >= -slack && value <= 1 + slack); }

// A polygon's uv coordinates in a map.
class PolygonUvs {
  public:
    PolygonUvs(GeometryUvMap const& map, ToolPolygons const& polygons)
        : m_map(map), m_polygons(polygons) {}

    bool has_all(unsigned int const& polygon) const {
        for (unsigned int i = m_polygons.offsets[polygon]; i < m_polygons.offsets[polygon + 1];
             ++i) {
            if (get_index(i) >= m_map.values.get_count()) {
                return false;
            }
        }
        return true;
    }
    bool is_outside_somewhere(unsigned int const& polygon) const {
        for (unsigned int i = m_polygons.offsets[polygon]; i < m_polygons.offsets[polygon + 1];
             ++i) {
            GMathVec3<float> const& uv = m_map.values[get_index(i)];
            if (is_outside(uv.x) || is_outside(uv.y)) {
                return true;
            }
        }
        return false;
    }
    // Below 0 where the polygon is mirrored.
    double get_area(unsigned int const& polygon) const {
        double area = 0;
        for (unsigned int i = m_polygons.offsets[polygon]; i < m_polygons.offsets[polygon + 1];
             ++i) {
            GMathVec3<double> const a(m_map.values[get_index(i)]);
            GMathVec3<double> const b(m_map.values[get_index(m_polygons.get_next(i))]);
            GMathVec3<double> const o(m_map.values[get_index(m_polygons.offsets[polygon])]);
            area += ((a.x - o.x) * (b.y - o.y) - (b.x - o.x) * (a.y - o.y)) * 0.5;
        }
        return area;
    }

  private:
    unsigned int get_index(unsigned int const& corner) const {
        return m_map.indices.is_empty() ? m_polygons.vertices[corner] : m_map.indices[corner];
    }

    GeometryUvMap const& m_map;
    ToolPolygons const& m_polygons;
};

}  // namespace

void find_uv_faults(PolyMesh const& mesh, ToolPolygons const& polygons,
                    ToolFaultCollector& collector) {
    for (unsigned int number = 0; number < mesh.get_uv_map_count(); ++number) {
        GeometryUvMap map;
        mesh.get_polygon_uv_map(number, map, false);
        PolygonUvs const uvs(map, polygons);
        for (unsigned int polygon = 0; polygon < polygons.counts.get_count(); ++polygon) {
            ToolFaultPlace const place{.polygon = polygon, .map = number};
            if (!uvs.has_all(polygon)) {
                continue;
            }
            if (uvs.is_outside_somewhere(polygon)) {
                collector.add(ToolFaultKind::UV_OUTSIDE, place);
            }
            if (uvs.get_area(polygon) < 0) {
                collector.add(ToolFaultKind::UV_FLIPPED, place);
            }
        }
    }
}
