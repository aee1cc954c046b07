#include <poly/smoothed/smoothing_build.h>

#include <poly/maps/extra_normals.h>
#include <poly/maps/normal_maps.h>
#include <poly/mesh/primitive_corners.h>
#include <poly/mesh/progress_task.h>
#include <poly/render/surface_weights.h>
#include <poly/smoothed/smoothing_triangles.h>
#include <poly/topology/neighbourhood.h>

#include <algorithm>
#include <cassert>
#include <cmath>

namespace {

using Vec3 = GMathVec3<float>;

constexpr unsigned int none = 0xFFFFFFFFu;

// Deliberate: a little below pi / 180, and exactly this double.
constexpr double radians_per_degree = 0.01745329251993889;

constexpr float task_weight = 0.25f;

double get_cos_limit(double const& smoothing_angle) {
    return std::cos(smoothing_angle * radians_per_degree);
}

class SmoothingBuilder {
  public:
    SmoothingBuilder(PolyMeshTopology const& topology, CoreBasicArray<Vec3> const& positions,
                     AppProgressBar* progress)
        : m_triangles(topology),
          m_positions(positions.get_data()),
          m_vertex_count(positions.get_count()),
          m_progress(progress) {}

    // Decides every edge.
    void classify_edges(double const& cos_limit) {
        {
            ProgressTask const task(m_progress, "compute triangles neighbourhood", task_weight);
            compute_triangles_neighbourhood(m_neighbours, m_triangles.vertices, m_vertex_count,
                                            m_progress);
        }
        compute_face_normals();
        find_hard_edges(cos_limit);
    }

    // Leaves the result of every triangle corner in m_results, and the normals in m_normals.
    void build_normals(unsigned int const& corner_count) {
        m_normals.reserve(corner_count);
        m_results.copy_from(m_triangles.vertices);
        compute_fans();
        m_normals.shrink_to_fit();
    }

    void store(unsigned int const& corner_count, PolyMeshNormalMap& map) {
        map.normals.swap(m_normals);
        assert(map.normals.get_count() <= none - m_vertex_count);
        // Corners that two halves of a quad share keep the result of the second.
        CoreArray<unsigned int> results(corner_count);
        results.fill(none);
        for (unsigned int corner = 0; corner < m_results.get_count(); ++corner) {
            results[m_triangles.corner_ids[corner]] = m_results[corner];
        }
        map.polygon_indices.init(corner_count, m_vertex_count + map.normals.get_count());
        CoreIndexWriter writer(map.polygon_indices);
        for (unsigned int const result : results) {
            writer.append(result);
        }
    }

    SmoothingTriangles const& get_triangles() const { return m_triangles; }

  private:
    void compute_face_normals() {
        ProgressTask const task(m_progress, "compute triangle normals", task_weight);
        unsigned int const count = m_triangles.get_count();
        set_step_count(m_progress, count);
        m_face_normals.reset(count);
        unsigned int t = 0;
        for (; count - t >= 4; t += 4) {
            compute_four_face_normals(t);
            step_through(m_progress, t, t + 4);
        }
        for (; t < count; ++t) {
            m_face_normals[t] = compute_flat_normal(get_position(3 * t), get_position(3 * t + 1),
                                                    get_position(3 * t + 2));
            step(m_progress, t + 1);
        }
    }

    // The same for the triangles from `first` on, side by side.
    void compute_four_face_normals(unsigned int const& first) {
        auto const load = [&](unsigned int const& corner) {
            return gmath_lanes(
                get_position(3 * first + corner), get_position(3 * first + corner + 3),
                get_position(3 * first + corner + 6), get_position(3 * first + corner + 9));
        };
        GMathVec3<GMathFloatLanes> const p = load(0);
        GMathVec3<GMathFloatLanes> const normal = gmath_cross(load(1) - p, load(2) - p);
        GMathFloatLanes const length = gmath_root(gmath_dot(normal, normal));
        GMathIntLanes const is_zero = length <= 0.0f;
        GMathVec3<GMathFloatLanes> const unit = normal / length;
        for (unsigned int k = 0; k < 4; ++k) {
            m_face_normals[first + k] =
                is_zero[k] != 0 ? Vec3(0, 0, 0) : Vec3(unit.x[k], unit.y[k], unit.z[k]);
        }
    }

    void find_hard_edges(double const& cos_limit) {
        ProgressTask const task(m_progress, "find hard edges", task_weight);
        unsigned int const count = m_triangles.get_count();
        set_step_count(m_progress, count);
        for (unsigned int t = 0; t < count; ++t) {
            for (unsigned int e = 3 * t; e < 3 * t + 3; ++e) {
                classify_edge(e, cos_limit);
            }
            step(m_progress, t + 1);
        }
    }

    void classify_edge(unsigned int const& e, double const& cos_limit) {
        unsigned int const f = m_neighbours[e];
        CoreArray<SmoothingEdge>& edges = m_triangles.edges;
        if (f == none || m_neighbours[f] != e) {
            edges[e] = SmoothingEdge::HARD;
            m_hard_edges.append(e);
        } else if (edges[e] == SmoothingEdge::UNDECIDED) {
            // A smooth one is decided from both sides, which is less than to foresee which is
            // first.
            if (bends_little(e, f, cos_limit)) {
                edges[e] = SmoothingEdge::SMOOTH;
            } else {
                edges[e] = edges[f] = SmoothingEdge::HARD;
                m_hard_edges.append(e);
                m_hard_edges.append(f);
            }
        }
    }

