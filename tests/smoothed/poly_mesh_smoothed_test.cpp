#include <poly/module/poly_helpers.h>
#include <poly/smoothed/poly_mesh_smoothed.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

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

// Answers of queries, one after another.
struct Answers {
    std::vector<double> list;

    template <typename... Numbers>
    void add(Numbers const&... numbers) {
        (list.push_back(static_cast<double>(numbers)), ...);
    }
    void add_box(GMathBbox3<double> const& b) {
        add(b.minimum.x, b.minimum.y, b.minimum.z, b.maximum.x, b.maximum.y, b.maximum.z);
    }
    template <typename Values>
    void add_map(bool const& is_there, Values const& values,
                 CoreArray<unsigned int> const& indices) {
        add(is_there, values.get_count(), values[1].x);
        list.insert(list.end(), indices.begin(), indices.end());
    }
};

std::vector<double> ask_all(PolyMeshBase const& m) {
    CtxEval const ctx;
    GMathMatrix4x4<double> const identity = GMathMatrix4x4<double>::get_identity();
    GeometryFragment const fragment{none, 1, 0.25, 0.5, 0, 0};
    Answers all;
    all.add(m.is_animated(), m.is_geometry_linear(), m.is_primitive_linear(1),
            m.is_primitive_edge_linear(1, 0), m.is_primitive_uv_mapped(1, 0),
            m.is_primitive_uv_mapped(1, 1), m.is_primitive_edge_visible(2, 0),
            m.is_primitive_edge_visible(3, 0), m.get_vertex_count(), m.get_primitive_count(),
            m.get_primitive_edge_count(1), m.get_primitive_shading_group_index(1),
            m.get_uv_map_count(), m.get_color_map_count(), m.get_point_cloud()->get_point_count(),
            m.get_shading_group_names()[0].get_length(), m.estimate_area(ctx, identity),
            m.estimate_primitive_area(ctx, 1, identity),
            m.estimate_shading_group_area(ctx, 0, identity));
    GMathBbox3<double> box;
    all.add_box(m.get_bbox());
    all.add_box(m.get_bbox_at(ctx, 0.5));
    all.add_box(m.get_shading_group_bbox(0));
    m.compute_primitive_bbox(ctx, 3, box);
    all.add_box(box);
    m.compute_primitive_bbox_at(ctx, 3, 0.5, box);
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
    all.add(uvw.x, uvw.y, ds.x, ds.y, dt.x, dt.y);
    m.compute_edge_uvw(ctx, 1, 2, 0, 0.25, uvw);
    m.compute_fragment_color(ctx, fragment, 0, color);
    all.add(uvw.x, uvw.y, uvw.z, color.x, color.y, color.z, color.w);
    GeometryRay ray;
    ray.ray = GMathBasicRay({1.5, 0.5, 1}, {0, 0, -1});
    GeometryHit hit;
    GeometryRaytraceCtx rays(&ray, &hit, 1);
    m.intersect_primitive(ctx, 1, rays);
    GeometryFrustumCtx frustum;
    m.intersect_primitive(ctx, 1, frustum);
    all.add(hit.primitive_index, hit.s, hit.t, hit.distance, frustum.accepted_count,
            frustum.is_rejected);
    return all.list;
}

TEST(PolyMeshSmoothed, AnswersAsItsMesh) {
    PolyMesh mesh;
    set_row(mesh);
    PolyMeshSmoothed smoothed;
    smoothed.set(mesh, 30, none, nullptr);
    EXPECT_EQ(ask_all(smoothed), ask_all(mesh));
    EXPECT_EQ(&smoothed.get_uv_map_name(0), &mesh.get_uv_map_name(0));
    EXPECT_EQ(&smoothed.get_color_map_name(0), &mesh.get_color_map_name(0));
    EXPECT_FALSE(smoothed.is_serializable());
    EXPECT_FALSE(smoothed.set_point_cloud(*mesh.get_point_cloud(), nullptr));
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

    PolyMesh mesh;  // whose map must not be read over the empty mesh
    set_row(mesh);
    smoothed.set(mesh, 30, none, nullptr);
    smoothed.set(empty, 30, none, nullptr);
    CoreArray<GMathVec3<float>> values;
    CoreArray<unsigned int> indices;
    EXPECT_FALSE(smoothed.get_polygon_normal_map_data(0, values, indices));
}

}  // namespace
