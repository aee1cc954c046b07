#pragma once

#include <poly/render/surface_weights.h>

#include <platform/qz_ctx.h>
#include <platform/qz_geometry.h>
#include <platform/qz_gmath.h>

// Samples of a mesh's surface, shared by the classes that shade one mesh with different normals.

// A fragment's place on the triangle that holds it, and that triangle's corners c0, c1, c2.
struct SurfacePlace {
    SurfaceWeights weights;
    unsigned int corner_ids[3];
    unsigned int vertices[3];
    GMathVec3<float> positions[3];  // at the fragment's time
    bool is_at_rest;                // these are the rest positions
};

// The fragment's primitive index must be below the primitive count.
SurfacePlace fetch_surface_place(CtxEval const& ctx, PolyMeshTopology const& topology,
                                 GeometryPointCloudData const& data,
                                 GeometryFragment const& fragment);

// Fills `sample` from the place and the normals at its corners, which may have any length. The
// smoothed position curves the triangle so that it meets the tangent plane of each corner there; a
// corner with a zero normal has none, and leaves its share of the position as it is.
//
// T. Boubekeur, M. Alexa, "Phong tessellation", ACM Transactions on Graphics 27(5), 2008, with
// shape factor 1.
void fill_surface_sample(SurfacePlace const& place, GMathVec3<float> const (&normals)[3],
                         GeometrySample& sample);

// Tells `sample` where the place will be one time step after the fragment; nothing when the step is
// zero or the mesh does not move.
void add_surface_motion(CtxEval const& ctx, GeometryPointCloudData const& data,
                        GeometryFragment const& fragment, SurfacePlace const& place,
                        GeometrySample& sample);

// The fragment's point index must be below the point count.
void compute_point_sample(CtxEval const& ctx, GeometryPointCloudData const& data,
                          GeometryFragment const& fragment, GeometrySample& sample);

// As stored: of unit length but for rounding, or zero. By table, which gives what
// GMathShortNormal::decode computes without its divisions.
inline GMathVec3<float> decode_normal(GMathShortNormal const& normal) {
    GMathHalfFloatConverter::Table const& table = GMathHalfFloatConverter::s_conv_ntof;
    return {table[normal.x], table[normal.y], table[normal.z]};
}

// The sample of a fragment, whatever it names: a primitive, else a point, else nothing.
// `get_normals(place, normals)` writes the normals at the three corners of a SurfacePlace.
template <typename GetNormals>
void compute_mesh_sample(CtxEval const& ctx, PolyMeshTopology const& topology,
                         GeometryPointCloudData const& data, GeometryFragment const& fragment,
                         GetNormals const& get_normals, GeometrySample& sample) {
    if (fragment.primitive_index < topology.primitive_infos.get_count()) {
        SurfacePlace const place = fetch_surface_place(ctx, topology, data, fragment);
        GMathVec3<float> normals[3];
        get_normals(place, normals);
        fill_surface_sample(place, normals, sample);
        add_surface_motion(ctx, data, fragment, place, sample);
    } else if (fragment.point_index < data.point_count) {
        compute_point_sample(ctx, data, fragment, sample);
    } else {
        sample.clear();
    }
}
