#pragma once

#include <poly/mesh/poly_mesh.h>

#include <bit>
#include <cstdint>
#include <vector>

// Answers of queries, one after another, bit by bit.
struct Answers {
    std::vector<std::uint64_t> list;

    template <typename... Numbers>
    void add(Numbers const&... numbers) {
        (list.push_back(std::bit_cast<std::uint64_t>(static_cast<double>(numbers))), ...);
    }
    template <typename T>
    void add_vector(GMathVec3<T> const& v) {
        add(v.x, v.y, v.z);
    }
    void add_box(GMathBbox3<double> const& b) {
        add_vector(b.minimum);
        add_vector(b.maximum);
    }
    template <typename Values>
    void add_map(bool const& is_there, Values const& values,
                 CoreArray<unsigned int> const& indices) {
        add(is_there, values.get_count(), values[1].x);
        list.insert(list.end(), indices.begin(), indices.end());
    }
};

// What a mesh with a uv and a color map says of itself and of one of its primitives at a time, but
// for its normals.
inline std::vector<std::uint64_t> ask_all(PolyMeshBase const& m, unsigned int const& primitive,
                                          double const& time) {
    CtxEval const ctx;
    GMathMatrix4x4<double> const identity = GMathMatrix4x4<double>::get_identity();
    GeometryFragment const fragment{0xFFFFFFFFu, primitive, 0.25, 0.5, time, 0};
    Answers all;
    all.add(m.is_animated(), m.is_geometry_linear(), m.is_primitive_linear(primitive),
            m.is_primitive_edge_linear(primitive, 0), m.is_primitive_uv_mapped(primitive, 0),
            m.is_primitive_uv_mapped(primitive, 1), m.is_primitive_edge_visible(primitive, 0),
            m.is_primitive_edge_visible(primitive, 2), m.get_vertex_count(),
            m.get_primitive_count(), m.get_primitive_edge_count(primitive),
            m.get_primitive_shading_group_index(primitive), m.get_uv_map_count(),
            m.get_color_map_count(), m.get_point_cloud()->get_point_count(),
            m.get_shading_group_names()[0].get_length(), m.estimate_area(ctx, identity),
            m.estimate_primitive_area(ctx, primitive, identity),
            m.estimate_shading_group_area(ctx, 0, identity));
    GMathBbox3<double> box;
    all.add_box(m.get_bbox());
    all.add_box(m.get_bbox_at(ctx, time));
    all.add_box(m.get_shading_group_bbox(0));
    m.compute_primitive_bbox(ctx, primitive, box);
    all.add_box(box);
    m.compute_primitive_bbox_at(ctx, primitive, time, box);
    all.add_box(box);

    CoreArray<unsigned int> indices;
    m.get_primitive_indices(indices);
    all.list.insert(all.list.end(), indices.begin(), indices.end());
    GeometryUvMap uvs;
    GeometryColorMap colors;
    bool is_there = m.get_uv_map_data(0, uvs.values, uvs.indices);
    all.add_map(is_there, uvs.values, uvs.indices);
    is_there = m.get_polygon_uv_map(0, uvs, true);
    all.add_map(is_there, uvs.values, uvs.indices);
    is_there = m.get_color_map_data(0, colors.values, colors.indices);
    all.add_map(is_there, colors.values, colors.indices);
    is_there = m.get_polygon_color_map(0, colors, true);
    all.add_map(is_there, colors.values, colors.indices);

    GMathVec3<double> uvw, ds, dt;
    GMathVec4<float> color;
    m.compute_fragment_uvw(ctx, fragment, 0, uvw, ds, dt);
    all.add_vector(uvw);
    all.add_vector(ds);
    all.add_vector(dt);
    m.compute_edge_uvw(ctx, primitive, 2, 0, 0.25, uvw);
    all.add_vector(uvw);
    m.compute_fragment_color(ctx, fragment, 0, color);
    all.add(color.x, color.y, color.z, color.w);
    GeometryRay ray;
    m.compute_primitive_bbox_at(ctx, primitive, time, box);
    GMathVec3<double> const middle = (box.minimum + box.maximum) * 0.5;
    ray.ray = GMathBasicRay({middle.x, middle.y, middle.z + 1}, {0, 0, -1});
    ray.time = time;
    GeometryHit hit;
    GeometryRaytraceCtx rays(&ray, &hit, 1);
    rays.is_motion_blurred = true;
    m.intersect_primitive(ctx, primitive, rays);
    GeometryFrustumCtx frustum;
    m.intersect_primitive(ctx, primitive, frustum);
    all.add(hit.primitive_index, hit.s, hit.t, hit.distance, frustum.accepted_count,
            frustum.is_rejected);
    return all.list;
}
