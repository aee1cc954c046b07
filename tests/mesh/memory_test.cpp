#include <tests/log_capture.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

namespace {

// A row with maps: its sizes are counted by hand below.
void fill(PolyMesh& mesh) {
    Shape shape = make_row();
    Numbers const corners{0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2};
    Points const values{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    shape.velocities = shape.positions;
    shape.uv_maps = {make_map<GeometryUvMap>("uv", shape.positions),
                     make_map<GeometryUvMap>("st", values, corners)};
    shape.color_maps = {make_map<GeometryColorMap>(
        "c", std::vector<GMathVec4<unsigned char>>(3, {1, 2, 3, 4}), corners)};
    shape.normal_maps = {make_map<GeometryNormalMap>("n", Points(8, {1, 0, 0}))};
    shape.set(mesh);
}

// Packed arrays: 28 + 7 + the bytes of count * width bits.
constexpr unsigned int packed_sizes = 37 + 41 + 36 + 40 + 37 + 37 + 36;
constexpr unsigned int uv_size =
    16 + (16 + 28 + 8 * 6 + 24 + 24 + 2) + (16 + 28 + 3 * 6 + 24 + 24 + 2 + 38);
constexpr unsigned int color_size = 28 + 3 * 4 + 24 + 1 + 38;
constexpr unsigned int normal_size = 16 + (43 + 16 + 28 + 8 * 6 + 1);

}  // namespace

TEST(MeshMemory, CountsWhatTheMeshOwns) {
    PolyMesh mesh;
    unsigned long long const names_size = 16;
    EXPECT_EQ(mesh.get_memory_size(), mesh.get_point_cloud()->get_memory_size() + 128 +
                                          (7 * 16 + 16 + names_size + 12 + 16) +
                                          (16 + 16 + 16 + 24));
    fill(mesh);
    unsigned long long const topology_size =
        packed_sizes + (28 + 5) + (28 + 16 + 3 + 16 + 4) + 12 + uv_size + color_size;
    unsigned long long const geometry_size = normal_size + (28 + 24) + (28 + 16) + 24;
    EXPECT_EQ(mesh.get_memory_size(),
              mesh.get_point_cloud()->get_memory_size() + 128 + topology_size + geometry_size);
    PolyMesh copy(mesh);
    unsigned long long const object_size = sizeof(GeometryPointCloud) + 128;
    EXPECT_EQ(copy.get_memory_size(), object_size);
    copy.set_creases(CoreArray<int>(10), CoreArray<float>(5));  // creases do not count
    EXPECT_EQ(copy.get_memory_size(), object_size + topology_size);
    copy.set_normal_maps({}, nullptr);
    EXPECT_EQ(copy.get_memory_size(),
              object_size + topology_size + geometry_size - normal_size + 16);
}

TEST(MeshStats, AreWrittenAtLevel3) {
    PolyMesh mesh;
    fill(mesh);
    LogCapture capture(2);
    mesh.print_stats();
    EXPECT_EQ(capture.take(), "");
    CoreLogHandler::get_main().set_level(3);
    mesh.print_stats();
    std::string const cloud_size = std::to_string(mesh.get_point_cloud()->get_memory_size());
    EXPECT_EQ(capture.take(), "3 POINT CLOUD: " + cloud_size +
                                  "\n"
                                  "3   support_geometries:         180\n"
                                  "3   geometry_indices:           16\n"
                                  "3   primitive_indices:          38\n"
                                  "3   primitive_uvs:              32\n"
                                  "3   positions:                  96\n"
                                  "3   normals:                    48\n"
                                  "3   velocities:                 96\n"
                                  "3 TOPOLOGY: 652\n"
                                  "3   polygon_vertex_count:       37\n"
                                  "3   polygon_vertex_indices:     41\n"
                                  "3   polygon_shading_groups:     36\n"
                                  "3   triangle_indices:           40\n"
                                  "3   primitive_index_offsets:    37\n"
                                  "3   primitive_polygon_indices:  37\n"
                                  "3   primitive_shading_groups:   36\n"
                                  "3   primitive_infos:            33\n"
                                  "3   shading_group_names:        47\n"
                                  "3   uv_maps:                    308\n"
                                  "3     count:                    2\n"
                                  "3     polygon_indices:          38\n"
                                  "3     vertices:                 202\n"
                                  "3 GEOMETRY: 204\n"
                                  "3   shading_group_bbox:         52\n"
                                  "3   normal_maps:                152\n"
                                  "3     count:                    1\n"
                                  "3     polygon_indices:          43\n"
                                  "3     normals:                  76\n");
    PolyMesh empty;
    empty.print_stats();
    std::string const text = capture.take();
    EXPECT_NE(text.find("3 TOPOLOGY: 160\n"), text.npos);
    EXPECT_NE(text.find("3   normal_maps:                16\n3     count:                    0\n"),
              text.npos);
}
