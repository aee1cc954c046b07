#pragma once

#include <bench/make_inputs.h>

#include <platform/qz_geometry.h>

// Rays from a camera that sees the whole mesh.

// A square of them; every 8 in a row are neighbours.
std::vector<GeometryRay> make_camera_rays(BenchMesh const& mesh, unsigned int const& size);
// The middle of a picture of 1024 x 1024 pixels, about one for each primitive of a large mesh: 64 x
// 64 of them, with 8 samples each in a row.
std::vector<GeometryRay> make_sample_rays(BenchMesh const& mesh);
