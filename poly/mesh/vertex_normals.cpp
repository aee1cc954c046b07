#include <poly/mesh/vertex_normals.h>

#include <poly/mesh/primitive_corners.h>
#include <poly/mesh/progress_task.h>
#include <poly/mesh/triangle_normals.h>

#include <algorithm>
#include <cmath>

namespace {

using Vec3 = GMathVec3<float>;

// Takes triangles one by one and works on eight at a time: roots and quotients are as exact side by
// side as alone, and what is summed up is summed in the order in which the triangles came.
class NormalSummer {
  public:
    NormalSummer(Vec3 const* positions, Vec3* sums) : m_positions(positions), m_sums(sums) {}

    // `group` may be null.
    void add(unsigned int const& a, unsigned int const& b, unsigned int const& c,
             PolyMeshNormalSum* group) {
        m_vertices[3 * m_count] = a;
        m_vertices[3 * m_count + 1] = b;
        m_vertices[3 * m_count + 2] = c;
        m_groups[m_count] = group;
        if (++m_count == batch_size) {
            m_count = 0;
            sum_up(m_vertices, batch_size);
        }
    }

    // Adds eight, of the groups `get_group(k)`, from where their vertices are. False, and nothing
    // is added, while others are waiting.
    template <typename GetGroup>
    bool add_eight(unsigned int const* vertices, GetGroup const& get_group) {
        if (m_count != 0) {
            return false;
        }
        for (unsigned int k = 0; k < batch_size; ++k) {
            m_groups[k] = get_group(k);
        }
        sum_up(vertices, batch_size);
        return true;
    }

    // Sums up those that are left, with the last of them in the places beyond.
    void finish() {
        if (m_count != 0) {
            for (unsigned int i = 3 * m_count; i < 3 * batch_size; ++i) {
                m_vertices[i] = m_vertices[i - 3];
            }
            sum_up(m_vertices, m_count);
        }
        change_group(nullptr);
    }

  private:
    static constexpr unsigned int batch_size = TriangleNormals::count;

    [[gnu::noinline]] void sum_up(unsigned int const* vertices, unsigned int const& batch_count) {
        TriangleNormals normals;
        m_compute(m_positions, vertices, normals);
        unsigned int const count = batch_count;
        Vec3* const sums = m_sums;  // not to be read again after each write
        for (unsigned int k = 0; k < count; ++k) {
            gmath_add_to(gmath_lanes(normals.weighted[0][k]), &sums[vertices[3 * k]].x);
            gmath_add_to(gmath_lanes(normals.weighted[1][k]), &sums[vertices[3 * k + 1]].x);
            gmath_add_to(gmath_lanes(normals.weighted[2][k]), &sums[vertices[3 * k + 2]].x);
        }
        GMathFloatLanes sum = m_group_sum;
        for (unsigned int k = 0; k < count; ++k) {
            if (m_groups[k] != m_group) {
                m_group_sum = sum;
                change_group(m_groups[k]);
                sum = m_group_sum;
            }
            // One whose length is not finite adds zeros, which change nothing: no sum is below +0.
            sum += gmath_lanes(normals.areas[k]);
        }
        m_group_sum = sum;
    }

    // The sum of the group at hand is kept aside until another one's turn comes.
    void change_group(PolyMeshNormalSum* group) {
        if (m_group) {
            gmath_store(m_group_sum, &m_group->x);
        }
        m_group = group;
        if (m_group) {
            m_group_sum = gmath_lanes(&m_group->x);
        }
    }

    ComputeTriangleNormals const m_compute = get_fastest_triangle_normals();
    Vec3 const* m_positions;
    Vec3* m_sums;
    unsigned int m_count = 0;
    unsigned int m_vertices[3 * batch_size];
    PolyMeshNormalSum* m_groups[batch_size];
    PolyMeshNormalSum* m_group = nullptr;
    GMathFloatLanes m_group_sum = {};
};

// The sums of the groups of primitives, to be asked for in order. Eight are looked up at once: in
// most meshes they all have the group of those before, and need not be told apart.
class GroupSums {
  public:
    GroupSums(PolyMeshTopology const& topology, PolyMeshGeometry& geometry)
        : m_groups(topology.primitive_shading_groups),
          m_primitive_count(topology.primitive_infos.get_count()),
          m_sums(geometry.shading_group_normals) {}

