#include <tools/qzpoly/pictures/hit_search.h>

#include <tools/qzpoly/models/extent.h>

#include <algorithm>

namespace {

constexpr unsigned int no_primitive = 0xFFFFFFFFu;

class PlainSearch : public ToolHitSearch {
  public:
    PlainSearch(GeometryObject const& geometry, CtxEval const& ctx,
                ToolSearchSettings const& settings)
        : m_geometry(geometry), m_settings(settings) {
        for (unsigned int i = 0; i < geometry.get_primitive_count(); ++i) {
            if (is_searched(geometry, settings, ctx, i)) {
                m_primitives.push_back(i);
            }
        }
    }

    bool find_nearest(CtxEval const& ctx, GeometryRay const& ray, GeometryHit& hit) const override {
        GeometryHit nearest;
        for (unsigned int const& primitive : m_primitives) {
            find_nearer(m_geometry, m_settings, ctx, primitive, ray, nearest);
        }
        bool const is_hit = nearest.primitive_index != no_primitive;
        hit = is_hit ? nearest : hit;
        return is_hit;
    }

    bool is_blocked(CtxEval const& ctx, GeometryRay const& ray) const override {
        return std::any_of(m_primitives.begin(), m_primitives.end(), [&](unsigned int const& i) {
            return is_met(m_geometry, m_settings, ctx, i, ray);
        });
    }

    void list_candidates(GeometryRay const&, std::vector<unsigned int>& primitives) const override {
        primitives = m_primitives;
    }

  private:
    GeometryObject const& m_geometry;
    ToolSearchSettings m_settings;
    std::vector<unsigned int> m_primitives;
};

GeometryHit intersect(GeometryObject const& geometry, ToolSearchSettings const& settings,
                      CtxEval const& ctx, unsigned int const& primitive, GeometryRay const& ray,
                      GeometryRaytraceCtx::KeepMode const& keep_mode) {
    GeometryHit hit;
    GeometryRaytraceCtx rays(&ray, &hit, 1);
    rays.test_mode = settings.test_mode;
    rays.keep_mode = keep_mode;
    rays.is_motion_blurred = !settings.times.empty();
    geometry.intersect_primitive(ctx, primitive, rays);
    return hit;
}

}  // namespace

bool find_nearer(GeometryObject const& geometry, ToolSearchSettings const& settings,
                 CtxEval const& ctx, unsigned int const& primitive, GeometryRay const& ray,
                 GeometryHit& hit) {
    bool const is_first = hit.primitive_index == no_primitive;
    GeometryRay shortened = ray;
    if (!is_first) {
        shortened.maximum_distance = hit.distance;
    }
    GeometryHit const found =
        intersect(geometry, settings, ctx, primitive, shortened, GeometryRaytraceCtx::KEEP_NEAREST);
    if (found.primitive_index == no_primitive ||
        (!is_first && found.distance == hit.distance && primitive > hit.primitive_index)) {
        return false;
    }
    hit = found;
    return true;
}

bool is_met(GeometryObject const& geometry, ToolSearchSettings const& settings, CtxEval const& ctx,
            unsigned int const& primitive, GeometryRay const& ray) {
    return intersect(geometry, settings, ctx, primitive, ray, GeometryRaytraceCtx::KEEP_ANY)
               .primitive_index != no_primitive;
}

bool is_searched(GeometryObject const& geometry, ToolSearchSettings const& settings,
                 CtxEval const& ctx, unsigned int const& primitive) {
    GMathBbox3<double> box;
    if (settings.times.empty()) {
        geometry.compute_primitive_bbox(ctx, primitive, box);
        return is_drawable(box);
    }
    return std::all_of(settings.times.begin(), settings.times.end(), [&](double const& time) {
        geometry.compute_primitive_bbox_at(ctx, primitive, time, box);
        return is_drawable(box);
    });
}

std::unique_ptr<ToolHitSearch> make_plain_search(GeometryObject const& geometry, CtxEval const& ctx,
                                                 ToolSearchSettings const& settings) {
    return std::make_unique<PlainSearch>(geometry, ctx, settings);
}
