#include <poly/mesh/vertex_normals.h>

#include <platform/qz_gmath.h>
#include <poly/mesh/primitive_corners.h>
#include <poly/mesh/progress_task.h>

#include <cmath>
#include <limits>

namespace {

using Vec3 = GMathVec3<float>;
using Lanes = GMathFloatLanes;

// A vector in each lane.
struct VectorLanes {
    Lanes x;
    Lanes y;
    Lanes z;

    VectorLanes operator-(VectorLanes const& b) const { return {x - b.x, y - b.y, z - b.z}; }
    VectorLanes operator/(Lanes const& b) const { return {x / b, y / b, z / b}; }
    Lanes dot(VectorLanes const& b) const { return (x * b.x + y * b.y) + z * b.z; }
    VectorLanes cross(VectorLanes const& b) const {
        return {y * b.z - z * b.y, z * b.x - x * b.z, x * b.y - y * b.x};
    }
    Lanes get_length() const { return dot(*this).get_root(); }
    // Divided by its length; zero unless that is above 0, so a NaN length gives zero as well.
    VectorLanes get_unit(Lanes const& length) const {
        auto const is_long = length > Lanes(0.0f);
        VectorLanes const unit = *this / length;
        return {is_long.keep(unit.x), is_long.keep(unit.y), is_long.keep(unit.z)};
    }
    VectorLanes get_unit() const { return get_unit(get_length()); }
};

// Vectors and a fourth component of each, turned: row k is what lane k held.
struct LaneRows {
    Lanes rows[4];

    LaneRows(VectorLanes const& v, Lanes const& last) : rows{v.x, v.y, v.z, last} {
        Lanes::transpose(rows[0], rows[1], rows[2], rows[3]);
    }
};

// Takes triangles one by one and works on four at a time: roots and quotients are as exact side by
// side as alone, and what is summed up is summed in the order in which the triangles came.
class NormalSummer {
  public:
    NormalSummer(Vec3 const* positions, Vec3* sums) : m_positions(positions), m_sums(sums) {}

    // `group` may be null.
    void add(unsigned int const& a, unsigned int const& b, unsigned int const& c,
             PolyMeshNormalSum* group) {
        m_corners[0][m_count] = a;
        m_corners[1][m_count] = b;
        m_corners[2][m_count] = c;
        m_groups[m_count] = group;
        if (++m_count == 4) {
            sum_up();
        }
    }

    // Sums up those that are left, with the first of them in the lanes beyond.
    void finish() {
        for (unsigned int k = m_count; k < 4; ++k) {
            for (unsigned int(&corner)[4] : m_corners) {
                corner[k] = corner[0];
            }
        }
        if (m_count != 0) {
            sum_up();
        }
        change_group(nullptr);
    }

  private:
    void sum_up() {
        VectorLanes const a = load(0);
        VectorLanes const b = load(1);
        VectorLanes const c = load(2);
        VectorLanes const edge_ab = b - a;
        VectorLanes const edge_bc = c - b;
        VectorLanes const edge_ca = a - c;
        VectorLanes const normal = edge_ca.cross(edge_ab);
        Lanes const length = normal.get_length();
        add_to_groups(normal, length);
        VectorLanes const unit_ab = edge_ab.get_unit();
        VectorLanes const unit_bc = edge_bc.get_unit();
        VectorLanes const unit_ca = edge_ca.get_unit();
        VectorLanes const unit = normal.get_unit(length);
        LaneRows const at_a = get_weighted(unit, unit_ca.dot(unit_ab));
        LaneRows const at_b = get_weighted(unit, unit_ab.dot(unit_bc));
        LaneRows const at_c = get_weighted(unit, unit_bc.dot(unit_ca));
        for (unsigned int k = 0; k < m_count; ++k) {
            at_a.rows[k].add_to(&m_sums[m_corners[0][k]].x);
            at_b.rows[k].add_to(&m_sums[m_corners[1][k]].x);
            at_c.rows[k].add_to(&m_sums[m_corners[2][k]].x);
        }
        m_count = 0;
    }

    VectorLanes load(unsigned int const& corner) const {
        Vec3 const& p0 = m_positions[m_corners[corner][0]];
        Vec3 const& p1 = m_positions[m_corners[corner][1]];
        Vec3 const& p2 = m_positions[m_corners[corner][2]];
        Vec3 const& p3 = m_positions[m_corners[corner][3]];
        return {Lanes(p0.x, p1.x, p2.x, p3.x), Lanes(p0.y, p1.y, p2.y, p3.y),
                Lanes(p0.z, p1.z, p2.z, p3.z)};
    }

    // The normals times 1 + cosine; formed in double and rounded to float before they are added.
    static LaneRows get_weighted(VectorLanes const& normal, Lanes const& cosine) {
        GMathDoubleLanes const weight = GMathDoubleLanes(cosine) + 1.0;
        return LaneRows({(GMathDoubleLanes(normal.x) * weight).get_floats(),
                         (GMathDoubleLanes(normal.y) * weight).get_floats(),
                         (GMathDoubleLanes(normal.z) * weight).get_floats()},
                        Lanes(0.0f));
    }

    // A face whose length is not finite adds zeros, which change nothing: no sum is below +0.
    void add_to_groups(VectorLanes const& normal, Lanes const& length) {
        auto const is_finite = Lanes(std::numeric_limits<float>::max()) >= length;
        LaneRows const parts({is_finite.keep(normal.x.get_absolute()),
                              is_finite.keep(normal.y.get_absolute()),
                              is_finite.keep(normal.z.get_absolute())},
                             is_finite.keep(length));
        for (unsigned int k = 0; k < m_count; ++k) {
            if (m_groups[k] != m_group) {
                change_group(m_groups[k]);
            }
            m_group_sum = m_group_sum + parts.rows[k];
        }
    }

    // The sum of the group at hand is kept aside until another one's turn comes.
    void change_group(PolyMeshNormalSum* group) {
        if (m_group) {
            m_group_sum.store(&m_group->x);
        }
        m_group = group;
        if (m_group) {
            m_group_sum = Lanes(&m_group->x);
        }
    }

    Vec3 const* m_positions;
    Vec3* m_sums;
    unsigned int m_count = 0;
    unsigned int m_corners[3][4];
    PolyMeshNormalSum* m_groups[4];
    PolyMeshNormalSum* m_group = nullptr;
    Lanes m_group_sum{0.0f};
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
    unsigned int const group_count = geometry.shading_group_normals.get_count();
    NormalSummer summer(positions.get_data(), normals.get_data());
    PrimitiveReader const reader(topology);
    CoreIndexReader const groups(topology.primitive_shading_groups);
    PolyMeshNormalSum* const group_sums = geometry.shading_group_normals.get_data();
    set_step_count(progress, primitive_count);
    for (unsigned int primitive = 0; primitive < primitive_count; ++primitive) {
        unsigned int const group_index = groups[primitive];
        PolyMeshNormalSum* const group =
            group_index < group_count ? group_sums + group_index : nullptr;
        unsigned int v[4];
        unsigned int const count = reader.get_vertices(primitive, v);
        summer.add(v[0], v[1], v[2], group);
        if (count == 4) {
            summer.add(v[0], v[2], v[3], group);
        }
        step(progress, primitive + 1);
    }
    summer.finish();
    finish_sums(geometry);
}
