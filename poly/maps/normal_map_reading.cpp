#include <poly/maps/normal_maps.h>
#include <poly/mesh/primitive_corners.h>

namespace {

constexpr unsigned int absent = CoreIndexArray::absent;

// Summed over the fan from the first corner; zero unless longer than the epsilon.
GMathVec3<float> get_polygon_normal(PolyMeshTopology const& topology,
                                    CoreBasicArray<GMathVec3<float>> const& positions,
                                    unsigned int const& first_corner,
                                    unsigned int const& corner_count) {
    GMathVec3<float> const& p0 = positions[topology.polygon_vertex_indices[first_corner]];
    GMathVec3<float> sum(0, 0, 0);
    for (unsigned int k = 2; k < corner_count; ++k) {
        GMathVec3<float> const& p1 =
            positions[topology.polygon_vertex_indices[first_corner + k - 1]];
        GMathVec3<float> const& p2 = positions[topology.polygon_vertex_indices[first_corner + k]];
        sum += gmath_cross(p1 - p0, p2 - p0);
    }
    float const length = gmath_length(sum);
    return length > GMath<float>::s_epsilon ? sum / length : GMathVec3<float>(0, 0, 0);
}

class NormalMapReader {
  public:
    NormalMapReader(PolyMeshNormalMap const& map, GeometryPointCloudData const& points,
                    CoreArray<GMathVec3<float>>& normals)
        : m_map(map), m_points(points), m_normals(normals) {
        m_remap.reset(points.point_count + map.normals.get_count());
        m_remap.fill(absent);
        m_normals.clear();
    }

    // `index` is that of a corner, and not absent.
    unsigned int read(unsigned int const& index) {
        if (m_remap[index] == absent) {
            GMathShortNormal const& normal = index < m_points.point_count
                                                 ? m_points.normals[index]
                                                 : m_map.normals[index - m_points.point_count];
            m_remap[index] = append(normal.decode());
        }
        return m_remap[index];
    }

    unsigned int append(GMathVec3<float> const& normal) {
        m_normals.append(normal);
        return m_normals.get_count() - 1;
    }

  private:
    PolyMeshNormalMap const& m_map;
    GeometryPointCloudData const& m_points;
    CoreArray<GMathVec3<float>>& m_normals;
    CoreArray<unsigned int> m_remap;
};

}  // namespace

void read_polygon_normals(PolyMeshNormalMap const& map, PolyMeshTopology const& topology,
                          GeometryPointCloudData const& points,
                          CoreArray<GMathVec3<float>>& normals, CoreArray<unsigned int>& indices) {
    NormalMapReader reader(map, points, normals);
    map.polygon_indices.get_array(indices);
    unsigned int first = 0;
    for (unsigned int polygon = 0; polygon < topology.polygon_vertex_count.get_count(); ++polygon) {
        unsigned int const count = topology.polygon_vertex_count[polygon];
        unsigned int flat_index = absent;  // of this polygon, once it is needed
        for (unsigned int corner = first; corner < first + count; ++corner) {
            if (indices[corner] != absent) {
                indices[corner] = reader.read(indices[corner]);
                continue;
            }
            if (flat_index == absent) {
                flat_index =
                    reader.append(get_polygon_normal(topology, points.positions, first, count));
            }
            indices[corner] = flat_index;
        }
        first += count;
    }
    normals.shrink_to_fit();
}

void read_primitive_normals(PolyMeshNormalMap const& map, PolyMeshTopology const& topology,
                            GeometryPointCloudData const& points,
                            CoreArray<GMathVec3<float>>& normals,
                            CoreArray<unsigned int>& indices) {
    CoreArray<unsigned int> corner_indices;
    read_polygon_normals(map, topology, points, normals, corner_indices);
    indices.reset(topology.primitive_index_count);
    unsigned int* next = indices.get_data();
    for (unsigned int primitive = 0; primitive < topology.primitive_infos.get_count();
         ++primitive) {
        unsigned int ids[4];
        unsigned int const count = get_primitive_corner_ids(topology, primitive, ids);
        for (unsigned int k = 0; k < count; ++k) {
            *next++ = corner_indices[ids[k]];
        }
    }
}
