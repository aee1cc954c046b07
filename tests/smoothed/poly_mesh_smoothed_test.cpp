#include <poly/module/poly_helpers.h>
#include <poly/smoothed/poly_mesh_smoothed.h>
#include <tests/answers.h>
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

TEST(PolyMeshSmoothed, AnswersAsItsMesh) {
    PolyMesh mesh;
    set_row(mesh);
    PolyMeshSmoothed smoothed;
    smoothed.set(mesh, 30, none, nullptr);
    EXPECT_EQ(ask_all(smoothed, 1, 0.5), ask_all(mesh, 1, 0.5));
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
