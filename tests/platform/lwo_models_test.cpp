#include <tests/platform/lwo_builder.h>
#include <tests/platform/model_list.h>

#include <platform/qz_lwo.h>
#include <platform/qz_obj.h>

#include <gtest/gtest.h>

#include <cstdlib>

// Published objects, by a list of what is in them.

namespace {

using namespace lwo_building;

double compute_volume(LwoMesh const& mesh) {
    double volume = 0.0;
    unsigned int const* corners = mesh.polygon_vertex_indices.get_data();
    for (unsigned int const& count : mesh.polygon_vertex_count) {
        GMathVec3<double> const a(mesh.positions[corners[count - 1]]);  // the first as stored
        for (unsigned int i = 1; i + 1 < count; ++i) {
            GMathVec3<double> const b(mesh.positions[corners[i - 1]]);
            GMathVec3<double> const c(mesh.positions[corners[i]]);
            volume += gmath_dot(a, gmath_cross(b, c)) / 6.0;
        }
        corners += count;
    }
    return volume;
}

// The list tells the arrays as they are stored.
std::string describe_stored_arrays(LwoMesh const& mesh) {
    CoreArray<GMathVec3<float>> positions(mesh.positions);
    CoreArray<unsigned int> corners(mesh.polygon_vertex_indices);
    for (GMathVec3<float>& position : positions) {
        position.z = -position.z;
    }
    unsigned int* first = corners.get_data();
    for (unsigned int const& count : mesh.polygon_vertex_count) {
        std::reverse(first, first + count);
        first += count;
    }
    return get_crc32(positions) + " " + get_crc32(corners);
}

// "U 24; V 3; ": values by map. `list` has chunks, "VMAP TXUV 2 U 20; VMAD TXUV 2 U 4; ...".
std::string sum_values(std::string const& list, std::string const& type) {
    std::string text;
    std::map<std::string, unsigned long> sums;
    for (std::string const& chunk_text : split(list, "; ")) {
        if (chunk_text.find(type) == 5) {
            std::size_t const name_end = chunk_text.rfind(' ');
            std::string const name = chunk_text.substr(12, name_end - 12);
            sums[name] += std::stoul(chunk_text.substr(name_end));
        }
    }
    for (auto const& [name, sum] : sums) {
        text.append(name).append(" ").append(std::to_string(sum)).append("; ");
    }
    return text;
}

template <typename Map>
std::string describe_maps(CoreArray<Map> const& maps) {
    std::string text;
    for (Map const& map : maps) {
        text.append(map.name.get_view()).append(" ");
        text.append(std::to_string(map.values.get_count())).append("; ");
    }
    return text;
}

// The list shows only the first groups of many.
void expect_groups(std::string const& listed, LwoMesh const& mesh) {
    std::string const shown = listed.substr(0, listed.find(", ..."));
    std::string const all = describe_groups(mesh.shading_group_names, mesh.polygon_shading_groups);
    EXPECT_EQ(listed == shown ? all : all.substr(0, shown.size()), shown);
}

TEST(LwoModels, AreAsListed) {
    char const* const folder = std::getenv("QZ_POLY_MODELS");
    if (!folder) {
        GTEST_SKIP() << "QZ_POLY_MODELS names no folder";
    }
    auto const rows = read_model_rows(folder, "| file | form | points");
    EXPECT_GT(rows.size(), 40u);
    for (std::vector<std::string> const& row : rows) {
        SCOPED_TRACE(row[0]);
        std::string const path = folder + ("/lwo/" + row[0]);
        bool const is_refused = row[1].ends_with("refused");
        EXPECT_EQ(Lwo::is_valid(path.c_str()), !is_refused);
        Loaded const loaded = load_file(path);
        LwoMesh const& mesh = loaded.mesh;
        EXPECT_EQ(loaded.is_good, !is_refused) << loaded.log;
        if (is_refused || !loaded.is_good) {
            continue;
        }
        EXPECT_EQ(std::to_string(mesh.positions.get_count()), row[2]);
        EXPECT_EQ(describe_faces(mesh.polygon_vertex_count), row[3]);
        EXPECT_EQ(std::to_string(mesh.polygon_vertex_indices.get_count()), row[4]);
        expect_groups(row[6], mesh);
        // The map of this model has values for unused points only.
        bool const is_map_used = !row[0].ends_with("-ngon2.lwo");
        EXPECT_EQ(describe_maps(mesh.uv_maps), is_map_used ? sum_values(row[7], "TXUV") : "");
        EXPECT_EQ(describe_maps(mesh.normal_maps), sum_values(row[7], "NORM"));
        double const volume = std::stod(row[8]);
        EXPECT_NEAR(compute_volume(mesh), volume, 1e-5 * std::abs(volume) + 1e-5);
        EXPECT_EQ(describe_stored_arrays(mesh), row[9]);
    }
}

// The path of the model whose name ends with `name_end`.
std::string find_model(std::string const& folder, std::string const& format,
                       std::string const& name_end) {
    for (std::vector<std::string> const& row : read_model_rows(folder, "| file |")) {
        if (row[0].ends_with(name_end)) {
            return folder + "/" + format + "/" + row[0];
        }
    }
    return {};
}

// One polygon that was exported to both formats.
TEST(LwoModels, AreTheSameInBothFormats) {
    char const* const folder = std::getenv("QZ_POLY_MODELS");
    if (!folder) {
        GTEST_SKIP() << "QZ_POLY_MODELS names no folder";
    }
    std::string const path = find_model(folder, "obj", "-concave_polygon.obj");
    LwoMesh obj;
    CoreArray<GeometryColorMap> color_maps;
    ResourceImportData* import_data = nullptr;
    ASSERT_TRUE(Obj::load(path.c_str(), obj.positions, obj.polygon_vertex_indices,
                          obj.polygon_vertex_count, obj.polygon_shading_groups,
                          obj.shading_group_names, obj.uv_maps, obj.normal_maps, color_maps,
                          import_data, nullptr));
    delete import_data;
    Loaded const loaded = load_file(find_model(folder, "lwo", "-concave_polygon.lwo"));
    LwoMesh const& lwo = loaded.mesh;
    ASSERT_EQ(get_crc32(lwo.polygon_vertex_indices), get_crc32(obj.polygon_vertex_indices));
    ASSERT_EQ(lwo.positions.get_count(), obj.positions.get_count());
    auto const distance = [](GMathVec3<float> const& a, GMathVec3<float> const& b) {
        return gmath_length(a - b);
    };
    for (unsigned int i = 0; i < obj.positions.get_count(); ++i) {
        EXPECT_LT(distance(lwo.positions[i], obj.positions[i]), 3e-7f) << i;
    }
    for (GMathVec3<float> const& normal_of_corner : lwo.normal_maps[0].values) {
        EXPECT_LT(distance(normal_of_corner, obj.normal_maps[0].values[0]), 1e-5f);
    }
}

}  // namespace
