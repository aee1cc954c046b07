#include <poly/mesh/poly_mesh.h>
#include <poly/render/area_estimate.h>
#include <poly/render/surface_weights.h>
#include <poly/render/vertex_fetch.h>

#include <cmath>

namespace {

double get_largest_entry(GMathMatrix4x4<double> const& matrix) {
    double largest = 0.0;
    for (unsigned int row = 0; row < 3; ++row) {
        for (unsigned int column = 0; column < 3; ++column) {
            double const entry = std::fabs(matrix(row, column));
            largest = entry > largest ? entry : largest;
        }
    }
    return largest;
}

GMathVec3<double> get_column(GMathMatrix4x4<double> const& matrix, unsigned int const& column) {
    return {matrix(0, column), matrix(1, column), matrix(2, column)};
}

// Takes the part along the unit vector `direction` out of `axis`, and returns how long it was.
double remove_part_along(GMathVec3<double> const& direction, GMathVec3<double>& axis) {
    double const part = gmath_dot(direction, axis);
    axis = axis - direction * part;
    return part;
}

}  // namespace

MatrixDecomposition decompose_matrix(GMathMatrix4x4<double> const& matrix) {
    constexpr GMathVec3<double> zero(0, 0, 0);
    MatrixDecomposition d{get_column(matrix, 3),
                          get_column(matrix, 0),
                          get_column(matrix, 1),
                          get_column(matrix, 2),
                          zero,
                          zero};
    double const largest = get_largest_entry(matrix);
    if (!(largest > 0.0)) {
        return d;
    }
    d.axis_x = d.axis_x / largest;
    d.axis_y = d.axis_y / largest;
    d.axis_z = d.axis_z / largest;

    d.scale.x = gmath_length(d.axis_x);
    if (d.scale.x != 0.0) {
        d.axis_x = d.axis_x / d.scale.x;
    }
    d.shear.x = remove_part_along(d.axis_x, d.axis_y);
    d.scale.y = gmath_length(d.axis_y);
    if (d.scale.y != 0.0) {
        d.axis_y = d.axis_y / d.scale.y;
        d.shear.x /= d.scale.y;
    }
    d.shear.y = remove_part_along(d.axis_x, d.axis_z);
    d.shear.z = remove_part_along(d.axis_y, d.axis_z);
    d.scale.z = gmath_length(d.axis_z);
    if (d.scale.z != 0.0) {
        d.axis_z = d.axis_z / d.scale.z;
        d.shear.y /= d.scale.z;
        d.shear.z /= d.scale.z;
    }

    if (gmath_dot(d.axis_x, gmath_cross(d.axis_y, d.axis_z)) < 0.0) {
        d.scale = -d.scale;
        d.axis_x = -d.axis_x;
        d.axis_y = -d.axis_y;
        d.axis_z = -d.axis_z;
    }
    d.scale = d.scale * largest;
    return d;
}

double estimate_scaled_area(PolyMeshNormalSum const& sum, GMathMatrix4x4<double> const& matrix) {
    GMathVec3<double> const scale = decompose_matrix(matrix).scale;
    double const x = std::fabs(scale.x);
    double const y = std::fabs(scale.y);
    double const z = std::fabs(scale.z);
    // Each product is formed in doubles and then narrowed; the rest is in floats.
    GMathVec3<float> const shown(static_cast<float>((y * z) * static_cast<double>(sum.x)),
                                 static_cast<float>((x * z) * static_cast<double>(sum.y)),
                                 static_cast<float>((x * y) * static_cast<double>(sum.z)));
    float const flat = gmath_length(shown);
    float const curved = (shown.x + shown.y) + shown.z;
    return (curved - flat) * sum.spread + flat;
}

double compute_primitive_area(GMathVec3<float> const* corners, bool const& is_quad,
                              GMathMatrix4x4<double> const& matrix) {
    double area = 0.0;
    for (SurfaceTriangle const& triangle : get_surface_triangles(is_quad)) {
        GMathVec3<float> const& start = corners[triangle.corners[0]];
        // Subtract in floats, then widen.
        GMathVec3<double> const e1(corners[triangle.corners[1]] - start);
        GMathVec3<double> const e2(corners[triangle.corners[2]] - start);
        area += 0.5 *
                gmath_length(gmath_cross(matrix.transform_vector(e1), matrix.transform_vector(e2)));
    }
    return area;
}

double PolyMesh::estimate_area(CtxEval const&, GMathMatrix4x4<double> const& matrix) const {
    return estimate_scaled_area(m_geometry->mesh_normal, matrix);
}

double PolyMesh::estimate_shading_group_area(CtxEval const&, unsigned int const& group,
                                             GMathMatrix4x4<double> const& matrix) const {
    return estimate_scaled_area(m_geometry->shading_group_normals[group], matrix);
}

double PolyMesh::estimate_primitive_area(CtxEval const&, unsigned int const& primitive,
                                         GMathMatrix4x4<double> const& matrix) const {
    GMathVec3<float> corners[4];
    unsigned int const count =
        fetch_corner_positions(*m_topology, primitive, m_point_cloud.get_data().positions, corners);
    return compute_primitive_area(corners, count == 4, matrix);
}
