#include <tools/qzpoly/check/mesh_faults.h>
#include <tools/qzpoly/models/polygon_cuts.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using Vec3 = GMathVec3<double>;

constexpr double largest_bend = 0.01;  // of a corner off the plane, to the size of the polygon
// What rounding to float does to a coordinate, twice over.
constexpr double rounding = 2 * std::numeric_limits<float>::epsilon();

// What the corners of a polygon say of its plane.
struct Plane {
    Vec3 center{0, 0, 0};
    Vec3 area{0, 0, 0};  // times the normal
    double size = 0;     // of the polygon: the diagonal of its box
    double reach = 0;    // the largest coordinate
    bool is_finite = true;
};

Plane find_plane(ToolPolygons const& polygons, unsigned int const& polygon) {
    unsigned int const begin = polygons.offsets[polygon];
    unsigned int const count = polygons.counts[polygon];
    auto const get_position = [&](unsigned int const& i) {
        return Vec3(polygons.positions[polygons.vertices[begin + i]]);
    };
    Plane plane;
    GMathBbox3<double> box = GMathBbox3<double>::get_inverted();
    for (unsigned int i = 0; i < count; ++i) {
        Vec3 const p = get_position(i);
        plane.is_finite =
            plane.is_finite && std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
        plane.center += p / count;
        plane.reach = std::max({plane.reach, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
        box.extend(p);
    }
    plane.size = gmath_length(box.maximum - box.minimum);
    for (unsigned int i = 0; i < count; ++i) {
        Vec3 const a = get_position(i) - plane.center;
        Vec3 const b = get_position(i + 1 == count ? 0 : i + 1) - plane.center;
        plane.area += gmath_cross(a, b) * 0.5;
    }
    return plane;
}

// No area beyond what the rounding of coordinates makes.
bool is_flat(Plane const& plane) {
    return gmath_length(plane.area) <= plane.size * plane.reach * rounding;
}

bool is_bent(ToolPolygons const& polygons, unsigned int const& polygon, Plane const& plane) {
    Vec3 const normal = gmath_unit(plane.area);
    double const limit = plane.size * largest_bend + plane.reach * rounding;
    for (unsigned int i = polygons.offsets[polygon]; i < polygons.offsets[polygon + 1]; ++i) {
        Vec3 const p(polygons.positions[polygons.vertices[i]]);
        if (std::fabs(gmath_dot(p - plane.center, normal)) > limit) {
            return true;
        }
    }
    return false;
}

}  // namespace

void find_polygon_faults(PolyMesh const& mesh, ToolPolygons const& polygons,
                         ToolFaultCollector& collector) {
    std::vector<unsigned int> const missing = count_missing_triangles(mesh);
    // The last polygon that had each vertex.
    std::vector<unsigned int> seen(polygons.positions.get_count(), ToolFaultPlace::none);
    for (unsigned int polygon = 0; polygon < missing.size(); ++polygon) {
        ToolFaultPlace const place{.polygon = polygon};
        if (missing[polygon] != 0) {
            collector.add(ToolFaultKind::UNCUT_POLYGON, place);
        }
        bool is_repeated = false;
        for (unsigned int i = polygons.offsets[polygon]; i < polygons.offsets[polygon + 1]; ++i) {
            is_repeated = is_repeated || seen[polygons.vertices[i]] == polygon;
            seen[polygons.vertices[i]] = polygon;
        }
        if (is_repeated) {
            collector.add(ToolFaultKind::REPEATED_VERTEX, place);
        }
        Plane const plane = find_plane(polygons, polygon);
        if (!plane.is_finite) {
            continue;  // a fault of its vertices
        }
        if (is_flat(plane)) {
            collector.add(ToolFaultKind::ZERO_AREA, place);
        } else if (polygons.counts[polygon] > 3 && is_bent(polygons, polygon, plane)) {
            collector.add(ToolFaultKind::NON_PLANAR, place);
        }
    }
}
