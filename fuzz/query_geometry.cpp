#include <fuzz/query_geometry.h>

#include <fuzz/checks.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace {

using Vec = GMathVec3<double>;
using Box = GMathBbox3<double>;

constexpr unsigned int none = 0xFFFFFFFFu;
constexpr double times[] = {0.0, 0.75, -1e300, std::numeric_limits<double>::quiet_NaN()};
GMathMatrix4x4<double> const mirrored = {{-2, 0, 0.5, 1, 0, 1, 0, 2, 0, 0.25, 1, 3, 0, 0, 0, 1}};

void query_whole(PolyMeshBase const& geometry, CtxEval const& ctx) {
    Box const box = geometry.get_bbox();
    require(!geometry.is_animated() || geometry.get_point_cloud()->is_animated(),
            "a mesh moves as its points do");
    for (double const time : times) {
        geometry.get_bbox_at(ctx, time);
    }
    geometry.estimate_area(ctx, mirrored);
    unsigned int const group_count = geometry.get_shading_group_names().get_count();
    for (unsigned int group = 0; group < std::min(group_count, 8u); ++group) {
        geometry.get_shading_group_bbox(group);
        geometry.estimate_shading_group_area(ctx, group, mirrored);
    }
    require(geometry.is_geometry_linear() && box == geometry.get_bbox(), "meshes are linear");
}

// By primitive and by polygon, with the value number of every corner among the values.
template <typename T, typename Get>
void query_map(PolyMeshBase const& geometry, Get const& get) {
    CoreArray<unsigned int> vertices;
    geometry.get_primitive_indices(vertices);
    CoreArray<T> values;
    CoreArray<unsigned int> indices;
    require(get(values, indices), "a map below the count has data");
    require(indices.is_empty() || indices.get_count() == vertices.get_count() ||
                geometry.get_primitive_count() == 0,
            "a map has a number for each corner of a primitive");
}

void query_maps(PolyMeshBase const& geometry) {
    for (unsigned int map = 0; map < std::min(geometry.get_uv_map_count(), 4u); ++map) {
        geometry.get_uv_map_name(map);
        query_map<GMathVec3<float>>(geometry, [&](auto& values, auto& indices) {
            return geometry.get_uv_map_data(map, values, indices);
        });
    }
    for (unsigned int map = 0; map < std::min(geometry.get_color_map_count(), 4u); ++map) {
        geometry.get_color_map_name(map);
        query_map<GMathVec4<unsigned char>>(geometry, [&](auto& values, auto& indices) {
            return geometry.get_color_map_data(map, values, indices);
        });
    }
    for (unsigned int map = 0; map < std::min(geometry.get_normal_map_count(), 4u); ++map) {
        geometry.get_normal_map_name(map);
        query_map<GMathVec3<float>>(geometry, [&](auto& values, auto& indices) {
            return geometry.get_normal_map_data(map, values, indices);
        });
    }
    CoreArray<GeometryUvMap> uv_maps;
    CoreArray<GeometryNormalMap> normal_maps;
    CoreArray<GeometryColorMap> color_maps;
    for (bool const always_indices : {false, true}) {
        geometry.get_polygon_uv_maps(uv_maps, always_indices);
        geometry.get_polygon_color_maps(color_maps, always_indices);
    }
    geometry.get_polygon_normal_maps(normal_maps);
    GeometryUvMap past_the_end;
    require(!geometry.get_polygon_uv_map(geometry.get_uv_map_count(), past_the_end, true),
            "there is no map past the last");
}

void query_edges(PolyMeshBase const& geometry, CtxEval const& ctx, unsigned int const& primitive) {
    unsigned int const edge_count = geometry.get_primitive_edge_count(primitive);
    require(edge_count == 3 || edge_count == 4, "primitives are triangles and quads");
    for (unsigned int edge = 0; edge < edge_count; ++edge) {
        geometry.is_primitive_edge_visible(primitive, edge);
        geometry.is_primitive_edge_linear(primitive, edge);
        GeometrySample sample;
        geometry.compute_edge_sample(ctx, primitive, edge, 0.5, sample);
        for (unsigned int map = 0; map < std::min(geometry.get_uv_map_count(), 4u); ++map) {
            Vec uvw(0, 0, 0);
            geometry.compute_edge_uvw(ctx, primitive, edge, map, 0.5, uvw);
        }
    }
}

void query_bounds(PolyMeshBase const& geometry, CtxEval const& ctx, unsigned int const& primitive) {
    GMathLinearSpace3<double> space = GMathLinearSpace3<double>::get_identity();
    geometry.compute_primitive_space(ctx, primitive, space);
    Box box = Box::get_inverted();
    geometry.compute_primitive_bbox(ctx, primitive, box);
    geometry.compute_primitive_bbox(ctx, primitive, space, box);
    for (double const time : times) {
        geometry.compute_primitive_bbox_at(ctx, primitive, time, box);
        geometry.compute_primitive_bbox_at(ctx, primitive, time, space, box);
    }
    geometry.estimate_primitive_area(ctx, primitive, mirrored);
    geometry.get_primitive_shading_group_index(primitive);
    geometry.get_primitive_intersection_cost(primitive);
    geometry.is_primitive_linear(primitive);
    geometry.is_primitive_uv_mapped(primitive, 0);
}

GeometrySample query_fragment(PolyMeshBase const& geometry, CtxEval const& ctx,
                              GeometryFragment const& fragment) {
    GeometrySample sample;
    geometry.compute_fragment_sample(ctx, fragment, sample);
    for (unsigned int map = 0; map < std::min(geometry.get_uv_map_count(), 4u); ++map) {
        Vec values[3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};
        geometry.compute_fragment_uvw(ctx, fragment, map, values[0], values[1], values[2]);
    }
    for (unsigned int map = 0; map < std::min(geometry.get_color_map_count(), 4u); ++map) {
        GMathVec4<float> color(0, 0, 0, 0);
        geometry.compute_fragment_color(ctx, fragment, map, color);
    }
    return sample;
}

