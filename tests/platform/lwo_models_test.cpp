#include "lwo_builder.h"

#include <platform/qz_lwo.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

// Published objects, by a list of what is in them. The list tells the arrays as they are stored, so
// z is negated and the polygons are reversed back before they are compared.

namespace {

std::vector<std::string> split(std::string const& line, std::string const& separator) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + separator.size()) {
        end = line.find(separator, begin);
        parts.push_back(line.substr(begin, end - begin));
    }
    return parts;
}

// Rows of the table of LightWave objects: file, form, points, faces, corners, layers, groups, maps,
// volume, checksums, and what checked them.
std::vector<std::vector<std::string>> read_rows(std::string const& folder) {
    std::vector<std::vector<std::string>> rows;
    std::ifstream list(folder + "/MODELS.md");
    bool is_in_table = false;
    for (std::string line; std::getline(list, line);) {
        is_in_table = is_in_table || line.starts_with("| file | form |");
        if (is_in_table && line.starts_with("| ") && !line.starts_with("| file")) {
            rows.push_back(split(line.substr(2), " | "));
        }
    }
    return rows;
}

unsigned int compute_crc32(void const* data, std::size_t const& size) {
    unsigned int crc = 0xFFFFFFFFu;
    for (std::size_t i = 0; i < size; ++i) {
        crc ^= static_cast<unsigned char const*>(data)[i];
        for (unsigned int bit = 0; bit < 8; ++bit) {
            crc = crc >> 1 ^ (crc % 2 != 0 ? 0xEDB88320u : 0u);
        }
    }
    return ~crc;
}

