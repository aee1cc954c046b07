#include <tools/qzpoly/verify/verify_rays.h>

#include <tools/qzpoly/models/blocks.h>
#include <tools/qzpoly/terminal/random.h>

#include <algorithm>
#include <cmath>

namespace {

using Wide = GMathVec3<double>;

constexpr unsigned int block_size = 4000;  // rays
constexpr unsigned int most_tries = 64;    // to find a target on which rays can be told apart
constexpr std::ptrdiff_t most_faults = 4;  // of a kind that are kept

constexpr double float_step = 0x1p-23;       // relative
constexpr double edge_end_share = 0.01;      // of an edge, at either end, that is not aimed at
constexpr double edge_end_steps = 100;       // the same in float steps
constexpr double aim_steps = 8;              // how far from its target a ray arrives
constexpr double least_cosine = 0.01;        // between a ray and the normal of a face
constexpr double least_origin_radius = 1.1;  // in units of the surface's; the largest is 8 times it

enum class TargetKind { FACE, EDGE, VERTEX };

// A ray with what is known of it beforehand.
struct Shot {
    TargetKind kind;
    GeometryRay ray;
    int winding;
    Wide target;
    std::vector<unsigned int> triangles;  // that have the target
};

// A triangle as a ray sees it.
struct Face {
    Wide corners[3];
    double cosine;  // between the ray and the normal; a NaN without an area
};

class Shooter {
  public:
    Shooter(ToolVerifyStage const& stage, ToolVerifySurface const& surface,
            ToolVerifySettings const& settings, ToolHitSearch const& search,
            std::vector<ToolVerifyOrigin> const& inside,
            std::vector<ToolVerifyOrigin> const& outside)
        : m_stage(stage),
          m_surface(surface),
          m_settings(settings),
          m_search(search),
          m_inside(inside),
          m_outside(outside),
          m_center((stage.get_bbox().minimum + stage.get_bbox().maximum) * 0.5),
          m_radius(gmath_length(stage.get_bbox().maximum - stage.get_bbox().minimum) * 0.5) {}

    // Of ten rays, four go to faces, four to edges and two to vertices; from outside and from
    // inside in turns.
    void shoot_block(unsigned int const& block, unsigned int const& count,
                     ToolVerifyResult (&results)[2]) const;

  private:
    ToolVerifyOrigin choose_origin(bool const& is_inside, ToolRandom& random) const;
    bool choose_target(GeometryPositionArray const& positions, Wide const& origin,
                       ToolRandom& random, Shot& shot) const;
    bool make_shot(bool const& is_inside, ToolRandom& random, Shot& shot) const;
    void shoot(CtxEval const& ctx, Shot const& shot, std::vector<unsigned int> const& candidates,
               GeometryRaytraceCtx& rays, ToolVerifyResult& result) const;
    ToolVerifyTally judge(Shot const& shot, CoreArray<GeometryHit> const& hits) const;
    Face get_face(Shot const& shot, unsigned int const& triangle) const;
    bool is_aimed_at(Shot const& shot, Face const& face) const;
    bool arrives(Shot const& shot, CoreArray<GeometryHit> const& hits) const;
    bool is_silhouette(Shot const& shot) const;
    unsigned int count_crossings(Shot const& shot, CoreArray<GeometryHit> const& hits) const;

