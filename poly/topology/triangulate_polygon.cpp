#include <poly/topology/triangulate_polygon.h>

#include <cmath>
#include <vector>

#include <platform/qz_gmath.h>

// The definition that triangulate_polygon is measured against: each sum term by term, each scan
// over every remaining corner, nothing remembered. Same arguments and result.
namespace plain {

struct Vec {
    double x, y, z;
};

struct Point {
    float x, y;
};

inline double dot(Vec const& a, Vec const& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

inline Vec cross(Vec const& a, Vec const& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline double inverse_length(Vec const& a) {
    double const length = std::sqrt(dot(a, a));
    return length > 1e-8 ? 1.0 / length : 0.0;
}

inline Vec normalise(Vec const& a) {
    if (!(std::sqrt(dot(a, a)) > 1e-8)) {
        return {0.0, 0.0, 0.0};
    }
    double const inverse = inverse_length(a);
    return {a.x * inverse, a.y * inverse, a.z * inverse};
}

inline Vec float_difference(GMathVec3<float> const& a, GMathVec3<float> const& b) {
    return {static_cast<double>(a.x - b.x), static_cast<double>(a.y - b.y),
            static_cast<double>(a.z - b.z)};
}

inline void project(GMathVec3<float> const* positions, unsigned int const* indices,
                    unsigned int const& count, std::vector<Point>& points) {
    GMathVec3<float> const& p0 = positions[indices[0]];
    Vec n = {0.0, 0.0, 0.0};
    for (unsigned int k = 2; k < count; ++k) {
        Vec const c = cross(float_difference(positions[indices[k - 1]], p0),
                            float_difference(positions[indices[k]], p0));
        n = {n.x + c.x, n.y + c.y, n.z + c.z};
    }
    n = normalise(n);
    Vec u = normalise(float_difference(positions[indices[1]], p0));
    for (unsigned int k = 2; k < count && dot(u, n) > 0.9999; ++k) {
        u = normalise(float_difference(positions[indices[k]], p0));
    }
    Vec const b = cross(n, u);
    double const inverse_b = inverse_length(b);
    Vec const t = normalise(cross(b, n));
    points.resize(count);
    for (unsigned int i = 0; i < count; ++i) {
        GMathVec3<float> const& p = positions[indices[i]];
        Vec const d = {static_cast<double>(p.x) - static_cast<double>(p0.x),
                       static_cast<double>(p.y) - static_cast<double>(p0.y),
                       static_cast<double>(p.z) - static_cast<double>(p0.z)};
        points[i] = {static_cast<float>(dot(d, t)), static_cast<float>(dot(d, b) * inverse_b)};
    }
}

inline bool is_left(Point const& p, Point const& a, Point const& b) {
    return (p.y - a.y) * (b.x - a.x) - (p.x - a.x) * (b.y - a.y) >= 0.0f;
}

inline bool is_ear(std::vector<Point> const& points, std::vector<unsigned int> const& remaining,
                   unsigned int const* indices, unsigned int const& ia, unsigned int const& ib,
                   unsigned int const& ic) {
    Point const a = points[ia];
    Point const b = points[ib];
    Point const c = points[ic];
    if (b.x * (a.y - c.y) + a.x * (c.y - b.y) + c.x * (b.y - a.y) >= 0.0f) {
        return false;
    }
    for (unsigned int const r : remaining) {
        unsigned int const vertex = indices[r];
        if (vertex == indices[ia] || vertex == indices[ib] || vertex == indices[ic]) {
            continue;
        }
        Point const p = points[r];
        if (is_left(p, a, b) && is_left(p, b, c) && is_left(p, c, a)) {
            return false;
        }
    }
    return true;
}

inline unsigned int triangulate(GMathVec3<float> const* positions, unsigned int const* indices,
                                unsigned int const& count, unsigned int* out) {
    if (count < 3) {
        return 0;
    }
    if (count == 3) {
        out[0] = 0;
        out[1] = 1;
        out[2] = 2;
        return 3;
    }
    static thread_local std::vector<Point> points;
    static thread_local std::vector<unsigned int> remaining;
    project(positions, indices, count, points);
    remaining.resize(count);
    for (unsigned int i = 0; i < count; ++i) {
        remaining[i] = i;
    }
    unsigned int m = count;
    unsigned int previous = 0, current = 1, next = 2, failures = 0, written = 0;
    while (m > 2 && failures < m) {
        unsigned int const a = remaining[previous], b = remaining[current], c = remaining[next];
        if (is_ear(points, remaining, indices, a, b, c)) {
            out[written++] = a;
            out[written++] = b;
            out[written++] = c;
            remaining.erase(remaining.begin() + current);
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
    return written;
}

}  // namespace plain
unsigned int triangulate_polygon(GMathVec3<float> const* positions, unsigned int const* indices,
                                 unsigned int const& count, unsigned int* out) {
    return plain::triangulate(positions, indices, count, out);
}
