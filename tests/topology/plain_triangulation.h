#pragma once

#include <platform/qz_gmath.h>

#include <cmath>
#include <tuple>
#include <vector>

// The definition of triangulate_polygon, written as plainly as can be: every sum term by term,
// every scan over all remaining corners, nothing remembered from one corner to the next.
namespace plain {

using Vec = GMathVec3<double>;
using Points = std::vector<GMathVec2<float>>;

inline double dot(Vec const& a, Vec const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

inline Vec cross(Vec const& a, Vec const& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline Vec normalise(Vec const& a) {
    double const length = std::sqrt(dot(a, a));
    return length > 1e-8 ? a * (1.0 / length) : Vec(0.0, 0.0, 0.0);
}

inline void project(std::vector<GMathVec3<float>> const& corners, Points& points) {
    GMathVec3<float> const p0 = corners[0];
    Vec sum(0.0, 0.0, 0.0);
    for (std::size_t k = 2; k < corners.size(); ++k) {
        sum = sum + cross(Vec(corners[k - 1] - p0), Vec(corners[k] - p0));
    }
    Vec const n = normalise(sum);
    Vec u = normalise(Vec(corners[1] - p0));
    for (std::size_t k = 2; k < corners.size() && dot(u, n) > 0.9999; ++k) {
        u = normalise(Vec(corners[k] - p0));
    }
    Vec const b = cross(n, u);
    Vec const t = normalise(cross(b, n));
    double const length = std::sqrt(dot(b, b));
    double const inverse = length > 1e-8 ? 1.0 / length : 0.0;
    points.clear();
    for (GMathVec3<float> const& corner : corners) {
        Vec const d = Vec(corner) - Vec(p0);
        points.emplace_back(static_cast<float>(dot(d, t)), static_cast<float>(dot(d, b) * inverse));
    }
}

inline bool is_inside(GMathVec2<float> const& p, GMathVec2<float> const& a,
                      GMathVec2<float> const& b) {
    return (p.y - a.y) * (b.x - a.x) - (p.x - a.x) * (b.y - a.y) >= 0.0f;
}

inline bool is_ear(Points const& points, std::vector<unsigned int> const& remaining,
                   std::vector<unsigned int> const& indices, unsigned int const (&ear)[3]) {
    auto const [a, b, c] = std::tie(points[ear[0]], points[ear[1]], points[ear[2]]);
    if (b.x * (a.y - c.y) + a.x * (c.y - b.y) + c.x * (b.y - a.y) >= 0.0f) {
        return false;
    }
    for (unsigned int const r : remaining) {
        bool const is_own = indices[r] == indices[ear[0]] || indices[r] == indices[ear[1]] ||
                            indices[r] == indices[ear[2]];
        GMathVec2<float> const p = points[r];
        if (!is_own && is_inside(p, a, b) && is_inside(p, b, c) && is_inside(p, c, a)) {
            return false;
        }
    }
    return true;
}

// What a call fills; kept from call to call, it is not allocated anew.
struct Triangulation {
    std::vector<GMathVec3<float>> corners;
    std::vector<unsigned int> remaining;
    Points points;
    std::vector<unsigned int> out;  // the corner numbers that triangulate_polygon writes
};

inline void triangulate(std::vector<GMathVec3<float>> const& positions,
                        std::vector<unsigned int> const& indices, Triangulation& result) {
    auto& [corners, remaining, points, out] = result;
    corners.clear();
    remaining.clear();
    out.clear();
    for (unsigned int const index : indices) {
        corners.push_back(positions[index]);
        remaining.push_back(static_cast<unsigned int>(remaining.size()));
    }
    if (remaining.size() < 4) {
        out = remaining.size() == 3 ? remaining : out;
        return;
    }
    project(corners, points);
    std::size_t m = remaining.size(), previous = 0, current = 1, next = 2, failures = 0;
    while (m > 2 && failures < m) {
        unsigned int const ear[3] = {remaining[previous], remaining[current], remaining[next]};
        if (is_ear(points, remaining, indices, ear)) {
            out.insert(out.end(), ear, ear + 3);
            remaining.erase(remaining.begin() + static_cast<std::ptrdiff_t>(current));
            --m;
            current = (current + 2) % m;
            previous = (current + m - 1) % m;
            next = (current + 1) % m;
            failures = 0;
        } else {
            previous = current;
            current = next;
            next = (next + 1) % m;
            ++failures;
        }
    }
}

inline std::vector<unsigned int> triangulate(std::vector<GMathVec3<float>> const& positions,
                                             std::vector<unsigned int> const& indices) {
    Triangulation result;
    triangulate(positions, indices, result);
    return result.out;
}

}  // namespace plain
