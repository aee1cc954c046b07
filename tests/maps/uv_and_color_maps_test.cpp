#include <poly/mesh/mesh_invariants.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr unsigned int absent = 0xFFFFFFFFu;

using Colors = std::vector<GMathVec4<unsigned char>>;
using Mode = PolyMesh::CompressionMode;
using enum PolyMeshTopology::CompressionMode;

Numbers take(CoreArray<unsigned int> const& values) { return {values.begin(), values.end()}; }

// One polygon of `count` corners, the first two of which are `gap` apart in the uv map; the others
// run on along u = 1.
Shape make_ring(unsigned int const& count, float const& gap) {
    Shape shape;
    for (unsigned int i = 0; i < count; ++i) {
        shape.vertex_indices.push_back(i);
        shape.positions.push_back({i < 2 ? gap * static_cast<float>(i) : 1.0f,
                                   i < 2 ? 0.0f : static_cast<float>(i) / static_cast<float>(count),
                                   0.0f});
    }
    shape.vertex_count = {count};
    shape.uv_maps = {make_map<GeometryUvMap>("uv", shape.positions)};
    return shape;
}

}  // namespace

TEST(Maps, AreKeptByCornerOrByVertexOrDropped) {
    struct Row {
        unsigned int value_count;
        unsigned int index_count;
        bool is_kept;
        bool goes_by_corner;
    };
    // For 8 vertices and 12 corners.
    Row const rows[] = {{8, 0, true, false},  {8, 12, true, true},   {3, 12, true, true},
                        {3, 0, false, false}, {3, 11, false, false}, {8, 11, true, false},
                        {0, 12, false, true}, {0, 0, false, false}};
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::Message() << row.value_count << " " << row.index_count);
        Points const values(row.value_count, {0.5f, 0.25f, 1});
        Colors const colors(row.value_count, {1, 2, 3, 4});
        Numbers const indices(row.index_count, 2);
        Shape shape = make_row();
        shape.uv_maps = {make_map<GeometryUvMap>("no", Points(1)),
                         make_map<GeometryUvMap>("uv", values, indices)};
        shape.color_maps = {make_map<GeometryColorMap>("color", colors, indices)};
        shape.normal_maps = {make_map<GeometryNormalMap>("normal", values, indices)};
        PolyMesh mesh;
        shape.set(mesh);
        ASSERT_EQ(mesh.get_uv_map_count(), row.is_kept ? 1u : 0u);
        ASSERT_EQ(mesh.get_color_map_count(), mesh.get_uv_map_count());
        ASSERT_EQ(mesh.get_normal_map_count(), mesh.get_uv_map_count());
        EXPECT_EQ(find_broken_invariant(mesh), "");
        CoreArray<GeometryUvMap> uv_maps;
        CoreArray<GeometryColorMap> color_maps;
        mesh.get_polygon_uv_maps(uv_maps, false);
        mesh.get_polygon_color_maps(color_maps, false);
        CoreArray<GMathVec3<float>> read(1);
        CoreArray<unsigned int> read_indices(1);
        EXPECT_FALSE(mesh.get_uv_map_data(1, read, read_indices));
        EXPECT_FALSE(mesh.get_polygon_normal_map_data(1, read, read_indices));
        EXPECT_EQ(read.get_count() + read_indices.get_count(), 2u);
        if (row.is_kept) {
            EXPECT_EQ(uv_maps[0].name, "uv");
            Numbers const expected = row.goes_by_corner ? indices : Numbers();
            EXPECT_EQ(take(uv_maps[0].indices), expected);
            EXPECT_EQ(take(color_maps[0].indices), expected);
            EXPECT_EQ(color_maps[0].values[2], colors[2]);
            mesh.get_polygon_uv_maps(uv_maps, true);
            EXPECT_EQ(take(uv_maps[0].indices),
                      row.goes_by_corner ? indices : make_row().vertex_indices);
        }
    }
}

