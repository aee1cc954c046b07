#include <tools/qzpoly/verify/verify_origins.h>

#include <tools/qzpoly/models/blocks.h>
#include <tools/qzpoly/terminal/random.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using Wide = GMathVec3<double>;

// How many triangles are looked at in search of origins, and how many origins are tried.
constexpr double work_limit = 1e7;
constexpr double most_tries = 4096;
constexpr double fewest_tries = 64;
constexpr double least_distance = 1e-4;  // from the surface, relative to its size

// Signed, of a triangle seen from the point that its corners are relative to.
//
// A. van Oosterom, J. Strackee, "The solid angle of a plane triangle", IEEE Transactions on
// Biomedical Engineering 30(2), 1983.
double compute_solid_angle(Wide const& a, Wide const& b, Wide const& c) {
    double const la = gmath_length(a);
    double const lb = gmath_length(b);
    double const lc = gmath_length(c);
    double const volume = gmath_dot(a, gmath_cross(b, c));
    double const rest =
        la * lb * lc + gmath_dot(a, b) * lc + gmath_dot(b, c) * la + gmath_dot(c, a) * lb;
    return 2 * std::atan2(volume, rest);
}

double compute_distance_to_edge(Wide const& point, Wide const& a, Wide const& b) {
    Wide const along = b - a;
    double const square = gmath_dot(along, along);
    double const f = square > 0 ? std::clamp(gmath_dot(point - a, along) / square, 0.0, 1.0) : 0.0;
    return gmath_length(point - (a + along * f));
}

// In the box, or not far above or below the surface.
Wide choose_point(ToolVerifyStage const& stage, ToolVerifySurface const& surface,
                  GeometryPositionArray const& positions, ToolRandom& random) {
    GMathBbox3<double> const& box = stage.get_bbox();
    if (random.get_number() < 0.5) {
        double const x = random.get_number(box.minimum.x, box.maximum.x);
        double const y = random.get_number(box.minimum.y, box.maximum.y);
        return {x, y, random.get_number(box.minimum.z, box.maximum.z)};
    }
    Wide corners[3];
    fetch_corners(positions, surface.triangles[random.get_index(surface.triangles.size())],
                  corners);
    Wide const middle = (corners[0] + corners[1] + corners[2]) / 3.0;
    Wide const normal = gmath_unit(gmath_cross(corners[1] - corners[0], corners[2] - corners[0]));
    double const f = random.get_number(-1, 1);
    return middle + normal * (stage.get_size() * 0.5 * f * f * f);
}

// False for a point too near to the surface.
bool try_origin(ToolVerifyStage const& stage, ToolVerifySurface const& surface, ToolRandom& random,
                ToolVerifyOrigin& origin) {
    origin.time = stage.get_place().is_moving ? random.get_number(-0.5, 0.5) : 0.0;
    GeometryPositionArray const positions = stage.get_positions(origin.time);
    origin.point = GMathVec3<float>(choose_point(stage, surface, positions, random));
    Wide const point(origin.point);
    double const margin = stage.get_size() * least_distance;
    double angle = 0;
    for (ToolTriangle const& triangle : surface.triangles) {
        Wide corners[3];
        fetch_corners(positions, triangle, corners);
        if (compute_distance(point, corners) < margin) {
            return false;
        }
        angle += compute_solid_angle(corners[0] - point, corners[1] - point, corners[2] - point);
    }
    origin.winding = static_cast<int>(std::lround(angle / (4 * std::numbers::pi)));
    return true;
}

}  // namespace

void fetch_corners(GeometryPositionArray const& positions, ToolTriangle const& triangle,
                   GMathVec3<double> (&corners)[3]) {
    for (unsigned int k = 0; k < 3; ++k) {
        corners[k] = Wide(positions[triangle.vertices[k]]);
    }
}

double compute_distance(GMathVec3<double> const& point, GMathVec3<double> const (&corners)[3]) {
    Wide const normal = gmath_cross(corners[1] - corners[0], corners[2] - corners[0]);
    bool is_above = true;
    double distance = 1e300;
    for (unsigned int k = 0; k < 3; ++k) {
        Wide const& a = corners[k];
        Wide const& b = corners[(k + 1) % 3];
        is_above &= gmath_dot(gmath_cross(b - a, point - a), normal) >= 0;
        distance = std::min(distance, compute_distance_to_edge(point, a, b));
    }
    double const length = gmath_length(normal);
    return is_above && length > 0 ? std::abs(gmath_dot(point - corners[0], normal)) / length
                                  : distance;
}

bool find_origins(ToolVerifyStage const& stage, ToolVerifySurface const& surface,
                  unsigned long long const& seed, unsigned int const& thread_count,
                  AppProgressBar& progress, std::vector<ToolVerifyOrigin>& inside,
                  std::vector<ToolVerifyOrigin>& outside) {
    double const wanted = work_limit / static_cast<double>(surface.triangles.size());
    std::vector<ToolVerifyOrigin> tried(
        static_cast<std::size_t>(std::clamp(wanted, fewest_tries, most_tries)));
    std::vector<char> is_kept(tried.size());
    bool const is_complete =
        work_in_blocks(static_cast<unsigned int>(tried.size()), thread_count, progress,
                       [&](unsigned int const& i) {
                           ToolRandom random(seed, i);
                           is_kept[i] = try_origin(stage, surface, random, tried[i]) ? 1 : 0;
                       });
    for (std::size_t i = 0; i < tried.size(); ++i) {
        if (is_kept[i] != 0) {
            (tried[i].winding != 0 ? inside : outside).push_back(tried[i]);
        }
    }
    return is_complete;
}