    // Null for a group that there is not.
    PolyMeshNormalSum* get_next(unsigned int const& primitive) {
        if (primitive % run_length == 0) {
            read_run(primitive);
        }
        unsigned int const group = m_run[primitive % run_length];
        if (!m_is_repeated && group != m_index) {
            m_index = group;
            m_sum = m_index < m_sums.get_count() ? &m_sums[m_index] : nullptr;
        }
        return m_sum;
    }

  private:
    static constexpr unsigned int run_length = 8;  // as many groups as fill whole bytes

    void read_run(unsigned int const& first) {
        unsigned int const count = std::min(run_length, m_primitive_count - first);
        m_is_repeated = m_has_one_group && count == run_length && m_groups.is_eight_repeated(first);
        if (!m_is_repeated) {
            m_groups.read(first, count, m_run);
            m_has_one_group = std::count(m_run, m_run + count, m_run[0]) == run_length;
        }
    }

    CoreIndexReader m_groups;
    unsigned int m_primitive_count;
    CoreArray<PolyMeshNormalSum>& m_sums;
    PolyMeshNormalSum* m_sum = nullptr;
    unsigned int m_index = CoreIndexArray::absent;
    unsigned int m_run[run_length] = {};
    bool m_has_one_group = false;
    bool m_is_repeated = false;
};

static_assert(sizeof(PolyMeshNormalSum) == 4 * sizeof(float), "one group's sums fill four lanes");

// How far the summed length is from that of a flat surface, towards the sum of the components.
float get_spread(PolyMeshNormalSum const& sum) {
    float const components = (sum.x + sum.y) + sum.z;
    float const length = std::sqrt((sum.x * sum.x + sum.y * sum.y) + sum.z * sum.z);
    float const range = components - length;
    return range > GMath<float>::s_epsilon ? (sum.spread - length) / range : 0.0f;
}

// Until here the fourth component holds summed lengths; face normals are twice as long as their
// triangles are large.
void finish_sums(PolyMeshGeometry& geometry) {
    PolyMeshNormalSum mesh;
    for (PolyMeshNormalSum& group : geometry.shading_group_normals) {
        group = {group.x * 0.5f, group.y * 0.5f, group.z * 0.5f, group.spread * 0.5f};
        mesh.x += group.x;
        mesh.y += group.y;
        mesh.z += group.z;
        mesh.spread += group.spread;
        group.spread = get_spread(group);
    }
    mesh.spread = get_spread(mesh);
    geometry.mesh_normal = mesh;
}

}  // namespace

void compute_vertex_normals(PolyMeshTopology const& topology,
                            CoreBasicArray<GMathVec3<float>> const& positions,
                            CoreArray<GMathVec3<float>>& normals, PolyMeshGeometry& geometry,
                            AppProgressBar* progress) {
    normals.reset(positions.get_count());
    normals.fill(Vec3(0, 0, 0));
    geometry.shading_group_normals.fill(PolyMeshNormalSum());
    unsigned int const primitive_count = topology.primitive_infos.get_count();
    NormalSummer summer(positions.get_data(), normals.get_data());
    GroupSums groups(topology, geometry);
    set_step_count(progress, primitive_count);
    auto const add_run = [&](unsigned int const& first, unsigned int const* v,
                             unsigned int const& size, unsigned int const& count) {
        auto const get_group = [&](unsigned int const& k) { return groups.get_next(first + k); };
        bool const is_batch = size == 3 && count == TriangleNormals::count;
        if (!is_batch || !summer.add_eight(v, get_group)) {
            for (unsigned int k = 0; k < count; ++k, v += size) {
                PolyMeshNormalSum* const group = get_group(k);
                summer.add(v[0], v[1], v[2], group);
                if (size == 4) {
                    summer.add(v[0], v[2], v[3], group);
                }
            }
        }
        step_through(progress, first, first + count);
    };
    PrimitiveReader(topology).visit_all(primitive_count, add_run);
    summer.finish();
    finish_sums(geometry);
}
