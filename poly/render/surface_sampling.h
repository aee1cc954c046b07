#pragma once

#include <poly/render/surface_weights.h>

#include <platform/qz_ctx.h>
#include <platform/qz_geometry.h>
#include <platform/qz_gmath.h>

// Samples of a mesh's surface, shared by the classes that shade one mesh with different normals.

// A fragment's place on the triangle that holds it, and that triangle's corners c0, c1, c2.
struct SurfacePlace {
    SurfaceWeights weights;
    IndexTriple corner_ids;
    IndexTriple vertices;
    bool is_at_rest;               // these are the rest positions
    GMathFloatLanes positions[3];  // at the fragment's time
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
void fill_surface_sample(SurfacePlace const& place, GMathFloatLanes const (&normals)[3],
                         GeometrySample& sample);

// Tells `sample` where the place will be one time step after the fragment; nothing when the step is
// zero or the mesh does not move.
void add_surface_motion(CtxEval const& ctx, GeometryPointCloudData const& data,
                        GeometryFragment const& fragment, SurfacePlace const& place,
                        GeometrySample& sample);

// The fragment's point index must be below the point count.
void compute_point_sample(CtxEval const& ctx, GeometryPointCloudData const& data,
                          GeometryFragment const& fragment, GeometrySample& sample);

// What GMathShortNormal::decode gives, to the bit: of unit length but for rounding, or zero.
inline GMathFloatLanes decode_normal(GMathShortNormal const& normal) {
    GMathIntLanes const bits = {normal.x, normal.y, normal.z, 0};
    GMathFloatLanes const magnitude =
        __builtin_convertvector(bits & 0x7FFF, GMathFloatLanes) / 32767.0f;
    return (GMathFloatLanes)((GMathIntLanes)magnitude | ((bits & 0x8000) << 16));
}

// The sample of a fragment, whatever it names: a primitive, else a point, else nothing.
// `get_normals(place, normals)` writes the normals at the three corners of a SurfacePlace.
template <typename GetNormals>
void compute_mesh_sample(CtxEval const& ctx, PolyMeshTopology const& topology,
                         GeometryPointCloudData const& data, GeometryFragment const& fragment,
                         GetNormals const& get_normals, GeometrySample& sample) {
    if (fragment.primitive_index < topology.primitive_infos.get_count()) {
        SurfacePlace const place = fetch_surface_place(ctx, topology, data, fragment);
        GMathFloatLanes normals[3];
        get_normals(place, normals);
        fill_surface_sample(place, normals, sample);
        add_surface_motion(ctx, data, fragment, place, sample);
    } else if (fragment.point_index < data.point_count) {
        compute_point_sample(ctx, data, fragment, sample);
    } else {
        sample.clear();
    }
}
