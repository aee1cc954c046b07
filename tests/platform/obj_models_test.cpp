#include <tests/platform/model_list.h>
#include <tests/platform/obj_testing.h>

#include <algorithm>
#include <cstdlib>

// Published files, by a list of what is in them.

namespace {

// Checksum of one map, or "-", and how many corners have a value of it.
template <typename Map>
std::pair<std::string, std::string> sum_up(CoreArray<Map> const& maps, ObjMesh const& mesh,
                                           std::string const& value_count) {
    if (maps.is_empty()) {
        return {"-", "0"};
    }
    EXPECT_EQ(std::to_string(maps[0].values.get_count()), value_count);
    CoreArray<unsigned int> const& indices =
        maps[0].indices.is_empty() ? mesh.polygon_vertex_indices : maps[0].indices;
    auto const used = std::count_if(indices.begin(), indices.end(),
                                    [](unsigned int const& index) { return index != ~0u; });
    return {get_crc32(indices), std::to_string(used)};
}

std::string to_utf8(std::string const& latin) {
    std::string text;
    for (char const byte : latin) {
        unsigned char const code = static_cast<unsigned char>(byte);
        text += code < 128 ? std::string(1, byte)
                           : std::string{static_cast<char>(0xC0 | code >> 6),
                                         static_cast<char>(0x80 | (code & 0x3F))};
    }
    return text;
}

TEST(ObjModels, AreAsListed) {
    char const* const folder = std::getenv("QZ_POLY_MODELS");
    if (!folder) {
        GTEST_SKIP() << "QZ_POLY_MODELS names no folder";
    }
    // File, points, vt, vn, colored points, faces, corners, corners with uv, with normal, groups,
    // border edges and so on, checksums, and what checked them.
    auto const rows = read_model_rows(folder, "| file | points (v) |");
    ASSERT_GE(rows.size(), 46u);
    for (auto const& row : rows) {
        SCOPED_TRACE(row[0]);
        for (unsigned int const block_size : {1u << 16, 777u}) {
            ObjOutcome const outcome = read_obj_file(folder + ("/obj/" + row[0]), {block_size});
            ASSERT_TRUE(outcome.is_loaded);
            ObjMesh const& mesh = outcome.mesh;
            EXPECT_EQ(std::to_string(mesh.positions.get_count()), row[1]);
            EXPECT_EQ(mesh.color_maps.get_count(), row[4] == "0" ? 0u : 1u);
            EXPECT_EQ(describe_faces(mesh.polygon_vertex_count), row[5]);
            EXPECT_EQ(std::to_string(mesh.polygon_vertex_indices.get_count()), row[6]);
            EXPECT_EQ(
                to_utf8(describe_groups(mesh.shading_group_names, mesh.polygon_shading_groups)),
                row[9]);
            auto const [uv_sum, uv_count] = sum_up(mesh.uv_maps, mesh, row[2]);
            auto const [normal_sum, normal_count] = sum_up(mesh.normal_maps, mesh, row[3]);
            EXPECT_EQ(uv_count, row[7]);
            EXPECT_EQ(normal_count, row[8]);
            std::string const positions =
                row[11].starts_with("non-finite") ? "non-finite" : get_crc32(mesh.positions);
            EXPECT_EQ(positions + " " + get_crc32(mesh.polygon_vertex_indices) + " " + uv_sum +
                          " " + normal_sum,
                      row[11]);
        }
    }
}

}  // namespace
