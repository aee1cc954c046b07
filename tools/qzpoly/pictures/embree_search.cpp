#include <tools/qzpoly/models/extent.h>
#include <tools/qzpoly/pictures/hit_search.h>
#include <tools/qzpoly/terminal/terminal.h>

#include <embree3/rtcore.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// What boxes are widened by, relative to the largest coordinate: more than the float tests of the
// geometry and of the boxes, and the rounding of ray times, can be apart.
constexpr float box_padding = 4e-6f;

// One ray on its way through the boxes. Its first member is what the callbacks are handed.
struct Query {
    RTCIntersectContext context;
    CtxEval const* ctx;
    GeometryRay const* ray;
    GeometryHit hit;
    std::vector<unsigned int>* candidates;  // not null: primitives are listed, and not tested
};

class EmbreeSearch : public ToolHitSearch {
  public:
    EmbreeSearch(GeometryObject const& geometry, CtxEval const& ctx,
                 ToolSearchSettings const& settings)
        : m_geometry(geometry), m_ctx(ctx), m_settings(settings) {}
    ~EmbreeSearch() override {
        rtcReleaseScene(m_scene);
        rtcReleaseDevice(m_device);
    }
    EmbreeSearch(EmbreeSearch const&) = delete;
    EmbreeSearch& operator=(EmbreeSearch const&) = delete;

    bool build(unsigned int const& thread_count);

    bool find_nearest(CtxEval const& ctx, GeometryRay const& ray, GeometryHit& hit) const override {
        Query query;
        RTCRayHit ray_hit;
        start(ctx, ray, query, ray_hit.ray);
        ray_hit.hit.geomID = RTC_INVALID_GEOMETRY_ID;
        rtcIntersect1(m_scene, &query.context, &ray_hit);
        bool const is_hit = ray_hit.hit.geomID != RTC_INVALID_GEOMETRY_ID;
        hit = is_hit ? query.hit : hit;
        return is_hit;
    }

    bool is_blocked(CtxEval const& ctx, GeometryRay const& ray) const override {
        Query query;
        RTCRay embree_ray;
        start(ctx, ray, query, embree_ray);
        rtcOccluded1(m_scene, &query.context, &embree_ray);
        return embree_ray.tfar < 0;
    }

    void list_candidates(GeometryRay const& ray,
                         std::vector<unsigned int>& primitives) const override {
        Query query;
        RTCRayHit ray_hit;
        start(m_ctx, ray, query, ray_hit.ray);
        primitives.clear();
        query.candidates = &primitives;
        ray_hit.hit.geomID = RTC_INVALID_GEOMETRY_ID;
        rtcIntersect1(m_scene, &query.context, &ray_hit);
    }

  private:
    static void bound(RTCBoundsFunctionArguments const* arguments);
    static void intersect(RTCIntersectFunctionNArguments const* arguments);
    static void occlude(RTCOccludedFunctionNArguments const* arguments);

    void start(CtxEval const& ctx, GeometryRay const& ray, Query& query, RTCRay& embree_ray) const;
    void measure_padding();

    GeometryObject const& m_geometry;
    CtxEval const& m_ctx;
    ToolSearchSettings m_settings;
    float m_padding = 0;
    RTCDevice m_device = nullptr;
    RTCScene m_scene = nullptr;
};

bool EmbreeSearch::build(unsigned int const& thread_count) {
    unsigned int used_count = thread_count;
#if defined(__SANITIZE_THREAD__)
    used_count = 1;  // the sanitizer sees no lock of Embree's own threads
#endif
    m_device = rtcNewDevice(make_text("threads=", used_count).c_str());
    if (m_device == nullptr) {
        return false;
    }
    measure_padding();
    m_scene = rtcNewScene(m_device);
    rtcSetSceneFlags(m_scene, RTC_SCENE_FLAG_ROBUST);
    RTCGeometry const geometry = rtcNewGeometry(m_device, RTC_GEOMETRY_TYPE_USER);
    rtcSetGeometryUserPrimitiveCount(geometry, m_geometry.get_primitive_count());
    rtcSetGeometryTimeStepCount(geometry,
                                std::max(1u, static_cast<unsigned int>(m_settings.times.size())));
    rtcSetGeometryUserData(geometry, this);
    rtcSetGeometryBoundsFunction(geometry, &EmbreeSearch::bound, nullptr);
    rtcSetGeometryIntersectFunction(geometry, &EmbreeSearch::intersect);
    rtcSetGeometryOccludedFunction(geometry, &EmbreeSearch::occlude);
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(m_scene, geometry);
    rtcReleaseGeometry(geometry);
    rtcSetSceneProgressMonitorFunction(
        m_scene, [](void*, double) { return !is_interrupted(); }, nullptr);
    rtcCommitScene(m_scene);
    return rtcGetDeviceError(m_device) == RTC_ERROR_NONE;
}

