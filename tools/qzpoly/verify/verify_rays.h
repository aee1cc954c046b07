#pragma once

#include <tools/qzpoly/pictures/hit_search.h>
#include <tools/qzpoly/verify/verify_origins.h>

// What became of rays at one kind of target.
struct ToolVerifyTally {
    unsigned long long rays = 0;
    // From inside: nothing was hit. From outside: nothing was hit where the ray was aimed at,
    // though the triangles there all turn the same side to it.
    unsigned long long misses = 0;
    // The same where triangles turn different sides to the ray or are seen edge on.
    unsigned long long silhouettes = 0;
    // The number of hits is odd where the surface must be crossed an even number of times, or the
    // other way round.
    unsigned long long parity_faults = 0;

    bool has_faults() const { return misses + parity_faults != 0; }
    ToolVerifyTally& operator+=(ToolVerifyTally const& other);
};

// A ray that was missed or crossed the surface the wrong number of times.
struct ToolVerifyFault {
    bool is_miss;  // else one of parity
    GeometryRay ray;
    GMathVec3<double> target;
};

// What one test made of all rays. Parity is judged at faces alone.
struct ToolVerifyResult {
    ToolVerifyTally faces;
    ToolVerifyTally edges;
    ToolVerifyTally vertices;
    std::vector<ToolVerifyFault> faults;  // the first few, but for those at vertices

    unsigned long long get_ray_count() const { return faces.rays + edges.rays; }
    unsigned long long get_miss_count() const { return faces.misses + edges.misses; }
};

struct ToolVerifySettings {
    unsigned long long ray_count = 1000000;  // at faces and edges; a quarter more at vertices
    unsigned long long seed = 1;
    unsigned int thread_count = 1;
};

// Shoots the same rays at a closed surface under both tests: results[TEST_...]. The results do not
// depend on the number of threads. False when `progress` was asked to stop.
bool shoot_rays(ToolVerifyStage const& stage, ToolVerifySurface const& surface,
                ToolVerifySettings const& settings, ToolHitSearch const& search,
                std::vector<ToolVerifyOrigin> const& inside,
                std::vector<ToolVerifyOrigin> const& outside, AppProgressBar& progress,
                ToolVerifyResult (&results)[2]);
