#pragma once

#include <platform/qz_lwo.h>
#include <platform/qz_lwo/lwo_object.h>
#include <tests/log_capture.h>

#include <bit>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

// Objects built byte by byte, and loaded ones as one line of text.
namespace lwo_building {

using Bytes = std::string;
using Numbers = std::vector<unsigned int>;
using Floats = std::vector<float>;

inline Bytes big_endian(unsigned int const& value, unsigned int const& size) {
    Bytes bytes;
    for (unsigned int i = size; i-- > 0;) {
        bytes += static_cast<char>(value >> (8 * i));
    }
    return bytes;
}

inline Bytes u2(Numbers const& values) {
    Bytes bytes;
    for (unsigned int const& value : values) {
        bytes += big_endian(value, 2);
    }
    return bytes;
}

inline Bytes f4(Floats const& values) {
    Bytes bytes;
    for (float const& value : values) {
        bytes += big_endian(std::bit_cast<unsigned int>(value), 4);
    }
    return bytes;
}

inline Bytes s0(Bytes const& text) { return text + Bytes(text.size() % 2 == 0 ? 2 : 1, '\0'); }

inline Bytes chunk(Bytes const& id, Bytes const& data) {
    Bytes const size = big_endian(static_cast<unsigned int>(data.size()), 4);
    return id + size + data + Bytes(data.size() % 2, '\0');
}

inline Bytes form(Bytes const& type, Bytes const& chunks) {
    return "FORM" + big_endian(static_cast<unsigned int>(chunks.size()) + 4, 4) + type + chunks;
}

// A square in the plane z = 0, clockwise as seen from -z, then more chunks of a form LWO2.
inline Bytes const square = chunk("PNTS", f4({0, 0, 0, 0, 1, 0, 1, 1, 0, 1, 0, 0}));
inline Bytes object(Bytes const& chunks) { return form("LWO2", square + chunks); }

inline Bytes layer(Bytes const& name) { return chunk("LAYR", Bytes(16, '\0') + s0(name)); }
inline Bytes faces(Numbers const& numbers) { return chunk("POLS", "FACE" + u2(numbers)); }
inline Bytes tags(Numbers const& numbers) { return chunk("PTAG", "SURF" + u2(numbers)); }
inline Bytes uv_head(Bytes const& name) { return "TXUV" + u2({2}) + s0(name); }
// One value of map "U": of a point, or of a point in a polygon.
inline Bytes uv(Numbers const& place, Floats const& value) {
    return chunk(place.size() == 1 ? "VMAP" : "VMAD", uv_head("U") + u2(place) + f4(value));
}
inline Bytes normal(Numbers const& place, Floats const& value) {
    Bytes const head = "NORM" + u2({3}) + s0("N");
    return chunk(place.size() == 1 ? "VMAP" : "VMAD", head + u2(place) + f4(value));
}

struct Loaded {
    bool is_good = false;
    LwoMesh mesh;
    std::string log;  // levels and messages up to level 4
};

// From a block of exactly the size of `bytes`, so that a sanitizer sees one byte too far.
inline Loaded load(Bytes const& bytes, char const* item_name = "") {
    Loaded loaded;
    LogCapture capture(4);
    std::unique_ptr<unsigned char[]> const block(new unsigned char[bytes.size()]);
    std::memcpy(block.get(), bytes.data(), bytes.size());
    loaded.is_good = lwo_load_from_memory(block.get(), bytes.size(), "test.lwo", item_name,
                                          loaded.mesh, nullptr);
    loaded.log = capture.take();
    return loaded;
}

inline void load_file(std::string const& path, AppProgressBar* bar, Loaded& loaded) {
    LogCapture capture(4);
    LwoMesh& to = loaded.mesh;
    loaded.is_good = Lwo::load(path.c_str(), "", to.positions, to.polygon_vertex_indices,
                               to.polygon_vertex_count, to.polygon_shading_groups,
                               to.shading_group_names, to.uv_maps, to.normal_maps, bar);
    loaded.log = capture.take();
}

inline Loaded load_file(std::string const& path) {
    Loaded loaded;
    load_file(path, nullptr, loaded);
    return loaded;
}

template <typename Map>
std::string describe_map(Map const& map, char const* kind) {
    bool const is_by_point = map.indices.is_empty();
    std::string line = std::string(kind).append(map.name.get_view()) + (is_by_point ? "*" : "");
    unsigned int const count = is_by_point ? map.values.get_count() : map.indices.get_count();
    for (unsigned int i = 0; i < count; ++i) {
        unsigned int const value = is_by_point ? i : map.indices[i];
        char text[64] = " -";
        if (value != CoreIndexArray::absent) {
            GMathVec3<float> const& v = map.values[value];
            char const* const format = kind[1] == 'u' ? " %g,%g" : " %g,%g,%g";
            std::snprintf(text, sizeof text, format, double(v.x), double(v.y), double(v.z));
        }
        line += text;
    }
    return line;
}

// Points, polygons with their groups, then maps by corner, or by point with a star:
// "4: 3 2 1 0 Sky; 4 1 0 Ink; uv:U - 1,1 0.5,1 0,0".
inline std::string describe(LwoMesh const& mesh) {
    std::string line = std::to_string(mesh.positions.get_count()) + ":";
    unsigned int corner = 0;
    for (unsigned int i = 0; i < mesh.polygon_vertex_count.get_count(); ++i) {
        for (unsigned int j = 0; j < mesh.polygon_vertex_count[i]; ++j) {
            line.append(" ").append(std::to_string(mesh.polygon_vertex_indices[corner++]));
        }
        line.append(" ")
            .append(mesh.shading_group_names[mesh.polygon_shading_groups[i]].get_view())
            .append(";");
    }
    for (GeometryUvMap const& map : mesh.uv_maps) {
        line += describe_map(map, " uv:");
    }
    for (GeometryNormalMap const& map : mesh.normal_maps) {
        line += describe_map(map, " normal:");
    }
    return line;
}

}  // namespace lwo_building