    ToolVerifyStage const& m_stage;
    ToolVerifySurface const& m_surface;
    ToolVerifySettings const& m_settings;
    ToolHitSearch const& m_search;
    std::vector<ToolVerifyOrigin> const& m_inside;
    std::vector<ToolVerifyOrigin> const& m_outside;
    Wide m_center;
    double m_radius;
};

// Between floats of this size.
double get_float_step(double const& value) { return std::ldexp(1.0, std::ilogb(value) - 23); }

// Keeps the first few of each kind.
void add_fault(ToolVerifyFault const& fault, ToolVerifyResult& result) {
    auto const count =
        std::count_if(result.faults.begin(), result.faults.end(),
                      [&](ToolVerifyFault const& f) { return f.is_miss == fault.is_miss; });
    if (count < most_faults) {
        result.faults.push_back(fault);
    }
}

Wide choose_in_triangle(Wide const (&corners)[3], ToolRandom& random) {
    double u = random.get_number();
    double v = random.get_number();
    if (u + v > 1) {
        u = 1 - u;
        v = 1 - v;
    }
    return corners[0] + (corners[1] - corners[0]) * u + (corners[2] - corners[0]) * v;
}

ToolVerifyOrigin Shooter::choose_origin(bool const& is_inside, ToolRandom& random) const {
    std::vector<ToolVerifyOrigin> const& found = is_inside ? m_inside : m_outside;
    if (!found.empty() && (is_inside || random.get_number() < 0.5)) {
        return found[random.get_index(found.size())];
    }
    double const f = random.get_number();
    double const radius = m_radius * least_origin_radius * (1 + 7 * f * f);
    return {GMathVec3<float>(m_center + random.get_direction() * radius),
            m_stage.get_place().is_moving ? random.get_number(-0.5, 0.5) : 0.0, 0};
}

// False for one that is too small.
bool Shooter::choose_target(GeometryPositionArray const& positions, Wide const& origin,
                            ToolRandom& random, Shot& shot) const {
    if (shot.kind == TargetKind::EDGE) {
        ToolSharedEdge const& edge = m_surface.edges[random.get_index(m_surface.edges.size())];
        Wide const a(positions[edge.vertices[0]]);
        Wide const b(positions[edge.vertices[1]]);
        double const reach =
            std::max({m_stage.get_reach(), gmath_length(a - origin), gmath_length(b - origin)});
        double const margin =
            std::max(edge_end_share, edge_end_steps * get_float_step(reach) / gmath_length(b - a));
        shot.target = a + (b - a) * random.get_number(margin, 1 - margin);
        shot.triangles.assign(edge.triangles, edge.triangles + 2);
        return margin < 0.5;
    }
    unsigned int const number = random.get_index(m_surface.triangles.size());
    ToolTriangle const& triangle = m_surface.triangles[number];
    if (shot.kind == TargetKind::VERTEX) {
        unsigned int const vertex = triangle.vertices[random.get_index(3)];
        shot.target = Wide(positions[vertex]);
        auto const fan = m_surface.get_fan(vertex);
        shot.triangles.assign(fan.begin(), fan.end());
        return true;
    }
    Wide corners[3];
    fetch_corners(positions, triangle, corners);
    shot.target = choose_in_triangle(corners, random);
    shot.triangles.assign(1, number);
    return true;
}

// False for a target at triangles without an area, or on an edge that is too short.
bool Shooter::make_shot(bool const& is_inside, ToolRandom& random, Shot& shot) const {
    ToolVerifyOrigin const origin = choose_origin(is_inside, random);
    Wide const from(origin.point);
    if (!choose_target(m_stage.get_positions(origin.time), from, random, shot)) {
        return false;
    }
    // What is shot is what floats hold.
    GMathVec3<float> const direction(gmath_unit(shot.target - from));
    shot.ray.ray = GMathBasicRay(from, Wide(direction));
    shot.ray.time = origin.time;
    shot.winding = origin.winding;
    return std::none_of(shot.triangles.begin(), shot.triangles.end(), [&](unsigned int const& i) {
        return std::isnan(get_face(shot, i).cosine);
    });
}

Face Shooter::get_face(Shot const& shot, unsigned int const& triangle) const {
    Face face;
    fetch_corners(m_stage.get_positions(shot.ray.time), m_surface.triangles[triangle],
                  face.corners);
    Wide const normal =
        gmath_cross(face.corners[1] - face.corners[0], face.corners[2] - face.corners[0]);
    face.cosine = gmath_dot(shot.ray.ray.get_direction(), normal) / gmath_length(normal);
    return face;
}

// Whether the ray's own rounding may take it there, or that of the test: either moves the ray
// sideways. At a low angle that is far along a face, but not so far as to be another place.
bool Shooter::is_aimed_at(Shot const& shot, Face const& face) const {
    Wide const direction = shot.ray.ray.get_direction();
    double const leeway =
        aim_steps * float_step * gmath_length(shot.target - shot.ray.ray.get_origin());
    if (compute_distance(shot.target, face.corners) * least_cosine > leeway) {
        return false;
    }
    Wide seen[3];  // as they lie beside the ray, at the distance of its target
    for (unsigned int k = 0; k < 3; ++k) {
        Wide const& corner = face.corners[k];
        seen[k] = corner - direction * (gmath_dot(corner - shot.target, direction) /
                                        gmath_dot(direction, direction));
    }
    return compute_distance(shot.target, seen) <= leeway;
}

// Whether something is hit where the ray was aimed: a triangle that has the target, or a neighbour
// where floats cannot tell one from the other.
bool Shooter::arrives(Shot const& shot, CoreArray<GeometryHit> const& hits) const {
    return std::any_of(hits.begin(), hits.end(), [&](GeometryHit const& hit) {
        unsigned int const* const first = &m_surface.first_triangles[hit.primitive_index];
        for (unsigned int i = first[0]; i < first[1]; ++i) {
            if (is_aimed_at(shot, get_face(shot, i))) {
                return true;
            }
        }
        return false;
    });
}

// Whether the triangles that the ray was aimed at turn different sides to it, or an edge.
bool Shooter::is_silhouette(Shot const& shot) const {
    bool is_front_seen = false;
    bool is_back_seen = false;
    bool is_edge_seen = false;
    for (unsigned int const& triangle : shot.triangles) {
        for (unsigned int const& vertex : m_surface.triangles[triangle].vertices) {
            for (unsigned int const& neighbour : m_surface.get_fan(vertex)) {
                Face const face = get_face(shot, neighbour);
                if (!std::isnan(face.cosine) && is_aimed_at(shot, face)) {
                    is_front_seen |= face.cosine < 0;
                    is_back_seen |= face.cosine > 0;
                    is_edge_seen |= std::abs(face.cosine) <= least_cosine;
                }
            }
        }
    }
    return is_edge_seen || (is_front_seen && is_back_seen);
}

// Hits at equal distance count once. Those are the hits of neighbours that turn the same side to
// the ray: such lie on either side of their edge as the ray sees it, so that it must be the edge
// what it hits. Rounding gives them different distances.
unsigned int Shooter::count_crossings(Shot const& shot, CoreArray<GeometryHit> const& hits) const {
    struct Crossing {
        ToolTriangle const* triangle;
        bool is_front;
    };
    std::vector<Crossing> crossings;
    for (GeometryHit const& hit : hits) {
        // The second half of a quad is where t is larger.
        unsigned int const* const first = &m_surface.first_triangles[hit.primitive_index];
        unsigned int const number = hit.t > hit.s ? first[1] - 1 : first[0];
        Crossing const crossing = {&m_surface.triangles[number], get_face(shot, number).cosine < 0};
        if (std::none_of(crossings.begin(), crossings.end(), [&](Crossing const& other) {
                return other.is_front == crossing.is_front &&
                       m_surface.are_neighbours(*other.triangle, *crossing.triangle);
            })) {
            crossings.push_back(crossing);
        }
    }
    return static_cast<unsigned int>(crossings.size());
}

ToolVerifyTally Shooter::judge(Shot const& shot, CoreArray<GeometryHit> const& hits) const {
    ToolVerifyTally tally;
    tally.rays = 1;
    if (shot.winding != 0) {
        tally.misses += hits.is_empty() ? 1 : 0;
    } else if (!arrives(shot, hits)) {
        ++(is_silhouette(shot) ? tally.silhouettes : tally.misses);
    }
    if (shot.kind == TargetKind::FACE) {
        bool const is_odd = (count_crossings(shot, hits) & 1) != 0;
        bool const must_be_odd = (shot.winding & 1) != 0;
        tally.parity_faults += is_odd != must_be_odd ? 1 : 0;
    }
    return tally;
}

void Shooter::shoot(CtxEval const& ctx, Shot const& shot,
                    std::vector<unsigned int> const& candidates, GeometryRaytraceCtx& rays,
                    ToolVerifyResult& result) const {
    PolyMesh const& mesh = m_stage.get_mesh();
    rays.all_hits.resize(0);
    for (unsigned int const& primitive : candidates) {
        mesh.intersect_primitive(ctx, primitive, rays);
    }
    ToolVerifyTally tally = judge(shot, rays.all_hits);
    bool const is_counted = shot.kind != TargetKind::VERTEX;
    if (is_counted && tally.has_faults() && m_stage.is_bar(rays.test_mode)) {
        // Where none is expected, a fault must not be one of the search.
        rays.all_hits.resize(0);
        for (unsigned int primitive = 0; primitive < mesh.get_primitive_count(); ++primitive) {
            mesh.intersect_primitive(ctx, primitive, rays);
        }
        tally = judge(shot, rays.all_hits);
    }
    (shot.kind == TargetKind::FACE   ? result.faces
     : shot.kind == TargetKind::EDGE ? result.edges
                                     : result.vertices) += tally;
    if (is_counted && tally.has_faults()) {
        add_fault({tally.misses != 0, shot.ray, shot.target}, result);
    }
}

void Shooter::shoot_block(unsigned int const& block, unsigned int const& count,
                          ToolVerifyResult (&results)[2]) const {
    ToolRandom random(m_settings.seed, block);
    CtxEval const ctx(&m_stage.get_shader_ctx());
    Shot shot;
    GeometryRaytraceCtx rays(&shot.ray, nullptr, 1);
    rays.keep_mode = GeometryRaytraceCtx::KEEP_ALL;
    rays.is_motion_blurred = m_stage.get_place().is_moving;
    std::vector<unsigned int> candidates;
    for (unsigned int i = 0; i < count; ++i) {
        unsigned int const row = i % 10;
        shot.kind = row < 4 ? TargetKind::FACE : row < 8 ? TargetKind::EDGE : TargetKind::VERTEX;
        bool const is_inside = row % 2 != 0 && !m_inside.empty();
        unsigned int tries = 0;
        while (tries < most_tries && !make_shot(is_inside, random, shot)) {
            ++tries;
        }
        if (tries == most_tries) {
            continue;
        }
        m_search.list_candidates(shot.ray, candidates);
        for (GeometryRaytraceCtx::TestMode const mode :
             {GeometryRaytraceCtx::TEST_TOLERANT, GeometryRaytraceCtx::TEST_EXACT}) {
            rays.test_mode = mode;
            shoot(ctx, shot, candidates, rays, results[mode]);
        }
    }
}

}  // namespace

