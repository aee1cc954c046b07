#include <poly/mesh/poly_mesh.h>
#include <poly/render/surface_weights.h>
#include <poly/render/triangle_tests.h>
#include <poly/render/vertex_fetch.h>

#include <type_traits>

namespace {

struct RayQuery {
    CtxEval const& ctx;
    GeometryRaytraceCtx& rays;
    unsigned int primitive;
};

// What a mesh tells of the medium behind its surface: nothing.
constexpr GeometryMediumDescriptor no_medium;

// A triangle among those of `surface_triangles`, ready for one kind of test.
template <typename Test, unsigned int number>
struct NumberedTriangle {
    explicit NumberedTriangle(GMathVec3<float> const* corners)
        : test(corners[surface_triangles[number].corners[0]],
               corners[surface_triangles[number].corners[1]],
               corners[surface_triangles[number].corners[2]]) {}

    template <bool is_moving>
    void trace(RayQuery const& query, unsigned int const& ray) const {
        GMathBasicRay const& basic_ray = query.rays.get_basic_ray(ray);
        TriangleHit hit;
        if (test.intersect(GMathVec3<float>(basic_ray.get_origin()),
                           GMathVec3<float>(basic_ray.get_direction()), hit)) {
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

// Rays `first` to `last`, both included. Both halves of a quad are always tested, and each pushes
// its own hit.
template <typename Test, bool is_quad, bool is_moving>
void trace_rays(RayQuery const& query, GMathVec3<float> const* corners, int const& first,
                int const& last) {
    if constexpr (is_quad) {
        NumberedTriangle<Test, 1> const first_half(corners);
        NumberedTriangle<Test, 2> const second_half(corners);
        for (int ray = first; ray <= last; ++ray) {
            first_half.template trace<is_moving>(query, static_cast<unsigned int>(ray));
            second_half.template trace<is_moving>(query, static_cast<unsigned int>(ray));
        }
    } else {
        NumberedTriangle<Test, 0> const triangle(corners);
        for (int ray = first; ray <= last; ++ray) {
            triangle.template trace<is_moving>(query, static_cast<unsigned int>(ray));
        }
    }
}

template <typename Test, bool is_quad>
void trace_at_rest(RayQuery const& query, GeometryPointCloudData const& data,
                   unsigned int const* vertices) {
    GMathVec3<float> corners[4];
    fetch_positions(data.positions, vertices, is_quad ? 4 : 3, corners);
    int const first = query.rays.get_first_active();
    int const last = query.rays.get_last_active();
    trace_rays<Test, is_quad, false>(query, corners, first, last);
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
        trace_rays<Test, is_quad, true>(query, corners, ray, ray);
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
