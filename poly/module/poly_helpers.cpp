#include <poly/module/poly_helpers.h>

#include <poly/mesh/primitive_building.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace {

// Deliberate: cut after 12 decimals.
constexpr double pi = 3.141592653589;
constexpr double two_pi = 6.283185307178;

// A triangle or quad of the sphere, by its corners' numbers.
void add_polygon(CoreArray<unsigned int>& indices, std::initializer_list<unsigned int> corners) {
    for (unsigned int const corner : corners) {
        indices.append(corner);
    }
}

struct Sphere {
    unsigned int segments;
    unsigned int rings;
    GMathVec3<double> radii;

    unsigned int get_corner_count() const { return 6 * segments + 4 * segments * (rings - 2); }
    // Whether the triangles, 2 * segments * (rings - 1) of them, can be built.
    bool is_buildable() const {
        unsigned long long const corners_of_ring = 6ull * segments;
        return rings - 1 <= largest_cut_corner_count / corners_of_ring;
    }
    unsigned int get_next(unsigned int const& segment) const {
        return segment + 1 == segments ? 0 : segment + 1;
    }
    // The first vertex of a ring, 1 to rings - 1.
    unsigned int get_ring_vertex(unsigned int const& ring) const {
        return 1 + (ring - 1) * segments;
    }
    // The first uv value of a ring, which has one more than segments, and of the north row.
    unsigned int get_ring_uv(unsigned int const& ring) const {
        return segments + (ring - 1) * (segments + 1);
    }

    void add_vertex(GMathVec3<float> const& d, CoreArray<GMathVec3<float>>& positions,
                    CoreArray<GMathVec3<float>>& normals) const;
    void add_vertices(CoreArray<GMathVec3<float>>& positions,
                      CoreArray<GMathVec3<float>>& normals) const;
    void add_polygons(CoreArray<unsigned int>& indices, CoreArray<unsigned int>& counts) const;
    void add_uv_values(CoreArray<GMathVec3<float>>& values) const;
    void add_uv_row(double const& v, CoreArray<GMathVec3<float>>& values) const;
    void add_uv_indices(CoreArray<unsigned int>& indices) const;
};

// `d` is a unit direction. The normal of an ellipsoid there is d divided by the radii, here times
// their product.
void Sphere::add_vertex(GMathVec3<float> const& d, CoreArray<GMathVec3<float>>& positions,
                        CoreArray<GMathVec3<float>>& normals) const {
    GMathVec3<double> const e(d);
    auto const [a, b, c] = radii;
    positions.append(GMathVec3<float>(GMathVec3<double>(e.x * a, e.y * b, e.z * c)));
    normals.append(GMathVec3<float>(GMathVec3<double>(e.x * b * c, e.y * c * a, e.z * a * b)));
}

// Angles grow by repeated addition: products would round differently.
void Sphere::add_vertices(CoreArray<GMathVec3<float>>& positions,
                          CoreArray<GMathVec3<float>>& normals) const {
    auto const [a, b, c] = radii;
    positions.append(GMathVec3<float>(GMathVec3<double>(0, -b, 0)));
    normals.append(GMathVec3<float>(GMathVec3<double>(0, -c * a, 0)));
    double t = 0.0;
    for (unsigned int ring = 1; ring < rings; ++ring) {
        t += 1.0 / rings;
        double const phi = pi * t;
        double s = 0.0;
        for (unsigned int segment = 0; segment < segments; ++segment) {
            double const theta = two_pi * s;
            GMathVec3<double> const d(-std::sin(theta) * std::sin(phi), -std::cos(phi),
                                      -std::cos(theta) * std::sin(phi));
            add_vertex(GMathVec3<float>(d), positions, normals);
            s += 1.0 / segments;
        }
    }
    positions.append(GMathVec3<float>(GMathVec3<double>(0, b, 0)));
    normals.append(GMathVec3<float>(GMathVec3<double>(0, c * a, 0)));
}

