#pragma once

#include <platform/qz_lwo/lwo_object.h>

#include <bit>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

// Objects built byte by byte, and loaded ones as one line of text.

using Bytes = std::string;

inline Bytes number(unsigned int const& value, unsigned int const& size) {
    Bytes bytes;
    for (unsigned int i = size; i-- > 0;) {
        bytes += static_cast<char>(value >> (8 * i));
    }
    return bytes;
}

inline Bytes u2(std::initializer_list<unsigned int> const& values) {
    Bytes bytes;
    for (unsigned int const& value : values) {
        bytes += number(value, 2);
    }
    return bytes;
}

inline Bytes floats(std::initializer_list<float> const& values) {
    Bytes bytes;
    for (float const& value : values) {
        bytes += number(std::bit_cast<unsigned int>(value), 4);
    }
    return bytes;
}

inline Bytes text(Bytes const& value) { return value + Bytes(value.size() % 2 == 0 ? 2 : 1, '\0'); }

inline Bytes chunk(Bytes const& id, Bytes const& data) {
    return id + number(static_cast<unsigned int>(data.size()), 4) + data +
           Bytes(data.size() % 2, '\0');
}

inline Bytes form(Bytes const& type, Bytes const& chunks) {
    return "FORM" + number(static_cast<unsigned int>(chunks.size()) + 4, 4) + type + chunks;
}

inline Bytes layer(Bytes const& name) { return chunk("LAYR", Bytes(16, '\0') + text(name)); }
inline Bytes map_head(Bytes const& type, unsigned int const& dimension, Bytes const& name) {
    return type + u2({dimension}) + text(name);
}

struct Loaded {
    bool is_good = false;
    LwoMesh mesh;
    std::vector<std::string> refusals;
    std::vector<std::string> warnings;
};

// Collects what is logged on levels 2 and 4 for as long as it lives.
class LogCatcher {
  public:
    explicit LogCatcher(Loaded& loaded) {
        CoreLogHandler::get_main().set_level(4);
        CoreLogHandler::get_main().set_sink(
            [](void* user, unsigned int const& level, CoreString const& message) {
                Loaded& to = *static_cast<Loaded*>(user);
                (level == 2 ? to.refusals : to.warnings).emplace_back(message.get_data());
            },
            &loaded);
    }
    ~LogCatcher() {
        CoreLogHandler::get_main().set_level(3);
        CoreLogHandler::get_main().set_sink(nullptr, nullptr);
    }
};

// From a block of exactly the size of `bytes`, so that a sanitizer sees one byte too far.
inline Loaded load(Bytes const& bytes, char const* item_name = "") {
    Loaded loaded;
    LogCatcher const catcher(loaded);
    std::unique_ptr<unsigned char[]> const block(new unsigned char[bytes.size()]);
    std::memcpy(block.get(), bytes.data(), bytes.size());
    loaded.is_good = lwo_load_from_memory(block.get(), bytes.size(), "test.lwo", item_name,
                                          loaded.mesh, nullptr);
    return loaded;
}

template <typename Map>
std::string describe_map(Map const& map, char const* kind) {
    bool const is_by_point = map.indices.is_empty();
    std::string line = std::string(" ") + kind + map.name.get_data() + (is_by_point ? "*" : "");
    unsigned int const count = is_by_point ? map.values.get_count() : map.indices.get_count();
    for (unsigned int i = 0; i < count; ++i) {
        unsigned int const value = is_by_point ? i : map.indices[i];
        char number_text[64] = " -";
        if (value != CoreIndexArray::absent) {
            GMathVec3<float> const& v = map.values[value];
            std::snprintf(number_text, sizeof number_text, *kind == 'u' ? " %g,%g" : " %g,%g,%g",
                          double(v.x), double(v.y), double(v.z));
        }
        line += number_text;
    }
    return line;
}

// Points, polygons with their groups, then maps by corner, or by point with a star:
// "4: 3 2 1 0 Sky; 4 1 0 Ink; uv:U - 1,1 0.5,1 0,0".
inline std::string describe(LwoMesh const& mesh) {
    std::string line = std::to_string(mesh.positions.get_count()) + ":";
    unsigned int corner = 0;
    for (unsigned int i = 0; i < mesh.polygon_counts.get_count(); ++i) {
        for (unsigned int j = 0; j < mesh.polygon_counts[i]; ++j) {
            line.append(" ").append(std::to_string(mesh.corners[corner++]));
        }
        line.append(" ").append(mesh.group_names[mesh.polygon_groups[i]].get_data()).append(";");
    }
    for (GeometryUvMap const& map : mesh.uv_maps) {
        line += describe_map(map, "uv:");
    }
    for (GeometryNormalMap const& map : mesh.normal_maps) {
        line += describe_map(map, "normal:");
    }
    return line;
}
