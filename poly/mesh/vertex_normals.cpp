#include <poly/mesh/vertex_normals.h>

#include <poly/mesh/primitive_corners.h>
#include <poly/mesh/progress_task.h>

#include <cmath>

namespace {

using Vec3 = GMathVec3<float>;

// v / length; zero unless the length is above 0, so a NaN length gives zero as well.
Vec3 get_unit(Vec3 const& v, float const& length) {
    return length > 0.0f ? v / length : Vec3(0, 0, 0);
}

double get_corner_weight(Vec3 const& incoming, Vec3 const& outgoing) {
    return static_cast<double>(gmath_dot(incoming, outgoing)) + 1.0;
}

// The product is formed in double and rounded to float before it is added.
void add_weighted(Vec3& sum, Vec3 const& normal, double const& weight) {
    sum.x += static_cast<float>(static_cast<double>(normal.x) * weight);
    sum.y += static_cast<float>(static_cast<double>(normal.y) * weight);
    sum.z += static_cast<float>(static_cast<double>(normal.z) * weight);
}

// `group` may be null.
void add_triangle(Vec3 const* positions, unsigned int const& a, unsigned int const& b,
                  unsigned int const& c, Vec3* normals, PolyMeshNormalSum* group) {
    Vec3 const edge_ab = positions[b] - positions[a];
    Vec3 const edge_bc = positions[c] - positions[b];
    Vec3 const edge_ca = positions[a] - positions[c];
    Vec3 const normal = gmath_cross(edge_ca, edge_ab);
    float const length = gmath_length(normal);
    if (group && gmath_isfinitef(length)) {
        group->x += std::fabs(normal.x);
        group->y += std::fabs(normal.y);
        group->z += std::fabs(normal.z);
        group->spread += length;
    }
    Vec3 const unit_ab = get_unit(edge_ab, gmath_length(edge_ab));
    Vec3 const unit_bc = get_unit(edge_bc, gmath_length(edge_bc));
    Vec3 const unit_ca = get_unit(edge_ca, gmath_length(edge_ca));
    Vec3 const unit_normal = get_unit(normal, length);
    add_weighted(normals[a], unit_normal, get_corner_weight(unit_ca, unit_ab));
    add_weighted(normals[b], unit_normal, get_corner_weight(unit_ab, unit_bc));
    add_weighted(normals[c], unit_normal, get_corner_weight(unit_bc, unit_ca));
}

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
    Vec3 const* const points = positions.get_data();
    Vec3* const sums = normals.get_data();
    set_step_count(progress, primitive_count);
    for (unsigned int primitive = 0; primitive < primitive_count; ++primitive) {
        unsigned int const group_index = topology.primitive_shading_groups[primitive];
        PolyMeshNormalSum* const group =
            group_index < group_count ? geometry.shading_group_normals.get_data() + group_index
                                      : nullptr;
        unsigned int v[4];
        unsigned int const count = get_primitive_vertices(topology, primitive, v);
        add_triangle(points, v[0], v[1], v[2], sums, group);
        if (count == 4) {
            add_triangle(points, v[0], v[2], v[3], sums, group);
        }
        step(progress, primitive + 1);
    }
    finish_sums(geometry);
}
