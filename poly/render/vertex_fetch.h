#pragma once

#include <poly/mesh/primitive_corners.h>

#include <platform/qz_ctx.h>
#include <platform/qz_geometry.h>

// Where a vertex is at a time.
//
// - Without motion: at rest.
// - With velocities: at rest plus velocity * time.
// - With two deformation samples or more: between the samples, linearly; velocities are ignored.
//   When the shutter has two samples or more as well, the vertex is linear between its positions
//   at the two shutter samples around the time, so that it stays within the bounds that were taken
//   there, however the deformation samples lie.
//
// Times are in the unit of the samplings. All of it may be called from any number of threads.

// A blend towards the next sample of at most this much counts as none, and one within this of 1 as
// whole: the other sample is then not read.
inline constexpr float blend_epsilon = 0.0001f;

// Times and time steps of at most this absolute value count as zero.
inline constexpr double time_epsilon = 1e-8;

// The shutter of the evaluation's render: one sample at time 0 when it has no shader context.
GMathTimeSampling const& get_shutter_sampling(CtxEval const& ctx);

// The positions of deformation sample `sample`, one per point: filled by the provider on first use,
// by one thread while the others wait, and valid as long as `data`. `sample` must be below the
// count of deformation samples.
GMathVec3<float> const* get_deformation_sample(GeometryPointCloudData const& data,
                                               unsigned int const& sample);

// The position within the deformation samples, of which there must be two or more.
void fetch_deformation_position(GeometryPointCloudData const& data, unsigned int const& vertex,
                                double const& time, GMathVec3<float>& position);

// The position of one vertex. Velocities are multiplied by the time in doubles.
void fetch_vertex_position(GeometryPointCloudData const& data, unsigned int const& vertex,
                           double const& time, GMathTimeSampling const& shutter,
                           GMathVec3<float>& position);

// The positions of all vertices, as a sum of one to four weighted arrays; the arrays live as long
// as `data`. Deliberate: velocities are weighted by the time in float, unlike above, and what a
// dropped sample weighed is not made up for.
void compute_position_blend(GeometryPointCloudData const& data, double const& time,
                            GMathTimeSampling const& shutter, GeometryPositionArray& positions);

// Writes the positions of `count` vertices. `source` is an array of positions or a blend.
template <typename Positions>
void fetch_positions(Positions const& source, unsigned int const* vertices,
                     unsigned int const& count, GMathVec3<float>* positions) {
    unsigned int const wanted = count;
    for (unsigned int k = 0; k < wanted; ++k) {
        positions[k] = source[vertices[k]];
    }
}

// Writes the positions of a primitive's 3 or 4 corners, and returns how many. `corners` has room
// for 4.
template <typename Positions>
unsigned int fetch_corner_positions(PolyMeshTopology const& topology, unsigned int const& primitive,
                                    Positions const& source, GMathVec3<float>* corners) {
    unsigned int vertices[4];
    unsigned int const count = get_primitive_vertices(topology, primitive, vertices);
    fetch_positions(source, vertices, count, corners);
    return count;
}