TEST(Maps, TreatIndicesThatNameNoValue) {
    Shape shape = make_row();
    Numbers const indices{0, 1, 2, 3, 4, 9, absent, 0, 0, 1, 1, 2};  // of 3 values
    Numbers const cleared{0, 1, 2, 3, absent, absent, absent, 0, 0, 1, 1, 2};
    shape.uv_maps = {make_map<GeometryUvMap>("uv", Points(3, {1, 1, 1}), indices)};
    shape.color_maps = {make_map<GeometryColorMap>("color", Colors(3), indices)};
    PolyMesh mesh;
    shape.set(mesh);
    CoreArray<GMathVec3<float>> values;
    CoreArray<GMathVec4<unsigned char>> colors;
    CoreArray<unsigned int> read;
    EXPECT_TRUE(mesh.get_polygon_uv_map_data(0, values, read, false));
    EXPECT_EQ(take(read), cleared);
    EXPECT_TRUE(mesh.get_polygon_color_map_data(0, colors, read, false));
    EXPECT_EQ(take(read), indices);
    // By primitive: the triangle, the square, and the pentagon's three triangles.
    EXPECT_TRUE(mesh.get_uv_map_data(0, values, read));
    EXPECT_EQ(take(read), Numbers({0, 1, 2, 3, absent, absent, absent, 0, 0, 1, 1, 2, 0, 1, 1, 0}));
    EXPECT_TRUE(mesh.get_color_map_data(0, colors, read));
    EXPECT_EQ(take(read), Numbers({0, 1, 2, 3, 4, 9, absent, 0, 0, 1, 1, 2, 0, 1, 1, 0}));
    EXPECT_TRUE(mesh.is_primitive_uv_mapped(0, 0));
    EXPECT_FALSE(mesh.is_primitive_uv_mapped(1, 0));
    EXPECT_TRUE(mesh.is_primitive_uv_mapped(4, 0));
    EXPECT_FALSE(mesh.is_primitive_uv_mapped(0, 1));
}

TEST(UvCompression, DependsOnModeAndShortEdges) {
    Shape same = make_ring(100, 0.0f);
    same.uv_maps = {make_map<GeometryUvMap>("uv", Points(100, {3, 4, 0}))};
    struct Row {
        char const* name;
        Shape shape;
        Mode mode;
        bool is_compressed;
    };
    Row const rows[] = {
        {"1 of 100, plain", make_ring(100, 0.0f), COMPRESSION_NONE, false},
        {"1 of 100", make_ring(100, 0.0f), COMPRESSION_QUANTISED, true},
        {"1 of 100", make_ring(100, 0.0f), COMPRESSION_AUTOMATIC, false},
        {"1 of 101", make_ring(101, 0.0f), COMPRESSION_AUTOMATIC, true},
        {"just short", make_ring(100, 0x0.ffffffp-15f), COMPRESSION_AUTOMATIC, false},
        {"not short", make_ring(100, 0x1p-15f), COMPRESSION_AUTOMATIC, true},
        {"without extent", same, COMPRESSION_AUTOMATIC, true},
    };
    for (Row const& row : rows) {
        PolyMesh mesh;
        mesh.set_uv_map_compression_mode(row.mode);
        row.shape.set(mesh);
        GeometryCompressedVertices const& values = mesh.get_topology().uv_maps[0].values;
        EXPECT_EQ(values.is_compressed(), row.is_compressed) << row.name;
        mesh.set_uv_map_compression_mode(COMPRESSION_NONE);
        EXPECT_EQ(values.is_compressed(), row.is_compressed);  // stored maps stay as they are
    }
}

TEST(UvCompression, TakesTheBoxOfTheValuesInUse) {
    Points const values{{2, 3, 0}, {4, 7, 0}, {-9, 9, std::nanf("")}, {3, 5, 0}};
    float const mid = 2.0f * (32768.0f * (1.0f / 65535.0f));
    struct Row {
        Numbers indices;
        Points expected;
    };
    Row const rows[] = {
        {{0, 1, absent}, {{2, 3, 0}, {4, 7, 0}, {2, 7, 0}, {2 + mid, 3 + 2 * mid, 0}}},
        // None in use: the unit box.
        {{absent, 4, 9}, {{1, 1, 0}, {1, 1, 0}, {0, 1, 0}, {1, 1, 0}}}};
    for (Row const& row : rows) {
        Shape shape = make_triangle();
        shape.uv_maps = {make_map<GeometryUvMap>("uv", values, row.indices)};
        PolyMesh mesh;
        shape.set(mesh);
        CoreArray<GMathVec3<float>> read;
        CoreArray<unsigned int> indices;
        mesh.get_uv_map_data(0, read, indices);
        EXPECT_EQ(Points(read.begin(), read.end()), row.expected);
    }
}
