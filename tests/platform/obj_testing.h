#pragma once

#include <platform/qz_obj.h>
#include <platform/qz_obj/obj_file.h>
#include <tests/scratch_path.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

// What came of reading a text or a file.
struct ObjOutcome {
    bool is_loaded = false;
    ObjMesh mesh;
    std::vector<std::pair<unsigned int, std::string>> messages;  // level and text

    std::string get_refusal() const {
        EXPECT_FALSE(is_loaded);
        EXPECT_EQ(messages.size(), 1u);
        EXPECT_TRUE(messages.empty() || messages[0].first == 2u);
        return messages.empty() ? "" : messages[0].second;
    }
};

inline ObjOutcome read_obj_file(std::string const& path, ObjLimits const& limits = {},
                                AppProgressBar* progress = nullptr) {
    ObjOutcome outcome;
    CoreLogHandler& log = CoreLogHandler::get_main();
    unsigned int const level = log.get_level();
    log.set_level(4);
    log.set_sink(
        [](void* user, unsigned int const& message_level, CoreString const& message) {
            static_cast<ObjOutcome*>(user)->messages.emplace_back(message_level,
                                                                  message.get_data());
        },
        &outcome);
    outcome.is_loaded = obj_read_file(path.c_str(), limits, progress, outcome.mesh);
    log.set_sink(nullptr, nullptr);
    log.set_level(level);
    return outcome;
}

inline std::string get_obj_path() { return get_scratch_path(".obj"); }

inline std::string write_obj(std::string const& text) {
    std::string const path = get_obj_path();
    std::filesystem::remove(path);  // to cut a file short would wait for the disk
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

inline ObjOutcome read_obj(std::string const& text, ObjLimits const& limits = {}) {
    return read_obj_file(write_obj(text), limits);
}

// Numbers of an array, as text.
template <typename T>
std::string join(CoreBasicArray<T> const& values) {
    CoreString text;
    for (T const& value : values) {
        text.append(text.is_empty() ? "" : " ");
        value == static_cast<T>(~0u) ? text.append("-") : text.append(value);
    }
    return text.get_data();
}

inline std::string join_vectors(CoreArray<GMathVec3<float>> const& values) {
    std::string text;
    for (GMathVec3<float> const& value : values) {
        text += (text.empty() ? "" : ", ") + join(CoreBasicArray<float>(&value.x, 3));
    }
    return text;
}

// The mesh in short: parts that are there, each behind its name.
inline std::string describe(ObjMesh const& mesh) {
    std::string text = "v " + join_vectors(mesh.positions);
    if (text == "v 0 0 0, 1 0 0, 1 1 0, 0 1 0") {
        text = "square";
    }
    unsigned int corner = 0;
    for (unsigned int const count : mesh.polygon_vertex_count) {
        CoreBasicArray<unsigned int> const corners(mesh.polygon_vertex_indices.get_data() + corner,
                                                   count);
        text += "; f " + join(corners);
        corner += count;
    }
    EXPECT_EQ(corner, mesh.polygon_vertex_indices.get_count());
    EXPECT_EQ(mesh.polygon_shading_groups.get_count(), mesh.polygon_vertex_count.get_count());
    for (GeometryUvMap const& map : mesh.uv_maps) {
        text += "; " + std::string(map.name.get_data()) + " " + join_vectors(map.values) + ": " +
                join(map.indices);
    }
    for (GeometryNormalMap const& map : mesh.normal_maps) {
        text += "; " + std::string(map.name.get_data()) + " " + join_vectors(map.values) + ": " +
                join(map.indices);
    }
    for (GeometryColorMap const& map : mesh.color_maps) {
        text += "; " + std::string(map.name.get_data());
        for (GMathVec4<unsigned char> const& c : map.values) {
            unsigned int const bytes[] = {c.x, c.y, c.z, c.w};
            text += " (" + join(CoreBasicArray<unsigned int>(bytes, 4)) + ")";
        }
        EXPECT_TRUE(map.indices.is_empty());
    }
    if (mesh.shading_group_names.get_count() > 1 ||
        (mesh.shading_group_names.get_count() == 1 && mesh.shading_group_names[0] != "default")) {
        text += "; groups " + join(mesh.polygon_shading_groups);
        for (CoreString const& name : mesh.shading_group_names) {
            text += " '" + std::string(name.get_view()) + "'";
        }
    }
    if (!mesh.import_data.crease_indices.is_empty()) {
        text += "; creases " + join(mesh.import_data.crease_indices) + ": " +
                join(mesh.import_data.crease_sharpnesses);
    }
    return text;
}
