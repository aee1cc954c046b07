#pragma once

#include <poly/mesh/poly_mesh_records.h>

#include <platform/qz_gmath.h>

// A matrix taken apart: M = rotation (the axes) * shear * scale, and a translation. The axes are
// the orthonormal columns of a rotation; a mirroring matrix has negative scales.
struct MatrixDecomposition {
    GMathVec3<double> translation;
    GMathVec3<double> axis_x;
    GMathVec3<double> axis_y;
    GMathVec3<double> axis_z;
    GMathVec3<double> shear;  // xy, xz, yz
    GMathVec3<double> scale;
};

// By Gram-Schmidt. The scale and shear of a matrix without a positive entry in absolute value (zero
// or NaN) are zero, and its axes its columns as they are; so is an axis of zero length.
//
// S. Thomas, "Decomposing a matrix into simple transformations", Graphics Gems II, 1991.
MatrixDecomposition decompose_matrix(GMathMatrix4x4<double> const& matrix);

// The area of a surface with this normal sum under a matrix. Only the matrix's scales count, not
// its rotation, shear or translation, nor whether it mirrors.
double estimate_scaled_area(PolyMeshNormalSum const& sum, GMathMatrix4x4<double> const& matrix);

// The exact area of a primitive with 3 or 4 corners under the linear part of a matrix.
double compute_primitive_area(GMathVec3<float> const* corners, bool const& is_quad,
                              GMathMatrix4x4<double> const& matrix);
