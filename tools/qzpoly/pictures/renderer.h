#pragma once

#include <tools/qzpoly/pictures/camera.h>
#include <tools/qzpoly/pictures/edges.h>
#include <tools/qzpoly/pictures/hit_search.h>
#include <tools/qzpoly/pictures/image.h>
#include <tools/qzpoly/pictures/shading.h>

#include <platform/qz_app_base.h>

#include <optional>
#include <vector>

struct ToolRenderSettings {
    ToolShadeMode const* shade_mode = nullptr;
    ToolAppearance appearance;
    std::vector<ToolEdgeLayer> edge_layers;  // drawn one over the other
    std::optional<ToolColor> background;     // none: a light grey that runs up into blue
    unsigned int occlusion_rays = 0;         // a sample; 0: a key light and a sky
    unsigned int samples_per_pixel = 1;
    unsigned int thread_count = 1;
    double shutter_open = 0;  // sample times lie between these
    double shutter_close = 0;
};

// Draws a geometry before its background; a lit one stands on the ground. The picture does not
// depend on the number of threads. Null `search`: nothing but the background. `ctx` has the
// shutter. Takes the task that is open in `progress`; false when it was asked to stop.
bool render(GeometryObject const& geometry, ToolExtent const& extent, ToolHitSearch const* search,
            CtxEval const& ctx, ToolCamera const& camera, ToolRenderSettings const& settings,
            AppProgressBar& progress, ToolImage& image);
