#include <bench/peers.h>

#include <embree3/rtcore.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

namespace {

using Vec = GMathVec3<float>;
using Arguments = RTCIntersectFunctionNArguments;

constexpr float infinity = std::numeric_limits<float>::infinity();

// Boxes around the primitives of a mesh, which has triangles or quads alone.
class Scene {
  public:
    Scene(BenchMesh const& mesh, RTCIntersectFunctionN const& intersect)
        : m_mesh(mesh), m_size(mesh.counts.front()) {
        RTCGeometry const geometry = rtcNewGeometry(m_device, RTC_GEOMETRY_TYPE_USER);
        rtcSetGeometryUserPrimitiveCount(geometry, static_cast<unsigned int>(mesh.counts.size()));
        rtcSetGeometryUserData(geometry, this);
        rtcSetGeometryBoundsFunction(geometry, &Scene::bound, nullptr);
        rtcSetGeometryIntersectFunction(geometry, intersect);
        rtcCommitGeometry(geometry);
        rtcAttachGeometry(m_scene, geometry);
        rtcReleaseGeometry(geometry);
        rtcCommitScene(m_scene);
    }
    Scene(Scene const&) = delete;
    Scene& operator=(Scene const&) = delete;
    ~Scene() {
        rtcReleaseScene(m_scene);
        rtcReleaseDevice(m_device);
    }

    RTCScene const& get() const { return m_scene; }
    Vec const* get_positions() const { return m_mesh.positions.data(); }
    unsigned int get_size() const { return m_size; }
    unsigned int const* get_corners(unsigned int const& primitive) const {
        return m_mesh.corners.data() + std::size_t(m_size) * primitive;
    }

  private:
    static void bound(RTCBoundsFunctionArguments const* arguments) {
        Scene const& self = *static_cast<Scene const*>(arguments->geometryUserPtr);
        unsigned int const* const corners = self.get_corners(arguments->primID);
        Vec low(infinity, infinity, infinity), high = -low;
        for (unsigned int k = 0; k < self.m_size; ++k) {
            Vec const& p = self.get_positions()[corners[k]];
            low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
        }
        *arguments->bounds_o = {low.x, low.y, low.z, 0, high.x, high.y, high.z, 0};
    }