    // Faces that are wound alike run along their edge in opposite directions. A NaN stays NaN
    // through the minimum, and makes the edge hard.
    bool bends_little(unsigned int const& e, unsigned int const& f, double const& cos_limit) const {
        float const dot = gmath_dot(m_face_normals[e / 3], m_face_normals[f / 3]);
        return m_triangles.vertices[e] != m_triangles.vertices[f] &&
               std::min(static_cast<double>(dot), 1.0) > cos_limit;
    }

    bool is_hard(unsigned int const& e) const {
        return m_triangles.edges[e] == SmoothingEdge::HARD;
    }

    // Every fan begins at one hard edge, and every hard edge begins one.
    void compute_fans() {
        ProgressTask const task(m_progress, "compute local normals", task_weight);
        set_step_count(m_progress, m_hard_edges.get_count());
        for (unsigned int i = 0; i < m_hard_edges.get_count(); ++i) {
            compute_fan(m_hard_edges[i]);
            step(m_progress, i + 1);
        }
    }

    void compute_fan(unsigned int const& first) {
        if (is_hard(get_previous_corner(first))) {
            m_results[first] = none;
            return;
        }
        Vec3 sum = get_weighted_normal(first);
        for_each_other_corner(first, [&](unsigned int const& c) { sum += get_weighted_normal(c); });
        GMathShortNormal const normal = GMathShortNormal::encode(gmath_unit(sum));
        bool is_needed = store_result(first, normal);
        for_each_other_corner(first,
                              [&](unsigned int const& c) { is_needed |= store_result(c, normal); });
        if (is_needed) {
            m_normals.append(normal);
        }
    }

    // Walks the corners of a fan after its first. Edges that are not hard are pairs, so the walk
    // cannot come back to `first`, whose edge is hard: it ends at the other hard edge.
    template <typename Visit>
    void for_each_other_corner(unsigned int const& first, Visit const& visit) const {
        unsigned int corner = first;
        [[maybe_unused]] unsigned int steps = 0;
        do {
            corner = m_neighbours[get_previous_corner(corner)];
            assert(steps < m_results.get_count());
            ++steps;
            visit(corner);
        } while (!is_hard(get_previous_corner(corner)));
    }

    // As gmath_unit.
    static GMathFloatLanes get_unit(GMathFloatLanes const& v) {
        float const length = std::sqrt(gmath_dot(v, v));
        return length <= 0.0f ? GMathFloatLanes{} : v / length;
    }

    // The weight is formed in double, and the product rounded to float.
    Vec3 get_weighted_normal(unsigned int const& corner) const {
        GMathFloatLanes const p = gmath_lanes(get_position(corner));
        GMathFloatLanes const to_next =
            get_unit(gmath_lanes(get_position(get_next_corner(corner))) - p);
        GMathFloatLanes const to_previous =
            get_unit(gmath_lanes(get_position(get_previous_corner(corner))) - p);
        double const weight = 1.0 - static_cast<double>(gmath_dot(to_next, to_previous));
        return Vec3(GMathVec3<double>(m_face_normals[corner / 3]) * weight);
    }

    Vec3 const& get_position(unsigned int const& corner) const {
        return m_positions[m_triangles.vertices[corner]];
    }

    // Whether the corner takes the normal, which is then the next of m_normals, instead of its
    // face's.
    bool store_result(unsigned int const& corner, GMathShortNormal const& normal) {
        GMathShortNormal const face = GMathShortNormal::encode(m_face_normals[corner / 3]);
        bool const is_flat = is_same_normal(face, normal);
        m_results[corner] = is_flat ? none : m_vertex_count + m_normals.get_count();
        return !is_flat;
    }

    SmoothingTriangles m_triangles;
    Vec3 const* m_positions;
    unsigned int m_vertex_count;
    AppProgressBar* m_progress;
    CoreArray<unsigned int> m_neighbours;  // by edge
    CoreArray<Vec3> m_face_normals;        // by triangle
    CoreArray<unsigned int> m_hard_edges;  // in the order in which they were found
    CoreArray<unsigned int> m_results;     // by triangle corner: what polygon_indices will hold
    GMathShortNormalArray m_normals;
};

}  // namespace

void build_smoothed_normals(PolyMeshTopology const& topology, CoreBasicArray<Vec3> const& positions,
                            double const& smoothing_angle, PolyMeshNormalMap& map,
                            AppProgressBar* progress) {
    unsigned int const corner_count = topology.polygon_vertex_indices.get_count();
    SmoothingBuilder builder(topology, positions, progress);
    builder.classify_edges(get_cos_limit(smoothing_angle));
    builder.build_normals(corner_count);
    builder.store(corner_count, map);
    map.name = CoreString("smoothing_angle=").append(smoothing_angle);
}

void find_hard_edges(PolyMeshTopology const& topology, CoreBasicArray<Vec3> const& positions,
                     double const& smoothing_angle, CoreArray<unsigned char>& edges) {
    SmoothingBuilder builder(topology, positions, nullptr);
    builder.classify_edges(get_cos_limit(smoothing_angle));
    edges.reset(topology.primitive_infos.get_count());
    SmoothingEdge const* next = builder.get_triangles().edges.get_data();
    for (unsigned int primitive = 0; primitive < edges.get_count(); ++primitive) {
        unsigned int hard = 0;
        unsigned int half = 0;
        bool const is_whole_quad = is_quad(topology, primitive);
        for (SurfaceTriangle const& triangle : get_surface_triangles(is_whole_quad)) {
            for (unsigned int k = 0; k < 3; ++k, ++next) {
                bool const is_diagonal = is_whole_quad && is_quad_diagonal(half, k);
                if (!is_diagonal && *next == SmoothingEdge::HARD) {
                    hard |= 1u << triangle.corners[k];
                }
            }
            ++half;
        }
        edges[primitive] = static_cast<unsigned char>(hard);
    }
}
