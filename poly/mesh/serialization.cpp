#include <poly/mesh/content_key.h>
#include <poly/mesh/log_message.h>
#include <poly/mesh/poly_mesh.h>
#include <poly/mesh/primitive_building.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

// The block, in 32-bit little-endian words without gaps or a header:
//
// | words | field                                                                   |
// |-------|-------------------------------------------------------------------------|
// | 1     | the size of the block in bytes (its low 32 bits)                        |
// | 1     | N, then N positions of 3 floats                                         |
// | 1     | V, then V velocities of 3 floats                                        |
// | 1     | I, then the vertex of each of the I polygon corners                     |
// | 1     | P, then the corner count of each of the P polygons                      |

static_assert(std::endian::native == std::endian::little, "blocks are written in storage order");

namespace {

using Vec3 = GMathVec3<float>;

class BlockWriter {
  public:
    explicit BlockWriter(unsigned char* block) : m_next(block) {}

    void write(unsigned int const& word) { write_bytes(&word, sizeof word); }

    template <typename T>
    void write(CoreBasicArray<T> const& array) {
        write(array.get_count());
        write_bytes(array.get_data(), sizeof(T) * std::size_t(array.get_count()));
    }

  private:
    void write_bytes(void const* bytes, std::size_t const& size) {
        if (size != 0) {
            std::memcpy(m_next, bytes, size);
            m_next += size;
        }
    }

    unsigned char* m_next;
};

// Reads counted arrays as long as they lie within the block.
class BlockReader {
  public:
    BlockReader(unsigned char const* block, unsigned long long const& size)
        : m_next(block), m_left(size) {}

    bool read(unsigned int& word) {
        if (m_left < sizeof word) {
            return false;
        }
        std::memcpy(&word, m_next, sizeof word);
        skip(sizeof word);
        return true;
    }

    // Passes over a counted array, and leaves its bytes, unaligned, in `bytes`.
    template <typename T>
    bool find(unsigned int& count, unsigned char const*& bytes) {
        if (!read(count) || m_left / sizeof(T) < count) {
            return false;
        }
        bytes = m_next;
        skip(sizeof(T) * 1ull * count);
        return true;
    }

  private:
    void skip(unsigned long long const& size) {
        m_next += size;
        m_left -= size;
    }

    unsigned char const* m_next;
    unsigned long long m_left;
};

// One array in a block.
template <typename T>
struct BlockArray {
    unsigned int count = 0;
    unsigned char const* bytes = nullptr;

    bool find(BlockReader& reader) { return reader.find<T>(count, bytes); }
    void copy_to(CoreArray<T>& array) const {
        array.reset(count);
        if (count != 0) {
            std::memcpy(static_cast<void*>(array.get_data()), bytes,
                        sizeof(T) * std::size_t(count));
        }
    }
    T get(unsigned int const& index) const {
        T value;
        std::memcpy(&value, bytes + sizeof(T) * std::size_t(index), sizeof value);
        return value;
    }
};

struct Block {
    BlockArray<Vec3> positions;
    BlockArray<Vec3> velocities;
    BlockArray<unsigned int> vertex_indices;
    BlockArray<unsigned int> vertex_count;

    // The arrays lie within the block, and bytes may follow them.
    bool find(BlockReader& reader) {
        return positions.find(reader) && velocities.find(reader) && vertex_indices.find(reader) &&
               vertex_count.find(reader);
    }
    // Polygons stay within the corners, corners within the vertices, and cut polygons within what
    // can be built.
    bool is_sound() const {
        unsigned long long corner_count = 0;
        unsigned long long cut_corner_count = 0;
        for (unsigned int polygon = 0; polygon < vertex_count.count; ++polygon) {
            unsigned int const n = vertex_count.get(polygon);
            corner_count += n;
            cut_corner_count += get_cut_corner_count(n);
        }
        if (corner_count > vertex_indices.count || cut_corner_count > largest_cut_corner_count) {
            return false;
        }
        for (unsigned int corner = 0; corner < vertex_indices.count; ++corner) {
            if (vertex_indices.get(corner) >= positions.count) {
                return false;
            }
        }
        return true;
    }
};

bool refuse(char const* message) {
    log_message(LOG_REFUSAL, message);
    return false;
}

}  // namespace

bool PolyMesh::is_serializable() const { return true; }

unsigned char* PolyMesh::serialize(unsigned long long& size) const {
    GeometryPointCloudData const& points = m_point_cloud.get_data();
    CoreArray<unsigned int> vertex_indices;
    CoreArray<unsigned int> vertex_count;
    get_polygon_vertex_indices(vertex_indices);
    get_polygon_vertex_count(vertex_count);
    size = 20 + sizeof(Vec3) * 1ull * points.positions.get_count() +
           sizeof(Vec3) * 1ull * points.velocities.get_count() +
           sizeof(unsigned int) * 1ull * vertex_indices.get_count() +
           sizeof(unsigned int) * 1ull * vertex_count.get_count();
    if (size > 0xFFFFFFFFull) {
        refuse("PolyMesh.serialize: A block of 4 GiB or more cannot be read back.\n");
    }
    auto* const block = static_cast<unsigned char*>(std::malloc(size));
    if (!block) {
        size = 0;
        return nullptr;
    }
    BlockWriter writer(block);
    writer.write(static_cast<unsigned int>(size));
    writer.write<Vec3>(points.positions);
    writer.write<Vec3>(points.velocities);
    writer.write<unsigned int>(vertex_indices);
    writer.write<unsigned int>(vertex_count);
    return block;
}

bool PolyMesh::deserialize(unsigned char const* block, unsigned long long const& size) {
    unsigned long long const block_size = size;
    BlockReader reader(block, block_size);
    unsigned int stated_size = 0;
    if (!reader.read(stated_size)) {
        return refuse("PolyMesh.deserialize: Wrong serialization size.\n");
    }
    Block arrays;
    if (stated_size != block_size || !arrays.find(reader) || !arrays.is_sound()) {
        return refuse("PolyMesh.deserialize: Serialization size mismatch.\n");
    }
    CoreArray<Vec3> positions;
    CoreArray<Vec3> velocities;
    CoreArray<unsigned int> vertex_indices;
    CoreArray<unsigned int> vertex_count;
    arrays.positions.copy_to(positions);
    arrays.velocities.copy_to(velocities);
    arrays.vertex_indices.copy_to(vertex_indices);
    arrays.vertex_count.copy_to(vertex_count);

    // A group for every corner, deliberately: it enters the key. Every polygon has one as well.
    CoreArray<unsigned int> groups(std::max(vertex_indices.get_count(), vertex_count.get_count()));
    groups.fill(0);
    CoreArray<CoreString> names(1);
    names[0] = "default";
    PolyMeshPolygons const hashed{
        vertex_indices, vertex_count, {groups.get_data(), vertex_indices.get_count()}};
    m_hash_key = compute_content_key(positions, velocities, hashed);
    install(positions, velocities, {vertex_indices, vertex_count, groups}, names, {}, {});
    rebuild({vertex_indices, vertex_count, groups}, true, {});
    return true;
}