    BenchMesh const& m_mesh;
    unsigned int m_size;
    RTCDevice m_device = rtcNewDevice("threads=1");
    RTCScene m_scene = rtcNewScene(m_device);
};

struct Query {
    RTCIntersectContext context;
    PolyMesh const* mesh;       // of our side
    GeometryRaytraceCtx* rays;  // of our side
    GeometryHit const* hits;    // of our side
    bool is_call_per_ray;
};

void report_hit(Arguments const& arguments, unsigned int const& lane, float const& distance) {
    RTCRayN* const rays = RTCRayHitN_RayN(arguments.rayhit, arguments.N);
    RTCHitN* const hits = RTCRayHitN_HitN(arguments.rayhit, arguments.N);
    RTCRayN_tfar(rays, arguments.N, lane) = distance;
    RTCHitN_primID(hits, arguments.N, lane) = arguments.primID;
    RTCHitN_geomID(hits, arguments.N, lane) = arguments.geomID;
}

// Hands the rays that reach the primitive's box to the mesh: all at once, or one by one.
void intersect_ours(Arguments const* arguments) {
    Query& query = *reinterpret_cast<Query*>(arguments->context);
    int const count = static_cast<int>(arguments->N);
    int first = count, last = -1;
    for (int lane = 0; lane < count; ++lane) {
        if (arguments->valid[lane] != 0) {
            first = std::min(first, lane);
            last = lane;
            if (query.is_call_per_ray) {
                query.rays->set_active_range(lane, lane);
                query.mesh->intersect_primitive(CtxEval(), arguments->primID, *query.rays);
            }
        }
    }
    if (!query.is_call_per_ray) {
        query.rays->set_active_range(first, last);
        query.mesh->intersect_primitive(CtxEval(), arguments->primID, *query.rays);
    }
    for (int lane = first; lane <= last; ++lane) {
        GeometryHit const& hit = query.hits[lane];
        if (hit.primitive_index == arguments->primID) {
            report_hit(*arguments, static_cast<unsigned int>(lane),
                       static_cast<float>(hit.distance));
        }
    }
}

// T. Moeller, B. Trumbore, "Fast, minimum storage ray-triangle intersection", 1997.
bool meets(Vec const& origin, Vec const& direction, Vec const& p0, Vec const& p1, Vec const& p2,
           float& distance) {
    Vec const e1 = p1 - p0, e2 = p2 - p0;
    Vec const p = gmath_cross(direction, e2);
    float const determinant = gmath_dot(e1, p);
    if (determinant == 0) {
        return false;
    }
    float const inverse = 1 / determinant;
    Vec const from_p0 = origin - p0;
    float const u = gmath_dot(from_p0, p) * inverse;
    if (u < 0 || u > 1) {
        return false;
    }
    Vec const q = gmath_cross(from_p0, e1);
    float const v = gmath_dot(direction, q) * inverse;
    if (v < 0 || u + v > 1) {
        return false;
    }
    distance = gmath_dot(e2, q) * inverse;
    return true;
}

void intersect_plainly(Arguments const* arguments) {
    Scene const& scene = *static_cast<Scene const*>(arguments->geometryUserPtr);
    unsigned int const* const v = scene.get_corners(arguments->primID);
    Vec const* const x = scene.get_positions();
    unsigned int const count = arguments->N;
    RTCRayN* const rays = RTCRayHitN_RayN(arguments->rayhit, count);
    for (unsigned int lane = 0; lane < count; ++lane) {
        if (arguments->valid[lane] == 0) {
            continue;
        }
        Vec const origin(RTCRayN_org_x(rays, count, lane), RTCRayN_org_y(rays, count, lane),
                         RTCRayN_org_z(rays, count, lane));
        Vec const direction(RTCRayN_dir_x(rays, count, lane), RTCRayN_dir_y(rays, count, lane),
                            RTCRayN_dir_z(rays, count, lane));
        for (unsigned int k = 2; k < scene.get_size(); ++k) {
            float distance = 0;
            if (meets(origin, direction, x[v[0]], x[v[k - 1]], x[v[k]], distance) &&
                distance >= RTCRayN_tnear(rays, count, lane) &&
                distance < RTCRayN_tfar(rays, count, lane)) {
                report_hit(*arguments, lane, distance);
            }
        }
    }
}

// Lane `lane` of `size`.
template <typename RayHit>
void set_ray(RayHit& ray_hit, unsigned int const& size, unsigned int const& lane,
             GeometryRay const& source) {
    auto* const rays = reinterpret_cast<RTCRayN*>(&ray_hit.ray);
    auto* const hits = reinterpret_cast<RTCHitN*>(&ray_hit.hit);
    Vec const origin(source.ray.get_origin()), direction(source.ray.get_direction());
    RTCRayN_org_x(rays, size, lane) = origin.x;
    RTCRayN_org_y(rays, size, lane) = origin.y;
    RTCRayN_org_z(rays, size, lane) = origin.z;
    RTCRayN_dir_x(rays, size, lane) = direction.x;
    RTCRayN_dir_y(rays, size, lane) = direction.y;
    RTCRayN_dir_z(rays, size, lane) = direction.z;
    RTCRayN_tnear(rays, size, lane) = 0;
    RTCRayN_tfar(rays, size, lane) = infinity;
    RTCRayN_time(rays, size, lane) = 0;
    RTCRayN_mask(rays, size, lane) = ~0u;
    RTCRayN_id(rays, size, lane) = lane;
    RTCRayN_flags(rays, size, lane) = 0;
    RTCHitN_geomID(hits, size, lane) = RTC_INVALID_GEOMETRY_ID;
    RTCHitN_primID(hits, size, lane) = RTC_INVALID_GEOMETRY_ID;
    RTCHitN_instID(hits, size, lane, 0) = RTC_INVALID_GEOMETRY_ID;
}

void search(RTCScene const& scene, Query& query, RTCRayHit& ray_hit) {
    rtcIntersect1(scene, &query.context, &ray_hit);
}
void search(RTCScene const& scene, Query& query, RTCRayHit8& ray_hit) {
    alignas(32) static constexpr int valid[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
    rtcIntersect8(valid, scene, &query.context, &ray_hit);
}

template <typename RayHit, unsigned int size>
void trace(Scene const& scene, TraceInput const& input, bool const& is_call_per_ray,
           std::vector<TraceHit>& hits) {
    hits.clear();
    for (std::size_t i = 0; i + size <= input.rays.size(); i += size) {
        Query query;
        GeometryHit held[size];
        GeometryRaytraceCtx rays(&input.rays[i], held, size);
        rtcInitIntersectContext(&query.context);
        query.mesh = input.mesh.get();
        query.rays = &rays;
        query.hits = held;
        query.is_call_per_ray = is_call_per_ray;
        alignas(32) RayHit ray_hit;
        for (unsigned int lane = 0; lane < size; ++lane) {
            set_ray(ray_hit, size, lane, input.rays[i + lane]);
        }
        search(scene.get(), query, ray_hit);
        for (unsigned int lane = 0; lane < size; ++lane) {
            hits.push_back({RTCHitN_primID(reinterpret_cast<RTCHitN*>(&ray_hit.hit), size, lane),
                            RTCRayN_tfar(reinterpret_cast<RTCRayN*>(&ray_hit.ray), size, lane)});
        }
    }
}

}  // namespace

TraceWork make_embree_trace(std::shared_ptr<TraceInput const> const& input, TraceSide const& side) {
    bool const is_plain = side == TraceSide::PLAIN || side == TraceSide::PLAIN_BY_8;
    auto const scene =
        std::make_shared<Scene>(input->plain, is_plain ? &intersect_plainly : &intersect_ours);
    auto const hits = std::make_shared<std::vector<TraceHit>>();
    auto const trace_all = [=] {
        if (side == TraceSide::OURS || side == TraceSide::PLAIN) {
            trace<RTCRayHit, 1>(*scene, *input, false, *hits);
        } else {
            trace<RTCRayHit8, 8>(*scene, *input, side == TraceSide::OURS_8_BY_CALLS, *hits);
        }
    };
    return {trace_all, [=] { return *hits; }};
}

std::shared_ptr<void> build_embree_quads(BenchMesh const& mesh) {
    RTCDevice const device = rtcNewDevice("threads=1");
    RTCScene const scene = rtcNewScene(device);
    RTCGeometry const geometry = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_QUAD);
    auto* const x = static_cast<float*>(rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0,
                                                                RTC_FORMAT_FLOAT3, sizeof(Vec),
                                                                mesh.positions.size()));
    std::memcpy(x, mesh.positions.data(), mesh.positions.size() * sizeof(Vec));
    auto* quads = static_cast<unsigned int*>(
        rtcSetNewGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT4,
                                4 * sizeof(unsigned int), mesh.counts.size()));
    unsigned int const* corners = mesh.corners.data();
    for (unsigned int const& count : mesh.counts) {
        for (unsigned int k = 0; k < 4; ++k) {
            *quads++ = corners[std::min(k, count - 1)];
        }
        corners += count;
    }
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(scene, geometry);
    rtcReleaseGeometry(geometry);
    rtcCommitScene(scene);
    return {scene, [=](void*) {
                rtcReleaseScene(scene);
                rtcReleaseDevice(device);
            }};
}
