#include <poly/maps/extra_normals.h>
#include <poly/maps/map_acceptance.h>
#include <poly/maps/normal_maps.h>
#include <poly/mesh/primitive_corners.h>
#include <poly/mesh/progress_task.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr unsigned int absent = CoreIndexArray::absent;

// The flat normals of a primitive: one, or those of a quad's two triangles.
struct FlatNormals {
    GMathShortNormal normals[2];
    unsigned int count;

    bool are_all(GMathShortNormal const& normal) const {
        return is_same_normal(normals[0], normal) &&
               (count == 1 || is_same_normal(normals[1], normal));
    }
};

class NormalMapStore {
  public:
    NormalMapStore(GeometryNormalMap const& map, PolyMeshTopology const& topology,
                   GeometryPointCloudData const& points)
        : m_map(map),
          m_topology(topology),
          m_points(points),
          m_goes_by_corner(goes_by_corner(map, topology.polygon_vertex_indices.get_count())) {
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
        stored.normals.copy_from(m_extra.get_normals());
        stored.polygon_indices.copy_from(m_indices);
    }

  private:
    void add_primitive(unsigned int const& primitive) {
        unsigned int ids[4];
        unsigned int vertices[4];
        unsigned int const count = get_primitive_corner_ids(m_topology, primitive, ids);
        for (unsigned int k = 0; k < count; ++k) {
            vertices[k] = m_topology.polygon_vertex_indices[ids[k]];
        }
        FlatNormals const flat = get_flat_normals(vertices, count);
        for (unsigned int k = 0; k < count; ++k) {
            unsigned int const value = m_goes_by_corner ? m_map.indices[ids[k]] : vertices[k];
            m_indices[ids[k]] = get_index(value, vertices[k], flat);
        }
    }

    FlatNormals get_flat_normals(unsigned int const* vertices, unsigned int const& count) const {
        CoreArray<GMathVec3<float>> const& p = m_points.positions;
        FlatNormals flat;
        flat.count = count - 2;
        for (unsigned int half = 0; half < flat.count; ++half) {
            flat.normals[half] = GMathShortNormal::encode(
                compute_flat_normal(p[vertices[0]], p[vertices[half + 1]], p[vertices[half + 2]]));
        }
        return flat;
    }

    // What the corner of `vertex` stores for value number `value`. A value is remembered only where
    // it equals its vertex's own normal; the other answers depend on the corner.
    unsigned int get_index(unsigned int const& value, unsigned int const& vertex,
                           FlatNormals const& flat) {
        if (value >= m_map.values.get_count()) {
            return absent;
        }
        if (m_remap[value] != absent) {
            return m_remap[value];
        }
        // One that floats cannot hold, NaN included, tells no direction.
        float const length = gmath_length(m_map.values[value]);
        if (!(length > 0.0f) || !std::isfinite(length)) {
            return absent;
        }
        GMathShortNormal const normal = GMathShortNormal::encode(m_map.values[value] / length);
        if (is_same_normal(normal, m_points.normals[vertex])) {
            m_remap[value] = vertex;
            return vertex;
        }
        return flat.are_all(normal) ? absent : m_points.point_count + m_extra.add(vertex, normal);
    }

    GeometryNormalMap const& m_map;
    PolyMeshTopology const& m_topology;
    GeometryPointCloudData const& m_points;
    bool m_goes_by_corner;
    CoreArray<unsigned int> m_remap;    // by value: the index that every corner takes, or absent
    CoreArray<unsigned int> m_indices;  // by corner id
    ExtraNormals m_extra;
};

}  // namespace

void store_normal_map(GeometryNormalMap const& map, PolyMeshTopology const& topology,
                      GeometryPointCloudData const& points, PolyMeshNormalMap& stored,
                      AppProgressBar* progress) {
    NormalMapStore(map, topology, points).store(stored, progress);
}