double compute_volume(LwoMesh const& mesh) {
    double volume = 0.0;
    unsigned int const* corners = mesh.corners.get_data();
    for (unsigned int const& count : mesh.polygon_counts) {
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

std::string describe_checksums(LwoMesh const& mesh) {
    CoreArray<GMathVec3<float>> positions(mesh.positions);
    CoreArray<unsigned int> corners(mesh.corners);
    for (GMathVec3<float>& position : positions) {
        position.z = -position.z;
    }
    unsigned int* first = corners.get_data();
    for (unsigned int const& count : mesh.polygon_counts) {
        std::reverse(first, first + count);
        first += count;
    }
    char line[32];
    std::snprintf(line, sizeof line, "%08x %08x",
                  compute_crc32(positions.get_data(), 12ull * positions.get_count()),
                  compute_crc32(corners.get_data(), 4ull * corners.get_count()));
    return line;
}

std::string describe_faces(LwoMesh const& mesh) {
    std::vector<unsigned int> faces(2000);
    for (unsigned int const& count : mesh.polygon_counts) {
        ++faces[count];
    }
    std::string line;
    for (unsigned int i = 0; i < faces.size(); ++i) {
        if (faces[i] != 0) {
            line.append(line.empty() ? "" : " ").append(std::to_string(i));
            line.append(":").append(std::to_string(faces[i]));
        }
    }
    return line;
}

// The list shows the first eight groups of many.
std::string describe_groups(LwoMesh const& mesh) {
    std::string line;
    for (unsigned int i = 0; i < mesh.group_names.get_count(); ++i) {
        if (i == 8 && mesh.group_names.get_count() > 8) {
            line.append(", ... (").append(std::to_string(mesh.group_names.get_count()));
            return line.append(" in all)");
        }
        auto const faces = std::count(mesh.polygon_groups.begin(), mesh.polygon_groups.end(), i);
        line.append(i == 0 ? "" : ", ").append(mesh.group_names[i].get_data());
        line.append(":").append(std::to_string(faces));
    }
    return line;
}

// Adds up the values of a map as "name 9;" for each map that `list` has chunks of, in its order.
std::string sum_values(std::string const& list, std::string const& type) {
    std::vector<std::pair<std::string, unsigned int>> sums;
    for (std::string const& entry : split(list, "; ")) {
        if (entry.find(type) != 5) {
            continue;
        }
        std::size_t const name_begin = std::string("VMAD TXUV 2 ").size();
        std::size_t const name_end = entry.rfind(' ');
        std::string const name = entry.substr(name_begin, name_end - name_begin);
        auto sum = std::find_if(sums.begin(), sums.end(),
                                [&](auto const& known) { return known.first == name; });
        sum = sum == sums.end() ? sums.insert(sum, {name, 0}) : sum;
        sum->second += static_cast<unsigned int>(std::stoul(entry.substr(name_end)));
    }
    std::string line;
    for (auto const& [name, count] : sums) {
        line.append(name).append(" ").append(std::to_string(count)).append(";");
    }
    return line;
}

template <typename Map>
std::string describe_maps(CoreArray<Map> const& maps) {
    std::string line;
    for (Map const& map : maps) {
        line.append(map.name.get_data()).append(" ");
        line.append(std::to_string(map.values.get_count())).append(";");
    }
    return line;
}

// Of "3 Name: 8/6; 4 (unnamed): 266/288", what each named layer gives on its own.
void expect_layers(std::string const& list, Bytes const& bytes) {
    for (std::string const& entry : split(list, "; ")) {
        std::size_t const name_begin = entry.find(' ') + 1;
        std::size_t const name_end = entry.rfind(": ");
        if (name_begin == 0 || entry[name_begin] == '(') {
            continue;
        }
        std::string const name = entry.substr(name_begin, name_end - name_begin);
        Loaded const loaded = load(bytes, name.c_str());
        EXPECT_EQ(std::to_string(loaded.mesh.positions.get_count()) + "/" +
                      std::to_string(loaded.mesh.polygon_counts.get_count()),
                  entry.substr(name_end + 2));
    }
}

// The mean cosine between normals and polygons.
double compute_agreement(LwoMesh const& mesh, GeometryNormalMap const& map) {
    double sum = 0.0;
    unsigned int corner = 0;
    for (unsigned int const& count : mesh.polygon_counts) {
        GMathVec3<float> normal(0, 0, 0);
        for (unsigned int i = 0; i < count; ++i) {
            normal += gmath_cross(mesh.positions[mesh.corners[corner + i]],
                                  mesh.positions[mesh.corners[corner + (i + 1) % count]]);
        }
        for (unsigned int i = 0; i < count; ++i, ++corner) {
            unsigned int const value =
                map.indices.is_empty() ? mesh.corners[corner] : map.indices[corner];
            sum += double(gmath_dot(gmath_unit(normal), gmath_unit(map.values[value])));
        }
    }
    return sum / corner;
}

TEST(LwoModels, HaveWhatTheirListTells) {
    char const* const folder = std::getenv("QZ_POLY_MODELS");
    if (!folder) {
        GTEST_SKIP() << "QZ_POLY_MODELS names no folder of models";
    }
    std::vector<std::vector<std::string>> const rows = read_rows(folder);
    EXPECT_GT(rows.size(), 40u);
    for (std::vector<std::string> const& row : rows) {
        SCOPED_TRACE(row[0]);
        std::string const path = std::string(folder) + "/lwo/" + row[0];
        if (row.size() < 10) {
            EXPECT_FALSE(Lwo::is_valid(path.c_str()));
            continue;
        }
        EXPECT_TRUE(Lwo::is_valid(path.c_str()));
        std::ostringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        Loaded const loaded = load(bytes.str());
        LwoMesh const& mesh = loaded.mesh;
        ASSERT_TRUE(loaded.is_good) << loaded.refusals[0];
        EXPECT_EQ(std::to_string(mesh.positions.get_count()), row[2]);
        EXPECT_EQ(describe_faces(mesh), row[3]);
        EXPECT_EQ(std::to_string(mesh.corners.get_count()), row[4]);
        EXPECT_EQ(describe_groups(mesh), row[6]);
        EXPECT_EQ(describe_checksums(mesh), row[9]);
        double const volume = std::stod(row[8]);
        EXPECT_NEAR(compute_volume(mesh), volume, 1e-5 * std::abs(volume) + 1e-5);
        expect_layers(row[5], bytes.str());
        if (row[0] == "bil-lwo2-ngon2.lwo") {  // its map has values for unused points only
            EXPECT_TRUE(mesh.uv_maps.is_empty());
        } else {
            EXPECT_EQ(describe_maps(mesh.uv_maps), sum_values(row[7], "TXUV"));
        }
        EXPECT_EQ(describe_maps(mesh.normal_maps), sum_values(row[7], "NORM"));
        for (GeometryNormalMap const& map : mesh.normal_maps) {
            EXPECT_GT(compute_agreement(mesh, map), 0.9);
        }
    }
}

}  // namespace
