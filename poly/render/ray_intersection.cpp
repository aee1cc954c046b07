#include <poly/mesh/poly_mesh.h>
#include <poly/render/surface_weights.h>
#include <poly/render/triangle_tests.h>
#include <poly/render/vertex_fetch.h>

#include <algorithm>
#include <type_traits>

namespace {

struct RayQuery {
    CtxEval const& ctx;
    GeometryRaytraceCtx& rays;
    unsigned int primitive;
};

constexpr int lane_count = 4;

// Rays `ray` to `ray + count - 1`; the last fills the lanes that are left.
inline RayLanes load_rays(GeometryRaytraceCtx const& rays, unsigned int const& ray,
                          unsigned int const& count) {
    auto const get = [&](unsigned int const& k) -> GMathBasicRay const& {
        return rays.get_basic_ray(ray + std::min(k, count - 1));
    };
    GMathBasicRay const &a = get(0), &b = get(1), &c = get(2), &d = get(3);
    auto const narrow = [&](auto const& get_component) {
        return GMathFloatLanes{
            static_cast<float>(get_component(a)), static_cast<float>(get_component(b)),
            static_cast<float>(get_component(c)), static_cast<float>(get_component(d))};
    };
    return {{narrow([](GMathBasicRay const& r) { return r.get_origin().x; }),
             narrow([](GMathBasicRay const& r) { return r.get_origin().y; }),
             narrow([](GMathBasicRay const& r) { return r.get_origin().z; })},
            {narrow([](GMathBasicRay const& r) { return r.get_direction().x; }),
             narrow([](GMathBasicRay const& r) { return r.get_direction().y; }),
             narrow([](GMathBasicRay const& r) { return r.get_direction().z; })}};
}

// What a mesh tells of the medium behind its surface: nothing.
constexpr GeometryMediumDescriptor no_medium;

// A triangle among those of `surface_triangles`, ready for one kind of test.
template <typename Test, unsigned int number>
struct NumberedTriangle {
    // `get_corner(k)` is where corner k of the primitive lies.
    template <typename GetCorner>
    explicit NumberedTriangle(GetCorner const& get_corner)
        : test(get_corner(surface_triangles[number].corners[0]),
               get_corner(surface_triangles[number].corners[1]),
               get_corner(surface_triangles[number].corners[2])) {}

    template <bool is_moving>
    void trace(RayQuery const& query, unsigned int const& ray, GMathVec3<float> const& origin,
               GMathVec3<float> const& direction) const {
        TriangleHit hit;
        if (test.intersect(origin, direction, hit)) {
            push<is_moving>(query, ray, hit);
        }
    }

    template <bool is_moving>
    static void push(RayQuery const& query, unsigned int const& ray, TriangleHit const& hit) {
        float s;
        float t;
        compute_surface_parameters<number>(hit.u, hit.v, s, t);
        // Deliberate: moving quads under the exact test, and they alone, push the short form.
        if constexpr (is_moving && number != 0 && std::is_same_v<Test, ExactTriangle>) {
            query.rays.push_intersection(query.ctx, ray, query.primitive, s, t, 0.0, hit.distance,
                                         0.0, no_medium, nullptr);
        } else {
            query.rays.push_intersection(query.ctx, ray, query.primitive, s, t, 0.0, 0xFFFFFFFFu,
                                         0.0, 0.0, 0.0, hit.distance, 0.0, no_medium, nullptr);
        }
    }

    Test test;
};

// The triangles of a primitive. Both halves of a quad are always tested, and each pushes its own
// hit.
template <typename Test, bool is_quad>
struct PrimitiveTest {
    template <typename GetCorner>
    explicit PrimitiveTest(GetCorner const& get_corner) : first(get_corner), second(get_corner) {}

    // Inlined, so that a triangle that is built for one ray stays in registers.
    template <bool is_moving>
    [[gnu::always_inline]] void trace(RayQuery const& query, unsigned int const& ray) const {
        GMathBasicRay const& basic_ray = query.rays.get_basic_ray(ray);
        GMathVec3<float> const origin(basic_ray.get_origin());
        GMathVec3<float> const direction(basic_ray.get_direction());
        first.template trace<is_moving>(query, ray, origin, direction);
        if constexpr (is_quad) {
            second.template trace<is_moving>(query, ray, origin, direction);
        }
    }

