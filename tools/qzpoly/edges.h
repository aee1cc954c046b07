#pragma once

#include <tools/qzpoly/camera.h>

#include <platform/qz_geometry.h>

// How much of a sample at (x, y) of the picture the visible edges of its primitive cover: 1 on an
// edge, 0 from a line's width away. Edges are drawn where their primitive is seen, so that nothing
// shows through.
float compute_edge_cover(GeometryObject const& geometry, CtxEval const& ctx,
                         GeometryFragment const& fragment, ToolCamera const& camera,
                         double const& x, double const& y);
