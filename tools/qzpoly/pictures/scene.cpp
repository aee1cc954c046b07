#include <tools/qzpoly/pictures/scene.h>

#include <tools/qzpoly/models/motion.h>

ToolScene::ToolScene(GeometryObject const& geometry, std::vector<double> const& shutter_times)
    : m_geometry(geometry),
      m_shutter_times(shutter_times),
      m_shader_ctx(make_shader_ctx(shutter_times)),
      m_ctx(&m_shader_ctx),
      m_extent(compute_extent(geometry, m_ctx, shutter_times)) {}

bool ToolScene::prepare(GeometryRaytraceCtx::TestMode const& test_mode, bool const& is_brute_force,
                        unsigned int const& thread_count, ToolMessages& messages) {
    if (m_extent.primitive_boxes.empty()) {
        messages.warn("there is nothing to draw: the mesh has no primitives in reach");
        return true;
    }
    ToolSearchSettings const settings = {test_mode, m_shutter_times};
    m_search = is_brute_force
                   ? make_plain_search(m_geometry, m_ctx, settings)
                   : make_embree_search(m_geometry, m_ctx, settings, thread_count, messages);
    return m_search != nullptr;
}

bool ToolScene::draw(ToolCamera const& camera, ToolRenderSettings const& settings,
                     AppProgressBar& progress, ToolMessages& messages, ToolImage& image) const {
    if (!render(m_geometry, m_extent, m_search.get(), m_ctx, camera, settings, progress, image)) {
        messages.fail("stopped");
        return false;
    }
    return true;
}
