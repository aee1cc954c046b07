#include <poly/render/triangle_tests.h>

#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using Vec = GMathVec3<float>;
using Wide = GMathVec3<double>;

bool meets(bool const& is_exact, Vec const (&p)[3], Vec const& origin, Vec const& direction,
           TriangleHit& hit) {
    return is_exact ? ExactTriangle(p[0], p[1], p[2]).intersect(origin, direction, hit)
                    : TolerantTriangle(p[0], p[1], p[2]).intersect(origin, direction, hit);
}

TEST(TriangleTests, DecideAtEdgesAndOnBothSides) {
    float const e = GMath<float>::s_epsilon;
    Vec const p[3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    struct Case {
        char const* name;
        Vec origin, direction;
        bool is_hit[2];  // tolerant, exact
        float distance;
    };
    for (Case const& c : {
             Case{"front", {0.25f, 0.5f, 2}, {0, 0, -1}, {true, true}, 2},
             {"back", {0.25f, 0.5f, -2}, {0, 0, 4}, {true, true}, 0.5f},
             {"behind", {0.25f, 0.5f, 2}, {0, 0, 1}, {true, true}, -2},
             {"in the plane", {-1, 0.25f, 0}, {1, 0, 0}, {false, false}, 0},
             {"above the plane", {-1, 0.25f, 1}, {1, 0, 0}, {false, false}, 0},
             {"on an edge", {0, 0.5f, 1}, {0, 0, -1}, {true, true}, 1},
             {"on a corner", {0, 1, 1}, {0, 0, -1}, {true, true}, 1},
             {"least u", {-e, 0.5f, 1}, {0, 0, -1}, {true, false}, 1},
             {"less", {-1.5f * e, 0.5f, 1}, {0, 0, -1}, {false, false}, 0},
             {"least v", {0.5f, -e, 1}, {0, 0, -1}, {true, false}, 1},
             {"less", {0.5f, -1.5f * e, 1}, {0, 0, -1}, {false, false}, 0},
             {"largest u + v", {0.5f, 0.5f + e, 1}, {0, 0, -1}, {true, false}, 1},
             {"larger", {0.5f, 0.5f + 2 * e, 1}, {0, 0, -1}, {false, false}, 0},
         }) {
        for (bool const is_exact : {false, true}) {
            SCOPED_TRACE(std::string(c.name) + (is_exact ? ", exact" : ", tolerant"));
            TriangleHit hit{c.origin.x, c.origin.y, c.distance};
            EXPECT_EQ(meets(is_exact, p, c.origin, c.direction, hit), c.is_hit[is_exact]);
            EXPECT_EQ(Vec(hit.u, hit.v, hit.distance), Vec(c.origin.x, c.origin.y, c.distance));
        }
    }
}

struct Random {
    float number() { return std::uniform_real_distribution<float>(-1, 1)(generator); }
    Vec point() {
        float const x = number(), y = number();
        return {x, y, number()};
    }
    std::mt19937 generator;
};

// Away from edges and grazing angles, both tests agree with Cramer's rule in doubles.
TEST(TriangleTests, AgreeWithDoubles) {
    int hit_count = 0;
    for (unsigned int seed = 0; seed < 4000; ++seed) {
        Random random{std::mt19937(seed)};
        Vec const p[3] = {random.point(), random.point(), random.point()};
        Vec const origin = random.point() * 4.0f;
        Vec const direction = (p[0] * random.number() + p[1] * random.number()) - origin;
        Wide const a(p[1] - p[0]), b(p[2] - p[0]), d(direction), from(origin - p[0]);
        double const volume = gmath_dot(gmath_cross(a, b), d);
        double const u = gmath_dot(gmath_cross(from, b), d) / volume;
        double const v = gmath_dot(gmath_cross(a, from), d) / volume;
        double const distance = -gmath_dot(gmath_cross(a, b), from) / volume;
        double const margin = std::min({u, v, 1 - u - v});
        if (std::fabs(volume) < 0.1 || std::fabs(margin) < 1e-3) {
            continue;
        }
        hit_count += margin > 0;
        for (bool const is_exact : {false, true}) {
            TriangleHit hit{float(u), float(v), float(distance)};
            EXPECT_EQ(meets(is_exact, p, origin, direction, hit), margin > 0) << seed;
            double const error =
                std::fabs(hit.u - u) + std::fabs(hit.v - v) + std::fabs(hit.distance - distance);
            EXPECT_LT(error, 1e-3) << seed;
        }
    }
    EXPECT_GT(hit_count, 300);
}

// A ray at the edge between two triangles never slips through.
TEST(TriangleTests, ExactLeavesNoGapBetweenNeighbours) {
    for (unsigned int seed = 0; seed < 20000; ++seed) {
        Random random{std::mt19937(seed)};
        Vec const a = random.point(), b = random.point();
        Vec const aside(b.y - a.y, a.x - b.x, 0);
        Vec const origin(random.number(), random.number(), 8);
        Vec const direction = (a + (b - a) * (0.5f + 0.49f * random.number())) - origin;
        TriangleHit hit;
        EXPECT_TRUE(meets(true, {a, b, a + aside}, origin, direction, hit) ||
                    meets(true, {b, a, b - aside}, origin, direction, hit))
            << seed;
    }
}

// Hits on primitive 0 of four rays down from z = 4, at the times 0 to 3.
CoreArray<GeometryHit> trace(PolyMesh const& mesh, GMathVec2<double> const& place,
                             bool const& is_exact, bool const& is_motion_blurred, int const& first,
                             int const& last) {
    GeometryRay rays[4];
    for (unsigned int i = 0; i < 4; ++i) {
        rays[i].ray = GMathBasicRay({place.x, place.y, 4}, {0, 0, -1});
        rays[i].time = i;
    }
    GeometryRaytraceCtx ctx(rays, nullptr, 4);
    ctx.test_mode = is_exact ? GeometryRaytraceCtx::TEST_EXACT : GeometryRaytraceCtx::TEST_TOLERANT;
    ctx.keep_mode = GeometryRaytraceCtx::KEEP_ALL;
    ctx.is_motion_blurred = is_motion_blurred;
    ctx.set_active_range(first, last);
    mesh.intersect_primitive(CtxEval(), 0, ctx);
    return ctx.all_hits;
}

TEST(RayIntersection, PushesHitsOfActiveRays) {
    for (Shape shape : {make_triangle(), make_square()}) {
        shape.velocities.assign(shape.positions.size(), {0, 0, 1});
        PolyMesh mesh;
        shape.set(mesh);
        bool const is_quad = shape.positions.size() == 4;
        for (unsigned int const mode : {0u, 1u, 2u, 3u}) {
            bool const is_exact = (mode & 1) != 0, is_blurred = (mode & 2) != 0;
            SCOPED_TRACE(testing::Message() << is_quad << is_exact << is_blurred);
            EXPECT_TRUE(trace(mesh, {0.5, 0.25}, is_exact, is_blurred, 2, 1).is_empty());
            // In the first half of a quad, in the second, and on the diagonal: in both.
            for (GMathVec2<double> const& at : {GMathVec2{0.5, 0.25}, {0.25, 0.5}, {0.5, 0.5}}) {
                auto const hits = trace(mesh, at, is_exact, is_blurred, 1, 2);
                unsigned int const per_ray = is_quad && at.x == at.y ? 2 : 1;
                ASSERT_EQ(hits.get_count(), 2 * per_ray);
                for (unsigned int i = 0; i < hits.get_count(); ++i) {
                    EXPECT_EQ(hits[i].ray_index, 1 + i / per_ray);
                    EXPECT_EQ(Wide(hits[i].s, hits[i].t, 0), Wide(at.x, at.y, 0));
                    EXPECT_EQ(hits[i].distance, is_blurred ? 4.0 - hits[i].ray_index : 4.0);
                }
            }
        }
    }
}

// Packets of rays push the hits, bit for bit and in the order, that their rays push alone.
TEST(RayIntersection, PacketsMeetWhatTheirRaysMeet) {
    unsigned int hit_count = 0;
    for (unsigned int seed = 0; seed < 4000; ++seed) {
        Random random{std::mt19937(seed)};
        Shape shape = seed % 2 == 0 ? make_triangle() : make_square();
        for (Vec& position : shape.positions) {
            position = seed % 16 < 2 ? Vec(1, 0, 0) * random.number() : random.point();
        }
        shape.check_quads = false;
        PolyMesh mesh;
        shape.set(mesh);
        std::vector<GeometryRay> rays(8);
        for (GeometryRay& ray :
             rays) {  // at places around the primitive, its corners and its edges
            Vec const target = shape.positions[0] * random.number() +
                               shape.positions[1 + seed / 8 % 2] * (seed % 8 < 4 ? 0.5f : 0.0f);
            Wide const origin(random.point() * 4.0f);
            ray.ray = GMathBasicRay(origin, Wide(target) - origin);
        }
        auto const trace = [&](int const& first, int const& last, CoreArray<GeometryHit>& hits) {
            GeometryRaytraceCtx ctx(rays.data(), nullptr, 8);
            ctx.test_mode = seed % 4 < 2 ? ctx.TEST_EXACT : ctx.TEST_TOLERANT;
            ctx.keep_mode = GeometryRaytraceCtx::KEEP_ALL;
            ctx.set_active_range(first, last);
            mesh.intersect_primitive(CtxEval(), 0, ctx);
            for (GeometryHit const& hit : ctx.all_hits) {
                hits.append(hit);
            }
        };
        int const first = static_cast<int>(seed / 4 % 8);
        int const last = first + static_cast<int>(seed / 32) % (8 - first);
        CoreArray<GeometryHit> together, alone;
        trace(first, last, together);
        for (int ray = first; ray <= last; ++ray) {
            trace(ray, ray, alone);
        }
        ASSERT_EQ(together.get_count(), alone.get_count()) << seed;
        for (unsigned int i = 0; i < alone.get_count(); ++i) {
            GeometryHit const &a = together[i], &b = alone[i];
            EXPECT_TRUE(a.ray_index == b.ray_index && a.s == b.s && a.t == b.t &&
                        a.distance == b.distance)
                << seed;
        }
        hit_count += alone.get_count();
    }
    EXPECT_GT(hit_count, 2000u);
}

}  // namespace
