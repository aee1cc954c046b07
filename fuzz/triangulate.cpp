#include <fuzz/byte_reader.h>
#include <fuzz/query_everything.h>
#include <fuzz/target.h>
#include <tests/shapes.h>
#include <tests/topology/plain_triangulation.h>

#include <fuzz/checks.h>

#include <poly/topology/triangulate_polygon.h>

#include <cmath>
#include <limits>

namespace {

constexpr unsigned int largest_count = 320;  // the plain version takes its time
constexpr float infinity = std::numeric_limits<float>::infinity();

// How bytes become points: on a grid of 16 x 16, made long, tilted, bent or extreme.
class PointMaker {
  public:
    explicit PointMaker(ByteReader& input)
        : m_form(input.take_below(8)),
          m_scale(std::ldexp(1.0f, 4 * static_cast<int>(input.take_below(40)) - 80)) {}

    GMathVec3<float> make(unsigned int const& byte) const {
        unsigned int const column = byte % 16;
        unsigned int const row = byte / 16;
        auto const x = static_cast<float>(column);
        auto const y = static_cast<float>(row);
        switch (m_form) {
        case 0:
            return {x * m_scale, y * m_scale, 0.0f};
        case 1:
            return {0.6f * x, -0.8f * x, y};  // tilted, and rounded
        case 2:
            return {x, y, x * y};  // bent
        case 3:
            return {x, y * m_scale, y};
        case 4:
            return {x / 3.0f, y / 7.0f, 1e6f};
        case 5: {
            float const extremes[] = {0, 1,      -1,    2,     1e-20f,   -1e-42f,   1e18f, 3e38f,
                                      3, -3e38f, 0.25f, -0.0f, infinity, -infinity, NAN,   1e-8f};
            return {extremes[column], extremes[row], x};
        }
        default: {
            double const angle = byte * (6.283185307179586 / 256.0);  // round
            auto const radius = m_form == 6 ? 1.0 : 1.0 + byte % 2;
            return {static_cast<float>(radius * std::cos(angle)),
                    static_cast<float>(radius * std::sin(angle)), 0.0f};
        }
        }
    }

  private:
    unsigned int m_form;
    float m_scale;
};

// One polygon after another, each ended by the byte 255. With `shares`, equal bytes are one vertex.
Shape read_shape(ByteReader& input) {
    PointMaker const maker(input);
    unsigned int const flags = input.take_below(4);
    bool const shares = (flags & 1) != 0;
    Shape shape;
    shape.check_quads = (flags & 2) != 0;
    std::vector<unsigned int> vertices(256, CoreIndexArray::absent);
    unsigned int count = 0;
    while (!input.is_at_end()) {
        unsigned int const byte = input.take<std::uint8_t>();
        if (byte == 255 || count == largest_count) {
            shape.vertex_count.push_back(count);
            count = 0;
            continue;
        }
        if (vertices[byte] == CoreIndexArray::absent || !shares) {
            vertices[byte] = static_cast<unsigned int>(shape.positions.size());
            shape.positions.push_back(maker.make(byte));
        }
        shape.vertex_indices.push_back(vertices[byte]);
        ++count;
    }
    shape.vertex_count.push_back(count);
    return shape;
}

void compare_with_plain(Points const& positions, Numbers const& indices) {
    auto const count = static_cast<unsigned int>(indices.size());
    Numbers out(count < 3 ? 0 : 3 * (count - 2));
    out.resize(triangulate_polygon(positions.data(), indices.data(), count, out.data()));
    require(out == plain::triangulate(positions, indices), "polygons are cut as defined");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    CoreLogHandler::get_main().set_level(0);
    ByteReader input(bytes, size);
    Shape const shape = read_shape(input);
    auto first = shape.vertex_indices.begin();
    for (unsigned int const count : shape.vertex_count) {
        compare_with_plain(shape.positions, Numbers(first, first + count));
        first += count;
    }
    PolyMesh mesh;
    shape.set(mesh);
    query_everything(mesh);
    return 0;
}