ToolVerifyTally& ToolVerifyTally::operator+=(ToolVerifyTally const& other) {
    rays += other.rays;
    misses += other.misses;
    silhouettes += other.silhouettes;
    parity_faults += other.parity_faults;
    return *this;
}

bool shoot_rays(ToolVerifyStage const& stage, ToolVerifySurface const& surface,
                ToolVerifySettings const& settings, ToolHitSearch const& search,
                std::vector<ToolVerifyOrigin> const& inside,
                std::vector<ToolVerifyOrigin> const& outside, AppProgressBar& progress,
                ToolVerifyResult (&results)[2]) {
    Shooter const shooter(stage, surface, settings, search, inside, outside);
    struct BlockResults {
        ToolVerifyResult by_test[2];
    };
    // Of ten rays, eight count.
    unsigned long long const all = settings.ray_count + (settings.ray_count + 3) / 4;
    std::vector<BlockResults> blocks(static_cast<std::size_t>((all + block_size - 1) / block_size));
    bool const is_complete = work_in_blocks(
        static_cast<unsigned int>(blocks.size()), settings.thread_count, progress,
        [&](unsigned int const& block) {
            unsigned long long const left = all - 1ull * block * block_size;
            shooter.shoot_block(block, static_cast<unsigned int>(std::min(left, 1ull * block_size)),
                                blocks[block].by_test);
        });
    for (BlockResults const& block : blocks) {
        for (unsigned int test = 0; test < 2; ++test) {
            results[test].faces += block.by_test[test].faces;
            results[test].edges += block.by_test[test].edges;
            results[test].vertices += block.by_test[test].vertices;
            for (ToolVerifyFault const& fault : block.by_test[test].faults) {
                add_fault(fault, results[test]);
            }
        }
    }
    return is_complete;
}
