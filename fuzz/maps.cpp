#include <fuzz/byte_reader.h>
#include <fuzz/checks.h>
#include <fuzz/query_everything.h>
#include <fuzz/target.h>
#include <tests/shapes.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Mostly small, but also anything.
float take_number(ByteReader& input) {
    unsigned int const kind = input.take<std::uint8_t>();
    return kind == 255 ? input.take<float>() : static_cast<float>(kind) / 16.0f - 4.0f;
}

GMathVec3<float> take_vector(ByteReader& input) {
    float const x = take_number(input);
    float const y = take_number(input);
    return {x, y, take_number(input)};
}

unsigned int take_index(ByteReader& input) {
    unsigned int const index = input.take<std::uint8_t>();
    return index < 250 ? index : index == 250 ? input.take<unsigned int>() : index - 256u;
}

unsigned int get_corner_count(Shape const& shape) {
    return static_cast<unsigned int>(shape.vertex_indices.size());
}

// Values and indices of any number, most often those that fit.
template <typename Map, typename TakeValue>
std::vector<Map> take_maps(ByteReader& input, Shape const& shape, TakeValue const& take_value) {
    auto const vertex_count = static_cast<unsigned int>(shape.positions.size());
    std::vector<Map> maps(input.take_below(3));
    for (Map& map : maps) {
        unsigned int const sizes = input.take<std::uint8_t>();
        map.values.resize(sizes % 4 == 0 ? sizes / 16 : vertex_count);
        map.indices.resize(sizes / 4 % 4 == 0   ? sizes / 16
                           : sizes / 4 % 4 == 1 ? 0
                                                : get_corner_count(shape));
        std::generate(map.values.begin(), map.values.end(), [&] { return take_value(input); });
        std::generate(map.indices.begin(), map.indices.end(), [&] { return take_index(input); });
        map.name = "m";
    }
    return maps;
}

// Polygons of up to 7 corners; at times, groups or corners to spare.
Shape take_shape(ByteReader& input) {
    Shape shape;
    shape.check_quads = input.take_below(2) != 0;
    shape.positions.resize(1 + input.take_below(12));
    shape.vertex_count.resize(input.take_below(8));
    shape.names.resize(input.take_below(4));
    unsigned int corner_count = input.take_below(8) == 0 ? 2 : 0;
    for (unsigned int& count : shape.vertex_count) {
        count = input.take_below(8);
        shape.groups.push_back(input.take_below(4));
        corner_count += count;
    }
    auto const vertex_count = static_cast<unsigned int>(shape.positions.size());
    for (unsigned int corner = 0; corner < corner_count; ++corner) {
        shape.vertex_indices.push_back(input.take_below(vertex_count));
    }
    std::generate(shape.positions.begin(), shape.positions.end(),
                  [&] { return take_vector(input); });
    shape.velocities.resize(input.take_below(4) == 0 ? shape.positions.size() : 0);
    std::generate(shape.velocities.begin(), shape.velocities.end(),
                  [&] { return take_vector(input); });
    shape.uv_maps = take_maps<GeometryUvMap>(input, shape, take_vector);
    shape.normal_maps = take_maps<GeometryNormalMap>(input, shape, take_vector);
    shape.color_maps = take_maps<GeometryColorMap>(
        input, shape, [](ByteReader& reader) { return reader.take<GMathVec4<unsigned char>>(); });
    return shape;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    CoreLogHandler::get_main().set_level(0);
    ByteReader input(bytes, size);
    PolyMesh mesh;
    mesh.set_uv_map_compression_mode(
        static_cast<PolyMeshTopology::CompressionMode>(input.take_below(3)));
    Shape const shape = take_shape(input);
    shape.set(mesh);
    query_everything(mesh);
    std::vector<GeometryNormalMap> const others =
        take_maps<GeometryNormalMap>(input, shape, take_vector);
    mesh.set_normal_maps(view(others), nullptr);
    query_everything(mesh);
    return 0;
}
