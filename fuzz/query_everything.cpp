#include <fuzz/query_everything.h>

#include <fuzz/change_copies.h>
#include <fuzz/checks.h>
#include <fuzz/mesh_digest.h>
#include <fuzz/query_geometry.h>
#include <fuzz/query_property.h>

#include <poly/property/poly_mesh_property.h>
#include <poly/smoothed/poly_mesh_smoothed.h>
#include <poly/topology/neighbourhood.h>
#include <poly/topology/reverse_poly_order.h>

#include <algorithm>
#include <cmath>

namespace {

bool is_inside(GMathVec3<double> const& p, GMathBbox3<double> const& box) {
    return p.x >= box.minimum.x && p.y >= box.minimum.y && p.z >= box.minimum.z &&
           p.x <= box.maximum.x && p.y <= box.maximum.y && p.z <= box.maximum.z;
}

// Where they are at a time, bounds must hold them: a ray would miss what lies outside.
void query_corners(PolyMeshSmoothed const& smoothed, unsigned int const& primitive) {
    CtxEval const ctx;
    for (double const time : {0.0, 0.75, -2.5}) {
        GMathVec3<double> positions[4];
        unsigned int const count =
            smoothed.get_primitive_vertices(ctx, {primitive, time}, positions);
        require((count == 0) == (primitive >= smoothed.get_primitive_count()),
                "every primitive has corners");
        GMathBbox3<double> box = GMathBbox3<double>::get_inverted();
        if (count != 0 && time == 0.0) {  // at rest, whatever the velocities
            smoothed.compute_primitive_bbox(ctx, primitive, box);
        } else if (count != 0) {
            smoothed.compute_primitive_bbox_at(ctx, primitive, time, box);
        }
        auto const is_finite = [](GMathVec3<double> const& p) {
            return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
        };
        bool const is_bounded = std::all_of(positions, positions + count, is_finite);
        for (unsigned int corner = 0; is_bounded && corner < count; ++corner) {
            require(is_inside(positions[corner], box) &&
                        is_inside(positions[corner], smoothed.get_bbox_at(ctx, time)),
                    "bounds hold what they bound");
        }
    }
}

// At an angle and with a map that depend on the mesh.
void query_smoothed(PolyMesh const& mesh, std::size_t const& digest) {
    double const angles[] = {0.0, 40.0, 180.0};
    double const angle = angles[digest % 3];
    PolyMeshSmoothed smoothed;
    smoothed.set(mesh, angle, digest % 7 == 0 ? 0u : 0xFFFFFFFFu, nullptr);
    query_geometry(smoothed, 4);
    PolyMeshSmoothed const copy(smoothed);
    query_geometry(copy, 1);
    for (unsigned int primitive = 0; primitive <= std::min(mesh.get_primitive_count(), 8u);
         ++primitive) {
        query_corners(copy, primitive);
    }
    CoreArray<unsigned char> edges;
    PolyMeshSmoothed::find_hard_edges(mesh, angle, edges);
    require(edges.get_count() == mesh.get_primitive_count(), "edges are told by primitive");
}

void query_neighbours(PolyMesh const& mesh) {
    CoreArray<unsigned int> vertices;
    CoreArray<unsigned int> neighbours;
    mesh.get_primitive_indices(vertices);
    for (auto* const compute : {&compute_triangles_neighbourhood, &compute_quads_neighbourhood}) {
        compute(neighbours, vertices, mesh.get_vertex_count(), nullptr);
        for (unsigned int const edge : neighbours) {
            require(edge == 0xFFFFFFFFu || edge < vertices.get_count(), "neighbours are edges");
        }
    }
    CoreArray<unsigned int> counts;
    CoreArray<unsigned int> offsets;
    CoreArray<unsigned int> edges;
    CoreArray<unsigned char> manifold;
    mesh.get_polygon_vertex_indices(vertices);
    mesh.get_polygon_vertex_count(counts);
    unsigned int offset = 0;
    for (unsigned int const count : counts) {
        offsets.append(offset);
        offset += count;
    }
    compute_polygons_neighbourhood(neighbours, edges, manifold, vertices, counts, offsets,
                                   mesh.get_vertex_count(), nullptr);
    for (unsigned int corner = 0; corner < offset; ++corner) {
        unsigned int const polygon = neighbours[corner];
        require(polygon == 0xFFFFFFFFu ||
                    (polygon < counts.get_count() && edges[corner] < counts[polygon]),
                "neighbours are edges of polygons");
    }
    reverse_poly_order(counts, vertices);
}

// One property by vertex, one by polygon corner, one by polygon, with values of their own.
void query_properties(PolyMesh const& mesh) {
    CoreArray<unsigned int> items;
    items.resize(mesh.get_polygon_index_count());
    for (unsigned int corner = 0; corner < items.get_count(); ++corner) {
        items[corner] = corner % 3;
    }
    struct Row {
        PolyMeshProperty::Type type;
        ResourceProperty::Type value_type;
        unsigned int item_count;
        CoreBasicArray<unsigned int> indices;
    };
    Row const rows[] = {
        {PolyMeshProperty::TYPE_VERTEX, ResourceProperty::TYPE_FLOAT, mesh.get_vertex_count(), {}},
        {PolyMeshProperty::TYPE_VERTEX, ResourceProperty::TYPE_HALF, 3, items},
        {PolyMeshProperty::TYPE_POLYGON,
         ResourceProperty::TYPE_INT64,
         mesh.get_polygon_count(),
         {}},
    };
    for (Row const& row : rows) {
        ResourceProperty block(row.value_type, 2, row.item_count);
        if (row.item_count != 0) {
            static_cast<unsigned char*>(block.get_item_values(0))[0] = 0x3C;
        }
        PolyMeshProperty property(mesh, row.type, row.value_type, 2, row.item_count,
                                  row.indices.get_count(), "p", GMathTimeSampling(0.0), false);
        property.init_indices(row.indices);
        property.init(0, &block);
        query_property(mesh, PolyMeshProperty(property));
        PolyMesh listing(mesh);
        listing.add_property(property);
        require(listing.find_property("p") == &property, "a property is found by its name");
    }
}

}  // namespace

void query_everything(PolyMesh const& mesh) {
    require_sound(mesh);
    std::size_t const digest = get_digest(mesh);
    query_geometry(mesh, 16);
    query_smoothed(mesh, digest);
    query_neighbours(mesh);
    query_properties(mesh);
    change_copies(mesh);
    mesh.print_stats();
    require(get_digest(mesh) == digest, "queries leave a mesh as it is");
}
