#pragma once

#include <tools/qzpoly/models/extent.h>
#include <tools/qzpoly/pictures/hit_search.h>
#include <tools/qzpoly/pictures/renderer.h>

#include <memory>

// A geometry made ready to be drawn, any number of times. Refers to the geometry.
class ToolScene {
  public:
    // `shutter_times`: those at which it is bounded; none when it stands still.
    ToolScene(GeometryObject const& geometry, std::vector<double> const& shutter_times);
    ToolScene(ToolScene const&) = delete;
    ToolScene& operator=(ToolScene const&) = delete;

    // False after the reason has been shown. Call once.
    bool prepare(GeometryRaytraceCtx::TestMode const& test_mode, bool const& is_brute_force,
                 unsigned int const& thread_count, ToolMessages& messages);

    // False after the reason has been shown.
    bool draw(ToolCamera const& camera, ToolRenderSettings const& settings,
              AppProgressBar& progress, ToolMessages& messages, ToolImage& image) const;

    CtxEval const& get_ctx() const { return m_ctx; }
    ToolExtent const& get_extent() const { return m_extent; }

  private:
    GeometryObject const& m_geometry;
    std::vector<double> m_shutter_times;
    CtxShader m_shader_ctx;
    CtxEval m_ctx;
    ToolExtent m_extent;
    std::unique_ptr<ToolHitSearch> m_search;
};