// Rays of all kinds, most of them at `target`, a place of the primitive.
void query_rays(PolyMeshBase const& geometry, CtxEval const& ctx, unsigned int const& primitive,
                Vec const& target) {
    constexpr unsigned int ray_count = 5;
    Vec const directions[ray_count] = {{0, 0, -1}, {1, 2, -3}, {-1e-20, 1, 0}, {0, 0, 0}, target};
    GeometryRay rays[ray_count];
    for (unsigned int i = 0; i < ray_count; ++i) {
        rays[i].ray = GMathBasicRay(target - directions[i] * 2.0, directions[i]);
        rays[i].time = times[i % std::size(times)];
    }
    for (unsigned int kind = 0; kind < 4; ++kind) {
        GeometryHit hits[ray_count];
        GeometryRaytraceCtx rays_ctx(rays, hits, ray_count);
        rays_ctx.keep_mode = static_cast<GeometryRaytraceCtx::KeepMode>((primitive + kind) % 3);
        rays_ctx.test_mode =
            kind % 2 == 0 ? GeometryRaytraceCtx::TEST_TOLERANT : GeometryRaytraceCtx::TEST_EXACT;
        rays_ctx.is_motion_blurred = kind / 2 == 1;
        geometry.intersect_primitive(ctx, primitive, rays_ctx);
        for (GeometryHit const& hit : rays_ctx.all_hits) {
            require(hit.primitive_index == primitive && hit.ray_index < ray_count &&
                        hit.distance == hit.distance,
                    "a hit is of the primitive and a ray that were asked for");
            GeometryFragment fragment;
            fragment.primitive_index = primitive;
            fragment.s = hit.s;
            fragment.t = hit.t;
            query_fragment(geometry, ctx, fragment);
        }
    }
}

void query_frustum(PolyMeshBase const& geometry, CtxEval const& ctx, unsigned int const& primitive,
                   Vec const& target) {
    std::vector<unsigned char> marks(geometry.get_vertex_count());
    for (unsigned int const mode : {0u, 1u, 2u, 3u}) {
        GeometryFrustumCtx frustum;
        frustum.mode = static_cast<GeometryFrustumCtx::Mode>(mode);
        frustum.vertex_marks = marks.data();
        frustum.side_plane_count = 1 + primitive % 4;
        Vec const normals[] = {{1, 0, 0.5}, {-1, 0, 0.5}, {0, 1, 0.5}, {0, -1, 0.5}};
        for (unsigned int side = 0; side < frustum.side_plane_count; ++side) {
            frustum.side_planes[side] = {normals[side], 0.5 - gmath_dot(normals[side], target)};
        }
        frustum.front_plane = {{0, 0, 1}, 0.25 - target.z};
        frustum.back_plane = {{0, 0, -1}, 1e9};
        geometry.intersect_primitive(ctx, primitive, frustum);
    }
}

void query_primitive(PolyMeshBase const& geometry, CtxEval const& ctx,
                     unsigned int const& primitive) {
    query_edges(geometry, ctx, primitive);
    query_bounds(geometry, ctx, primitive);
    double const places[][2] = {{0.25, 0.5}, {0, 0}, {1, 0}, {1, 1}, {1.0 / 3.0, 1.0 / 3.0}};
    unsigned int turn = primitive;  // each place at another time
    for (auto const& [s, t] : places) {
        GeometryFragment fragment;
        fragment.primitive_index = primitive;
        fragment.s = s;
        fragment.t = t;
        fragment.time = times[turn++ % std::size(times)];
        fragment.time_step = s;
        GeometrySample const sample = query_fragment(geometry, ctx, fragment);
        require(sample.get_kind() == GeometrySample::KIND_SURFACE,
                "a primitive has a sample everywhere");
        if (turn % 3 == 0) {
            query_rays(geometry, ctx, primitive, Vec(sample.get_position()));
            query_frustum(geometry, ctx, primitive, Vec(sample.get_position()));
        }
    }
}

}  // namespace

void query_geometry(PolyMeshBase const& geometry, unsigned int const& primitive_count) {
    double const shutter_times[] = {-0.5, 0.5, 1.0};
    CtxShader const shader(
        CtxMotionBlur(GMathTimeSampling(CoreBasicArray<double>(shutter_times, 3))));
    CtxEval const ctxs[] = {CtxEval(), CtxEval(&shader)};
    query_whole(geometry, ctxs[primitive_count % 2]);
    query_maps(geometry);
    unsigned int const count = geometry.get_primitive_count();
    unsigned int const step = 1 + count / primitive_count;
    for (unsigned int primitive = 0; primitive < count; primitive += step) {
        query_primitive(geometry, ctxs[primitive % 2], primitive);
    }
    if (count != 0) {
        query_primitive(geometry, ctxs[1], count - 1);
    }
    for (unsigned int const point : {none, 0u, geometry.get_vertex_count() - 1}) {
        GeometryFragment fragment;
        fragment.point_index = geometry.get_vertex_count() == 0 ? none : point;
        fragment.time_step = 0.5;
        GeometrySample sample;
        geometry.compute_fragment_sample(ctxs[1], fragment, sample);
        require((sample.get_kind() == GeometrySample::KIND_NONE) == (fragment.point_index == none),
                "a point has a sample, and nothing has none");
    }
    static_cast<void>(geometry.get_memory_size());
}
