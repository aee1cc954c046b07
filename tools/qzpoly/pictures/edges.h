#pragma once

#include <tools/qzpoly/pictures/camera.h>
#include <tools/qzpoly/pictures/image.h>

#include <platform/qz_geometry.h>

#include <optional>
#include <vector>

// Edges to draw: a byte per primitive, whose bit e stands for edge e.
using ToolEdges = std::vector<unsigned char>;

// Edges that are drawn alike: painted over, or darkening what is beneath.
struct ToolEdgeLayer {
    ToolEdges edges;
    std::optional<ToolColor> paint;
    double half_width = 0.6;  // pixels, on either side of an edge
};

// The visible edges of polygons.
ToolEdges list_visible_edges(GeometryObject const& geometry);

// Draws the edges of a layer over the color of a sample at (x, y) of the picture. Edges are drawn
// where their primitive is seen, so that nothing shows through.
void draw_edges(GeometryObject const& geometry, ToolEdgeLayer const& layer, CtxEval const& ctx,
                GeometryFragment const& fragment, ToolCamera const& camera, double const& x,
                double const& y, ToolColor& color);
