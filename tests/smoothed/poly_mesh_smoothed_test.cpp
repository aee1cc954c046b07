#include <poly/module/poly_helpers.h>
#include <poly/smoothed/poly_mesh_smoothed.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>

namespace {

constexpr unsigned int none = 0xFFFFFFFFu;

// A row of three polygons with maps and motion.
void set_row(PolyMesh& mesh) {
    Shape row = make_row();
    row.velocities.assign(row.positions.size(), {0, 0, 1});
    row.uv_maps.resize(1);
    row.uv_maps[0].values.copy_from(view(row.positions));
    row.color_maps.resize(1);
    row.color_maps[0].values.resize(static_cast<unsigned int>(row.positions.size()));
    row.color_maps[0].values.fill({1, 2, 3, 4});
    row.set(mesh);
    std::vector<GeometryNormalMap> maps(2);
    for (GeometryNormalMap& map : maps) {
        map.name = "tilted";
        map.values.resize(mesh.get_vertex_count());
        map.values.fill({1, 0, 1});
    }
    mesh.set_normal_maps(view(maps), nullptr);
}

TEST(PolyMeshSmoothed, AnswersAsItsMesh) {
    using Numbers = std::vector<double>;
    using Query = std::function<Numbers(PolyMeshBase const&)>;
    CtxEval const ctx;
    GMathMatrix4x4<double> const identity = GMathMatrix4x4<double>::get_identity();
    GeometryFragment fragment;
    fragment.primitive_index = 1;
    fragment.s = 0.25;
    fragment.t = 0.5;
    auto const list = [](GMathBbox3<double> const& b) {
        return Numbers{b.minimum.x, b.minimum.y, b.minimum.z,
                       b.maximum.x, b.maximum.y, b.maximum.z};
    };
    auto const list_map = [](bool const& is_there, auto const& values, auto const& indices) {
        Numbers all{double(is_there), double(values.get_count()), double(values[1].x)};
        all.insert(all.end(), indices.begin(), indices.end());
        return all;
    };
    std::pair<char const*, Query> const queries[] = {
        {"get_bbox", [&](auto& m) { return list(m.get_bbox()); }},
        {"get_bbox_at", [&](auto& m) { return list(m.get_bbox_at(ctx, 0.5)); }},
        {"get_shading_group_names",
         [](auto& m) { return Numbers{double(m.get_shading_group_names()[0].get_length())}; }},
        {"get_shading_group_bbox", [&](auto& m) { return list(m.get_shading_group_bbox(0)); }},
        {"get_primitive_indices",
         [](auto& m) {
             CoreArray<unsigned int> indices;
             m.get_primitive_indices(indices);
             return Numbers(indices.begin(), indices.end());
         }},
        {"flags",
         [](auto& m) {
             return Numbers{double(m.is_animated()),
                            double(m.is_geometry_linear()),
                            double(m.is_primitive_linear(1)),
                            double(m.is_primitive_edge_linear(1, 0)),
                            double(m.is_primitive_uv_mapped(1, 0)),
                            double(m.is_primitive_uv_mapped(1, 1)),
                            double(m.is_primitive_edge_visible(2, 0)),
                            double(m.is_primitive_edge_visible(3, 0))};
         }},
        {"counts",
         [](auto& m) {
             return Numbers{double(m.get_vertex_count()),
                            double(m.get_primitive_count()),
                            double(m.get_primitive_edge_count(1)),
                            double(m.get_primitive_shading_group_index(1)),
                            double(m.get_uv_map_count()),
                            double(m.get_color_map_count()),
                            double(m.get_point_cloud()->get_point_count())};
         }},
        {"compute_primitive_bbox",
         [&](auto& m) {
             GMathBbox3<double> box;
             m.compute_primitive_bbox(ctx, 3, box);
             return list(box);
         }},
        {"compute_primitive_bbox_at",
         [&](auto& m) {
             GMathBbox3<double> box;
             m.compute_primitive_bbox_at(ctx, 3, 0.5, box);
             return list(box);
         }},
        {"areas",
         [&](auto& m) {
             return Numbers{m.estimate_area(ctx, identity),
                            m.estimate_primitive_area(ctx, 1, identity),
                            m.estimate_shading_group_area(ctx, 0, identity)};
         }},
        {"uv maps",
         [&](auto& m) {
             CoreArray<GMathVec3<float>> values;
             CoreArray<unsigned int> indices;
             bool const is_there = m.get_uv_map_data(0, values, indices);
             return list_map(is_there, values, indices);
         }},
        {"polygon uv maps",
         [&](auto& m) {
             GeometryUvMap map;
             bool const is_there = m.get_polygon_uv_map(0, map, true);
             return list_map(is_there, map.values, map.indices);
         }},
        {"color maps",
         [&](auto& m) {
             CoreArray<GMathVec4<unsigned char>> values;
             CoreArray<unsigned int> indices;
             bool const is_there = m.get_color_map_data(0, values, indices);
             return list_map(is_there, values, indices);
         }},
        {"polygon color maps",
         [&](auto& m) {
             GeometryColorMap map;
             bool const is_there = m.get_polygon_color_map(0, map, true);
             return list_map(is_there, map.values, map.indices);
         }},
        {"compute_fragment_uvw",
         [&](auto& m) {
             GMathVec3<double> uvw, ds, dt;
             m.compute_fragment_uvw(ctx, fragment, 0, uvw, ds, dt);
             return Numbers{uvw.x, uvw.y, ds.x, ds.y, dt.x, dt.y};
         }},
        {"compute_edge_uvw",
         [&](auto& m) {
             GMathVec3<double> uvw;
             m.compute_edge_uvw(ctx, 1, 2, 0, 0.25, uvw);
             return Numbers{uvw.x, uvw.y, uvw.z};
         }},
        {"compute_fragment_color",
         [&](auto& m) {
             GMathVec4<float> color;
             m.compute_fragment_color(ctx, fragment, 0, color);
             return Numbers{color.x, color.y, color.z, color.w};
         }},
        {"rays",
         [&](auto& m) {
             GeometryRay ray;
             ray.ray = GMathBasicRay({1.5, 0.5, 1}, {0, 0, -1});
             GeometryHit hit;
             GeometryRaytraceCtx rays(&ray, &hit, 1);
             m.intersect_primitive(ctx, 1, rays);
             return Numbers{double(hit.primitive_index), hit.s, hit.t, hit.distance};
         }},
        {"frustum",
         [&](auto& m) {
             GeometryFrustumCtx frustum;
             m.intersect_primitive(ctx, 1, frustum);
             return Numbers{double(frustum.accepted_count), double(frustum.is_rejected)};
         }},
    };
    PolyMesh mesh;
    set_row(mesh);
    PolyMeshSmoothed smoothed;
    smoothed.set(mesh, 30, none, nullptr);
    for (auto const& [name, query] : queries) {
        EXPECT_EQ(query(smoothed), query(mesh)) << name;
    }
    EXPECT_EQ(&smoothed.get_uv_map_name(0), &mesh.get_uv_map_name(0));
    EXPECT_EQ(&smoothed.get_color_map_name(0), &mesh.get_color_map_name(0));
    EXPECT_FALSE(smoothed.is_serializable());
    EXPECT_FALSE(smoothed.set_point_cloud(*mesh.get_point_cloud(), nullptr));
    EXPECT_EQ(&smoothed.get_class_info(), &PolyMeshSmoothed::class_info());
    EXPECT_EQ(smoothed.get_class_info().get_parent(), &PolyMeshBase::class_info());
}

TEST(PolyMeshSmoothed, ShowsItsOwnMapOrOneOfTheMesh) {
    PolyMesh mesh;
    set_row(mesh);
    PolyMeshSmoothed smoothed;
    smoothed.set(mesh, 30.5, 2, nullptr);  // the mesh has maps 0 and 1
    EXPECT_EQ(smoothed.get_normal_map_count(), 1u);
    EXPECT_EQ(smoothed.get_normal_map_name(7), CoreString("smoothing_angle=30.5"));
    CoreArray<GMathVec3<float>> own, imported;
    CoreArray<unsigned int> indices;
    ASSERT_TRUE(smoothed.get_normal_map_data(7, own, indices));
    EXPECT_EQ(indices.get_count(), mesh.get_primitive_index_count());

    smoothed.set(mesh, 30.5, 1, nullptr);
    EXPECT_EQ(smoothed.get_normal_map_count(), 2u);
    EXPECT_EQ(smoothed.get_normal_map_name(1), CoreString("tilted"));
    EXPECT_FALSE(smoothed.get_normal_map_data(2, imported, indices));
    ASSERT_TRUE(smoothed.get_polygon_normal_map_data(1, imported, indices));
    EXPECT_NEAR(imported[0].x, 0.7071, 1e-3);

    GeometryFragment fragment;
    fragment.primitive_index = 0;
    GeometrySample sample;
    smoothed.compute_fragment_sample(CtxEval(), fragment, sample);
    EXPECT_NEAR(sample.get_normal().x, 0.7071, 1e-3);
    smoothed.set(mesh, 0, none, nullptr);  // flat, as every corner is now
    smoothed.compute_fragment_sample(CtxEval(), fragment, sample);
    EXPECT_EQ(sample.get_normal(), (GMathVec3<float>(0, 0, 1)));
    fragment = {3, none, 0, 0, 0, 0};
    smoothed.compute_fragment_sample(CtxEval(), fragment, sample);
    EXPECT_EQ(sample.get_kind(), GeometrySample::KIND_POINT);
    fragment.point_index = none;
    smoothed.compute_fragment_sample(CtxEval(), fragment, sample);
    EXPECT_EQ(sample.get_kind(), GeometrySample::KIND_NONE);
}

TEST(PolyMeshSmoothed, TellsCornersAtATime) {
    PolyMesh mesh;
    set_row(mesh);
    PolyMeshSmoothed smoothed;
    smoothed.set(mesh, 30, none, nullptr);
    GMathVec3<double> corners[4];
    EXPECT_EQ(smoothed.get_primitive_vertices(CtxEval(), {1, 0.5}, corners), 4u);
    EXPECT_EQ(corners[2], (GMathVec3<double>(2, 1, 0.5)));
    EXPECT_EQ(smoothed.get_primitive_vertices(CtxEval(), {0, 5e-9}, corners), 3u);
    EXPECT_EQ(corners[1], (GMathVec3<double>(1, 0, 0)));
    EXPECT_EQ(smoothed.get_primitive_vertices(CtxEval(), {none, 0}, corners), 0u);
}

TEST(PolyMeshSmoothed, CopiesDeepAndAssignsShared) {
    std::unique_ptr<PolyMesh> const mesh(PolyHelpers::create_poly_sphere(8, 8, {1, 1, 1}));
    PolyMeshSmoothed smoothed;
    smoothed.set(*mesh, 10, 5, nullptr);
    PolyMeshNormalMap const* const own = smoothed.get_current_normal_map();

    std::unique_ptr<PolyMeshSmoothed> const copy(smoothed.get_copy());
    EXPECT_EQ(copy->get_poly_mesh(), mesh.get());
    EXPECT_EQ(copy->get_normal_map_index(), none);
    EXPECT_NE(copy->get_current_normal_map(), own);
    EXPECT_EQ(copy->get_current_normal_map()->normals.get_count(), own->normals.get_count());
    EXPECT_EQ(copy->get_memory_size(), smoothed.get_memory_size());

    // Never destroyed: both would free the one map. What the target held is freed by hand.
    alignas(PolyMeshSmoothed) unsigned char storage[sizeof(PolyMeshSmoothed)];
    auto* const assigned = new (storage) PolyMeshSmoothed;
    assigned->set(*mesh, 10, 5, nullptr);
    std::unique_ptr<PolyMeshNormalMap const> const leaked(assigned->get_current_normal_map());
    *assigned = smoothed;
    EXPECT_EQ(assigned->get_current_normal_map(), own);
    EXPECT_EQ(assigned->get_normal_map_index(), 5u);

    smoothed.set(*mesh, 10, 0, nullptr);
    PolyMeshSmoothed const other(smoothed);
    EXPECT_EQ(other.get_current_normal_map(), &mesh->get_geometry().normal_maps[0]);
}

TEST(PolyMeshSmoothed, RemembersAMeshWithoutPrimitives) {
    PolyMesh const empty;
    PolyMeshSmoothed smoothed;
    smoothed.set(empty, 30, 3, nullptr);
    EXPECT_EQ(smoothed.get_poly_mesh(), &empty);
    EXPECT_EQ(smoothed.get_current_normal_map(), nullptr);
    EXPECT_EQ(smoothed.get_normal_map_index(), none);
    EXPECT_EQ(smoothed.get_normal_map_count(), 0u);
}

}  // namespace
