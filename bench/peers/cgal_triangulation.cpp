#include <bench/peers.h>

#include <CGAL/Constrained_Delaunay_triangulation_2.h>
#include <CGAL/Constrained_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Triangulation_face_base_with_info_2.h>
#include <CGAL/Triangulation_vertex_base_with_info_2.h>

#include <memory>
#include <vector>

namespace {

using Exact = CGAL::Exact_predicates_inexact_constructions_kernel;
using VertexBase = CGAL::Triangulation_vertex_base_with_info_2<unsigned int, Exact>;
using InfoBase = CGAL::Triangulation_face_base_with_info_2<bool, Exact>;  // lies outside
using FaceBase = CGAL::Constrained_triangulation_face_base_2<Exact, InfoBase>;
using Structure = CGAL::Triangulation_data_structure_2<VertexBase, FaceBase>;
using Simple = CGAL::No_constraint_intersection_tag;
using Constrained = CGAL::Constrained_triangulation_2<Exact, Structure, Simple>;
using Delaunay = CGAL::Constrained_Delaunay_triangulation_2<Exact, Structure, Simple>;

// Marks what is reached from the outermost face without crossing a side of the polygon.
template <typename Triangulation>
void mark_outside(Triangulation& triangulation) {
    for (auto const face : triangulation.all_face_handles()) {
        face->info() = false;
    }
    std::vector<typename Triangulation::Face_handle> open = {triangulation.infinite_face()};
    open.back()->info() = true;
    while (!open.empty()) {
        auto const face = open.back();
        open.pop_back();
        for (int i = 0; i < 3; ++i) {
            auto const next = face->neighbor(i);
            if (!next->info() && !face->is_constrained(i)) {
                next->info() = true;
                open.push_back(next);
            }
        }
    }
}

template <typename Triangulation>
void cut(std::vector<GMathVec2<float>> const& points, std::vector<unsigned int>& triangles) {
    Triangulation triangulation;
    typename Triangulation::Vertex_handle first, last;
    for (unsigned int i = 0; i < points.size(); ++i) {
        Exact::Point_2 const point(points[i].x, points[i].y);
        auto const vertex =
            i == 0 ? triangulation.insert(point) : triangulation.insert(point, last->face());
        vertex->info() = i;
        i == 0 ? void(first = vertex) : triangulation.insert_constraint(last, vertex);
        last = vertex;
    }
    triangulation.insert_constraint(last, first);
    mark_outside(triangulation);
    triangles.clear();
    for (auto const face : triangulation.finite_face_handles()) {
        for (int i = 0; i < 3 && !face->info(); ++i) {
            triangles.push_back(face->vertex(i)->info());
        }
    }
}

template <typename Triangulation>
TrianglesWork make_work(PolygonBatch const& batch) {
    auto const triangles =
        std::make_shared<std::vector<std::vector<unsigned int>>>(batch.flat.size());
    auto const cut_all = [=, &batch] {
        for (std::size_t i = 0; i < batch.flat.size(); ++i) {
            cut<Triangulation>(batch.flat[i], (*triangles)[i]);
        }
    };
    auto const count = [=] {
        std::size_t sum = 0;
        for (std::vector<unsigned int> const& polygon : *triangles) {
            sum += polygon.size() / 3;
        }
        return sum;
    };
    return {cut_all, count};
}

}  // namespace

TrianglesWork make_cgal_triangulation(PolygonBatch const& batch, bool const& is_delaunay) {
    return is_delaunay ? make_work<Delaunay>(batch) : make_work<Constrained>(batch);
}