void Sphere::add_polygons(CoreArray<unsigned int>& indices, CoreArray<unsigned int>& counts) const {
    unsigned int const first = get_ring_vertex(1);
    for (unsigned int j = 0; j < segments; ++j) {
        add_polygon(indices, {0, first + get_next(j), first + j});
        counts.append(3);
    }
    for (unsigned int ring = 1; ring + 1 < rings; ++ring) {
        unsigned int const low = get_ring_vertex(ring);
        unsigned int const high = low + segments;
        for (unsigned int j = 0; j < segments; ++j) {
            add_polygon(indices, {low + j, low + get_next(j), high + get_next(j), high + j});
            counts.append(4);
        }
    }
    unsigned int const last = get_ring_vertex(rings - 1);
    for (unsigned int j = 0; j < segments; ++j) {
        add_polygon(indices, {last + j, last + get_next(j), last + segments});
        counts.append(3);
    }
}

void Sphere::add_uv_values(CoreArray<GMathVec3<float>>& values) const {
    add_uv_row(0.0, values);
    double v = 0.0;
    for (unsigned int ring = 1; ring < rings; ++ring) {
        v += 1.0 / rings;
        double u = 0.0;
        for (unsigned int k = 0; k <= segments; ++k) {
            values.append(GMathVec3<float>(GMathVec3<double>(u, v, 0)));
            u += 1.0 / segments;
        }
    }
    add_uv_row(1.0, values);
}

// A pole has a value per triangle, at the middle of its segment.
void Sphere::add_uv_row(double const& v, CoreArray<GMathVec3<float>>& values) const {
    double u = 0.5 / segments;
    for (unsigned int j = 0; j < segments; ++j) {
        values.append(GMathVec3<float>(GMathVec3<double>(u, v, 0)));
        u += 1.0 / segments;
    }
}

void Sphere::add_uv_indices(CoreArray<unsigned int>& indices) const {
    unsigned int const first = get_ring_uv(1);
    for (unsigned int j = 0; j < segments; ++j) {
        add_polygon(indices, {j, first + j + 1, first + j});
    }
    for (unsigned int ring = 1; ring + 1 < rings; ++ring) {
        unsigned int const low = get_ring_uv(ring);
        unsigned int const high = get_ring_uv(ring + 1);
        for (unsigned int j = 0; j < segments; ++j) {
            add_polygon(indices, {low + j, low + j + 1, high + j + 1, high + j});
        }
    }
    unsigned int const last = get_ring_uv(rings - 1);
    unsigned int const north = get_ring_uv(rings);
    for (unsigned int j = 0; j < segments; ++j) {
        add_polygon(indices, {last + j, last + j + 1, north + j});
    }
}

}  // namespace

PolyMesh* PolyHelpers::create_poly_sphere(unsigned int const& segments, unsigned int const& rings,
                                          GMathVec3<double> const& radii) {
    Sphere const sphere{std::max(segments, 2u), std::max(rings, 2u), radii};
    if (!sphere.is_buildable()) {
        log_too_large("PolyHelpers.create_poly_sphere");
        return new PolyMesh;
    }
    CoreArray<GMathVec3<float>> positions;
    CoreArray<unsigned int> vertex_indices;
    CoreArray<unsigned int> vertex_count;
    CoreArray<GeometryUvMap> uv_maps(1);
    CoreArray<GeometryNormalMap> normal_maps(1);
    CoreArray<CoreString> names(1);

    vertex_indices.reserve(sphere.get_corner_count());
    uv_maps[0].name = "parametric";
    normal_maps[0].name = "default";
    names[0] = "surface";
    sphere.add_vertices(positions, normal_maps[0].values);
    sphere.add_polygons(vertex_indices, vertex_count);
    sphere.add_uv_values(uv_maps[0].values);
    sphere.add_uv_indices(uv_maps[0].indices);
    CoreArray<unsigned int> groups(vertex_count.get_count());
    groups.fill(0);

    auto* const mesh = new PolyMesh;
    mesh->set(positions, {}, vertex_indices, vertex_count, groups, names, uv_maps, normal_maps, {},
              true, nullptr);
    return mesh;
}