void EmbreeSearch::measure_padding() {
    ToolExtent const extent = compute_extent(m_geometry, m_ctx, m_settings.times);
    double largest = 0;
    if (!extent.primitive_boxes.empty()) {
        for (unsigned int axis = 0; axis < 3; ++axis) {
            largest = std::max({largest, std::abs(extent.bbox.minimum[axis]),
                                std::abs(extent.bbox.maximum[axis])});
        }
    }
    m_padding = static_cast<float>(largest) * box_padding;
}

void EmbreeSearch::bound(RTCBoundsFunctionArguments const* arguments) {
    EmbreeSearch const& self = *static_cast<EmbreeSearch const*>(arguments->geometryUserPtr);
    RTCBounds& bounds = *arguments->bounds_o;
    GMathBbox3<double> box;
    if (self.m_settings.times.empty()) {
        self.m_geometry.compute_primitive_bbox(self.m_ctx, arguments->primID, box);
    } else {
        self.m_geometry.compute_primitive_bbox_at(self.m_ctx, arguments->primID,
                                                  self.m_settings.times[arguments->timeStep], box);
    }
    if (!is_drawable(box)) {
        // An inverted box leaves the primitive out.
        constexpr float infinity = std::numeric_limits<float>::infinity();
        bounds = {infinity, infinity, infinity, 0, -infinity, -infinity, -infinity, 0};
        return;
    }
    // The padding exceeds what narrowing to floats can move a side inwards.
    bounds.lower_x = static_cast<float>(box.minimum.x) - self.m_padding;
    bounds.lower_y = static_cast<float>(box.minimum.y) - self.m_padding;
    bounds.lower_z = static_cast<float>(box.minimum.z) - self.m_padding;
    bounds.upper_x = static_cast<float>(box.maximum.x) + self.m_padding;
    bounds.upper_y = static_cast<float>(box.maximum.y) + self.m_padding;
    bounds.upper_z = static_cast<float>(box.maximum.z) + self.m_padding;
}

void EmbreeSearch::intersect(RTCIntersectFunctionNArguments const* arguments) {
    if (arguments->valid[0] == 0) {
        return;
    }
    EmbreeSearch const& self = *static_cast<EmbreeSearch const*>(arguments->geometryUserPtr);
    Query& query = *reinterpret_cast<Query*>(arguments->context);
    if (query.candidates != nullptr) {
        query.candidates->push_back(arguments->primID);
        return;
    }
    if (find_nearer(self.m_geometry, self.m_settings, *query.ctx, arguments->primID, *query.ray,
                    query.hit)) {
        RTCRayHit& ray_hit = *reinterpret_cast<RTCRayHit*>(arguments->rayhit);
        ray_hit.ray.tfar = static_cast<float>(query.hit.distance);
        ray_hit.hit.geomID = arguments->geomID;
        ray_hit.hit.primID = arguments->primID;
    }
}

void EmbreeSearch::occlude(RTCOccludedFunctionNArguments const* arguments) {
    if (arguments->valid[0] == 0) {
        return;
    }
    EmbreeSearch const& self = *static_cast<EmbreeSearch const*>(arguments->geometryUserPtr);
    Query const& query = *reinterpret_cast<Query const*>(arguments->context);
    if (is_met(self.m_geometry, self.m_settings, *query.ctx, arguments->primID, *query.ray)) {
        reinterpret_cast<RTCRay*>(arguments->ray)->tfar = -std::numeric_limits<float>::infinity();
    }
}

void EmbreeSearch::start(CtxEval const& ctx, GeometryRay const& ray, Query& query,
                         RTCRay& embree_ray) const {
    rtcInitIntersectContext(&query.context);
    query.ctx = &ctx;
    query.ray = &ray;
    query.hit = GeometryHit();
    query.candidates = nullptr;
    GMathVec3<float> const origin(ray.ray.get_origin());
    GMathVec3<float> const direction(ray.ray.get_direction());
    embree_ray.org_x = origin.x;
    embree_ray.org_y = origin.y;
    embree_ray.org_z = origin.z;
    embree_ray.tnear = 0;
    embree_ray.dir_x = direction.x;
    embree_ray.dir_y = direction.y;
    embree_ray.dir_z = direction.z;
    embree_ray.tfar = std::numeric_limits<float>::infinity();
    embree_ray.mask = 0xFFFFFFFFu;
    embree_ray.id = 0;
    embree_ray.flags = 0;
    embree_ray.time = 0;
    if (m_settings.times.size() > 1) {
        double const first = m_settings.times.front();
        double const fraction = (ray.time - first) / (m_settings.times.back() - first);
        embree_ray.time = static_cast<float>(std::clamp(fraction, 0.0, 1.0));
    }
}

}  // namespace

std::unique_ptr<ToolHitSearch> make_embree_search(GeometryObject const& geometry,
                                                  CtxEval const& ctx,
                                                  ToolSearchSettings const& settings,
                                                  unsigned int const& thread_count,
                                                  ToolMessages& messages) {
    auto search = std::make_unique<EmbreeSearch>(geometry, ctx, settings);
    if (!search->build(thread_count)) {
        messages.fail("the boxes around the primitives cannot be built");
        return nullptr;
    }
    return search;
}
