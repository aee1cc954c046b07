#include <poly/mesh/mesh_invariants.h>
#include <tests/log_capture.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

namespace {

Core128BitHashKey get_key(Shape const& shape) {
    PolyMesh mesh;
    shape.set(mesh);
    return mesh.get_hash_key();
}

// The tasks that a bar shows while a mesh is filled, each where its last step ends.
std::string get_tasks(Shape const& shape) {
    struct Record {
        std::string tasks;
        std::string label;
        double value = 0.0;
    } record;
    AppProgressBar bar("set");
    bar.set_callback(
        [](void* user, AppProgressBar const& shown) {
            auto& seen = *static_cast<Record*>(user);
            std::string const label(shown.get_label().get_view());
            if (label != seen.label && !seen.label.empty()) {
                char end[32];
                std::snprintf(end, sizeof end, " %.2f, ", seen.value);
                seen.tasks += seen.label + end;
            }
            seen.label = label;
            seen.value = shown.get_value();
            return true;
        },
        &record);
    bar.start();
    PolyMesh mesh;
    shape.set(mesh, &bar);
    bar.finish();
    return record.tasks;
}

}  // namespace

TEST(PolyMeshSet, ReportsItsStepsByWeight) {
    Shape shape = make_soup(2);
    std::string const end = "build support info 0.80, compute vertices bbox 0.86, "
                            "compute shading group bboxes 1.00, ";
    EXPECT_EQ(get_tasks(shape), "build primitives 0.40, update normals 0.55, normal 0.70, " + end);
    shape.normal_maps.clear();
    EXPECT_EQ(get_tasks(shape), "build primitives 0.50, update normals 0.70, " + end);
}

TEST(PolyMeshSet, ReplacesWhatTheMeshHeld) {
    PolyMesh mesh;
    EXPECT_EQ(find_broken_invariant(mesh), "");
    EXPECT_EQ(mesh.get_hash_key(), CoreHash::null_key());
    mesh.set_creases(CoreArray<int>(2), {});
    make_soup(1).set(mesh);
    EXPECT_EQ(find_broken_invariant(mesh), "");
    EXPECT_TRUE(mesh.is_animated());
    Shape square = make_square();
    square.velocities.resize(3);  // as many as there are vertices, or none
    square.set(mesh);
    EXPECT_EQ(find_broken_invariant(mesh), "");
    EXPECT_EQ(mesh.get_normal_map_count() + mesh.get_uv_map_count() + mesh.get_color_map_count(),
              0u);
    EXPECT_FALSE(mesh.is_animated());
    EXPECT_EQ(mesh.get_polygon_creases_indice().get_count(), 2u);  // its own topology keeps them
}

TEST(PolyMeshSet, TakesItsOwnPositionsAndNames) {
    PolyMesh mesh;
    make_row().set(mesh);
    Numbers const triangle{0, 1, 2};
    Numbers const count{3};
    Numbers const group{0};
    mesh.set(mesh.get_point_cloud()->get_data().positions, {}, view(triangle), view(count),
             view(group), mesh.get_shading_group_names(), {}, {}, {}, true, nullptr);
    EXPECT_EQ(find_broken_invariant(mesh), "");
    EXPECT_EQ(mesh.get_vertex_count(), 8u);
    EXPECT_EQ(mesh.get_shading_group_names()[0], "all");
}

TEST(PolyMeshSet, RefusesPolygonsThatNameWhatIsNotThere) {
    struct Row {
        char const* name;
        std::function<void(Shape&)> spoil;
    };
    Row const rows[] = {
        {"no positions", [](Shape& shape) { shape.positions.clear(); }},
        {"a vertex too far", [](Shape& shape) { shape.vertex_indices[11] = 8; }},
        {"an absent vertex", [](Shape& shape) { shape.vertex_indices[0] = 0xFFFFFFFF; }},
        {"a corner too few", [](Shape& shape) { shape.vertex_indices.pop_back(); }},
        {"a sum beyond 32 bits", [](Shape& shape) { shape.vertex_count[0] = 0xFFFFFFFC; }},
        {"a group too few",
         [](Shape& shape) {
             shape.groups = {0, 0};
         }},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        Shape shape = make_row();
        PolyMesh mesh;
        shape.set(mesh);
        row.spoil(shape);
        LogCapture capture(2);
        shape.set(mesh);
        EXPECT_EQ(capture.take(), "2 PolyMesh.set: The polygons name vertices, corners or groups "
                                  "that are not there.\n");
        EXPECT_EQ(mesh.get_polygon_count(), 0u);
        EXPECT_EQ(mesh.get_hash_key(), CoreHash::null_key());
        EXPECT_EQ(find_broken_invariant(mesh), "");
    }
}

// Keys computed apart from this library, from the bytes of the arrays.
TEST(PolyMeshSet, MakesItsKeyOfPositionsVelocitiesAndPolygons) {
    Shape const square = make_square();
    Core128BitHashKey const key = get_key(square);
    EXPECT_EQ(key, (Core128BitHashKey{{0xbd09912b3ed0e765ull, 0x89af5525521730a8ull}}));
    struct Row {
        char const* name;
        std::function<void(Shape&)> change;
        bool changes_key;
    };
    Row const rows[] = {
        {"position", [](Shape& shape) { shape.positions[3].z = -0.0f; }, true},
        {"velocities",
         [](Shape& shape) {
             shape.velocities.resize(4, {0, 0, 0});
         },
         true},
        {"ignored velocities",
         [](Shape& shape) {
             shape.velocities.resize(1, {0, 0, 0});
         },
         true},
        {"unused corner", [](Shape& shape) { shape.vertex_indices.push_back(0); }, true},
        {"count", [](Shape& shape) { shape.vertex_count[0] = 3; }, true},
        {"group", [](Shape& shape) { shape.groups = {1}; }, true},
        {"name", [](Shape& shape) { shape.names = {"other"}; }, false},
        {"maps",
         [](Shape& shape) {
             shape.uv_maps = {make_map<GeometryUvMap>("uv", shape.positions)};
             shape.normal_maps = {make_map<GeometryNormalMap>("n", shape.positions)};
         },
         false},
        {"kept quads", [](Shape& shape) { shape.check_quads = false; }, false},
    };
    for (Row const& row : rows) {
        Shape shape = square;
        row.change(shape);
        EXPECT_EQ(get_key(shape) != key, row.changes_key) << row.name;
    }
    Shape moving = square;
    moving.velocities = {{1, 2, 3}};
    EXPECT_EQ(get_key(moving), (Core128BitHashKey{{0x180a7bc4e881444bull, 0x692eae550571cddcull}}));
}
