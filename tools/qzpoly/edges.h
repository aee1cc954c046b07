#pragma once

#include <tools/qzpoly/camera.h>

#include <platform/qz_geometry.h>

#include <vector>

// Edges to draw: a byte per primitive, whose bit e stands for edge e.
using ToolEdges = std::vector<unsigned char>;

// The visible edges of polygons.
ToolEdges list_visible_edges(GeometryObject const& geometry);

// How much of a sample at (x, y) of the picture these edges of its primitive cover: 1 on an edge, 0
// from a line's width away. Edges are drawn where their primitive is seen, so that nothing shows
// through.
float compute_edge_cover(GeometryObject const& geometry, ToolEdges const& edges, CtxEval const& ctx,
                         GeometryFragment const& fragment, ToolCamera const& camera,
                         double const& x, double const& y);
