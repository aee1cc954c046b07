#include <poly/maps/extra_normals.h>
#include <poly/maps/map_acceptance.h>
#include <poly/maps/normal_maps.h>
#include <poly/mesh/primitive_corners.h>
#include <poly/mesh/progress_task.h>

#include <algorithm>
#include <limits>

namespace {

constexpr unsigned int absent = CoreIndexArray::absent;

// The flat normals of a primitive: one, or those of a quad's two triangles. They are encoded when
// one is asked for that they may well equal.
class FlatNormals {
  public:
    FlatNormals(GMathVec3<float> const* positions, unsigned int const* vertices,
                unsigned int const& corner_count)
        : m_count(corner_count - 2) {
        GMathVec3<float> const& p = positions[vertices[0]];
        for (unsigned int half = 0; half < m_count; ++half) {
            m_directions[half] =
                gmath_cross(positions[vertices[half + 1]] - p, positions[vertices[half + 2]] - p);
        }
        m_square = gmath_dot(m_directions[0], m_directions[0]);
    }

    // Whether they all equal `normal`, which was encoded from `direction`.
    bool are_all(GMathShortNormal const& normal, GMathVec3<float> const& direction) {
        if (is_apart(direction)) {
            return false;
        }
        if (!m_is_encoded) {
            for (unsigned int half = 0; half < m_count; ++half) {
                m_normals[half] = GMathShortNormal::encode(gmath_unit(m_directions[half]));
            }
            m_is_encoded = true;
        }
        return is_same_normal(m_normals[0], normal) &&
               (m_count == 1 || is_same_normal(m_normals[1], normal));
    }

  private:
    // Vectors of equal code differ by less than 1 / 32767 along each axis, so the sine between them
    // is below 6e-5. Above 1e-4, which floats tell where no square nears the ends of their range,
    // the codes differ.
    bool is_apart(GMathVec3<float> const& direction) const {
        float const square = gmath_dot(direction, direction);
        GMathVec3<float> const sines = gmath_cross(m_directions[0], direction);
        return gmath_dot(sines, sines) > 1e-8f * (m_square * square) && m_square > 1e-24f &&
               m_square < 1e30f && square > 1e-4f && square < 1e4f;
    }

    GMathVec3<float> m_directions[2];
    float m_square;  // of the first one's length
    GMathShortNormal m_normals[2];
    unsigned int m_count;
    bool m_is_encoded = false;
};

class NormalMapStore {
  public:
    NormalMapStore(GeometryNormalMap const& map, PolyMeshTopology const& topology,
                   GeometryPointCloudData const& points)
        : m_map(map),
          m_topology(topology),
          m_points(points),
          m_reader(topology),
          m_goes_by_corner(goes_by_corner(map, topology.polygon_vertex_indices.get_count())),
          m_extra(points.point_count) {
        m_remap.reset(std::max(points.point_count, map.values.get_count()));
        m_remap.fill(absent);
        m_indices.reset(topology.polygon_vertex_indices.get_count());
        m_indices.fill(absent);
    }

    void store(PolyMeshNormalMap& stored, AppProgressBar* progress) {
        unsigned int const primitive_count = m_topology.primitive_infos.get_count();
        set_step_count(progress, primitive_count);
        for (unsigned int primitive = 0; primitive < primitive_count; ++primitive) {
            add_primitive(primitive);
            step(progress, primitive + 1);
        }
        stored.name = m_map.name;
        m_remap.clear();  // packing needs room
        m_extra.take_normals(stored.normals);
        stored.polygon_indices.copy_from(m_indices);
    }

  private:
    void add_primitive(unsigned int const& primitive) {
        unsigned int ids[4];
        unsigned int vertices[4];
        unsigned int const count = m_reader.get_corner_ids(primitive, ids);
        for (unsigned int k = 0; k < count; ++k) {
            vertices[k] = m_reader.get_vertex(ids[k]);
        }
        FlatNormals flat(m_points.positions.get_data(), vertices, count);
        for (unsigned int k = 0; k < count; ++k) {
            unsigned int const value = m_goes_by_corner ? m_map.indices[ids[k]] : vertices[k];
            m_indices[ids[k]] = get_index(value, vertices[k], flat);
        }
    }

    // What the corner of `vertex` stores for value number `value`. The answer is final where the
    // value equals its vertex's own normal; others depend on the corner, but the number of an extra
    // normal is good for its vertex.
    unsigned int get_index(unsigned int const& value, unsigned int const& vertex,
                           FlatNormals& flat) {
        if (value >= m_map.values.get_count()) {
            return absent;
        }
        GMathVec3<float> const& direction = m_map.values[value];
        unsigned int const known = m_remap[value];
        if (known < m_points.point_count) {
            return known;
        }
        if (known != absent && m_extra.get_vertex(known - m_points.point_count) == vertex) {
            return flat.are_all(m_extra.get_normal(known - m_points.point_count), direction)
                       ? absent
                       : known;
        }
        if (m_codes_begin != value / 4 * 4) {
            encode_four(value / 4 * 4);
        }
        if ((m_directed >> value % 4 & 1u) == 0) {
            return absent;
        }
        GMathShortNormal const normal = m_codes[value % 4];
        if (is_same_normal(normal, m_points.normals[vertex])) {
            m_remap[value] = vertex;
            return vertex;
        }
        if (flat.are_all(normal, direction)) {
            return absent;
        }
        unsigned int const number = m_extra.add(vertex, normal);
        if (number == ExtraNormals::no_normal) {
            return absent;
        }
        m_remap[value] = m_points.point_count + number;
        return m_remap[value];
    }

    // Encodes four values side by side, for a value's neighbours are mostly asked for next.
    void encode_four(unsigned int const& first) {
        GMathVec3<float> values[4];
        for (unsigned int k = 0; k < 4; ++k) {
            values[k] = m_map.values[std::min(first + k, m_map.values.get_count() - 1)];
        }
        GMathVec3<GMathFloatLanes> const n =
            gmath_lanes(values[0], values[1], values[2], values[3]);
        GMathFloatLanes const length = gmath_root(gmath_dot(n, n));
        // One that floats cannot hold, NaN included, tells no direction.
        m_directed =
            gmath_get_bits((length > 0.0f) & (length <= std::numeric_limits<float>::max()));
        GMathShortNormal::encode(n / length, m_codes);
        m_codes_begin = first;
    }

    GeometryNormalMap const& m_map;
    PolyMeshTopology const& m_topology;
    GeometryPointCloudData const& m_points;
    PrimitiveReader m_reader;
    bool m_goes_by_corner;
    CoreArray<unsigned int> m_remap;    // by value: an index that a corner took, or absent
    CoreArray<unsigned int> m_indices;  // by corner id
    ExtraNormals m_extra;
    GMathShortNormal m_codes[4];  // of the values from m_codes_begin on
    unsigned int m_codes_begin = absent;
    unsigned int m_directed = 0;  // bit k: m_codes[k] is a direction
};

}  // namespace

void store_normal_map(GeometryNormalMap const& map, PolyMeshTopology const& topology,
                      GeometryPointCloudData const& points, PolyMeshNormalMap& stored,
                      AppProgressBar* progress) {
    NormalMapStore(map, topology, points).store(stored, progress);
}
