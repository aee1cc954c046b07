#pragma once

#include <bench/make_inputs.h>

#include <platform/qz_geometry.h>

// Rays from a camera that sees the whole mesh, a square of them; every 8 in a row are neighbours.
std::vector<GeometryRay> make_camera_rays(BenchMesh const& mesh, unsigned int const& size);