    // The same for rays `ray` to `ray + count - 1`, of which there are at most four.
    void trace_lanes(RayQuery const& query, unsigned int const& ray,
                     unsigned int const& count) const {
        RayLanes const lanes = load_rays(query.rays, ray, count);
        TriangleHitLanes const hits = first.test.intersect(lanes);
        TriangleHitLanes const more_hits = second.test.intersect(lanes);
        unsigned int const bits = hits.bits | (is_quad ? more_hits.bits : 0u);
        for (unsigned int k = 0; k < count; ++k) {
            if ((bits >> k & 1u) == 0) {
                continue;
            }
            if ((hits.bits >> k & 1u) != 0) {
                first.template push<false>(query, ray + k, hits.get(k));
            }
            if (is_quad && (more_hits.bits >> k & 1u) != 0) {
                second.template push<false>(query, ray + k, more_hits.get(k));
            }
        }
    }

    NumberedTriangle<Test, is_quad ? 1 : 0> first;
    NumberedTriangle<Test, is_quad ? 2 : 0> second;  // unused by triangles
};

// Corners are read where they are: copies, written one by one, would be waited for.
template <typename Test, bool is_quad>
PrimitiveTest<Test, is_quad> load_at_rest(GeometryPointCloudData const& data,
                                          unsigned int const* vertices) {
    return PrimitiveTest<Test, is_quad>(
        [&](unsigned int const& k) { return data.positions[vertices[k]]; });
}

template <typename Test, bool is_quad>
[[gnu::noinline]] void trace_packet_at_rest(RayQuery const& query,
                                            GeometryPointCloudData const& data,
                                            unsigned int const* vertices) {
    PrimitiveTest<Test, is_quad> const test = load_at_rest<Test, is_quad>(data, vertices);
    int const last = query.rays.get_last_active();
    int ray = query.rays.get_first_active();
    for (; ray < last; ray += lane_count) {
        test.trace_lanes(query, static_cast<unsigned int>(ray),
                         static_cast<unsigned int>(std::min(lane_count, last - ray + 1)));
    }
    if (ray == last) {
        test.template trace<false>(query, static_cast<unsigned int>(ray));
    }
}

// A single ray, as most are, does without the registers and the stack of four.
template <typename Test, bool is_quad>
void trace_at_rest(RayQuery const& query, GeometryPointCloudData const& data,
                   unsigned int const* vertices) {
    int const ray = query.rays.get_first_active();
    if (ray == query.rays.get_last_active()) {
        load_at_rest<Test, is_quad>(data, vertices)
            .template trace<false>(query, static_cast<unsigned int>(ray));
    } else {
        trace_packet_at_rest<Test, is_quad>(query, data, vertices);
    }
}

// Every ray has its own time, and so its own corners.
template <typename Test, bool is_quad>
void trace_in_motion(RayQuery const& query, GeometryPointCloudData const& data,
                     unsigned int const* vertices) {
    GMathTimeSampling const& shutter = get_shutter_sampling(query.ctx);
    int const last = query.rays.get_last_active();
    for (int ray = query.rays.get_first_active(); ray <= last; ++ray) {
        GeometryPositionArray positions;
        compute_position_blend(data, query.rays.get_time(static_cast<unsigned int>(ray)), shutter,
                               positions);
        GMathVec3<float> corners[4];
        fetch_positions(positions, vertices, is_quad ? 4 : 3, corners);
        PrimitiveTest<Test, is_quad> const test([&](unsigned int const& k) { return corners[k]; });
        test.template trace<true>(query, static_cast<unsigned int>(ray));
    }
}

template <typename Test>
void trace_primitive(RayQuery const& query, PolyMeshTopology const& topology,
                     GeometryPointCloudData const& data) {
    unsigned int vertices[4];
    bool const is_quad = get_primitive_vertices(topology, query.primitive, vertices) == 4;
    if (query.rays.is_motion_blurred && data.is_moving()) {
        is_quad ? trace_in_motion<Test, true>(query, data, vertices)
                : trace_in_motion<Test, false>(query, data, vertices);
    } else {
        is_quad ? trace_at_rest<Test, true>(query, data, vertices)
                : trace_at_rest<Test, false>(query, data, vertices);
    }
}

}  // namespace

void PolyMesh::intersect_primitive(CtxEval const& ctx, unsigned int const& primitive,
                                   GeometryRaytraceCtx& raytrace_ctx) const {
    RayQuery const query{ctx, raytrace_ctx, primitive};
    GeometryPointCloudData const& data = m_point_cloud.get_data();
    if (raytrace_ctx.test_mode == GeometryRaytraceCtx::TEST_EXACT) {
        trace_primitive<ExactTriangle>(query, *m_topology, data);
    } else {
        trace_primitive<TolerantTriangle>(query, *m_topology, data);
    }
}
