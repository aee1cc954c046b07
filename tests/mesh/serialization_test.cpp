#include <poly/mesh/mesh_invariants.h>
#include <tests/log_capture.h>
#include <tests/mesh/mesh_blocks.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>

namespace {

char const* const wrong_size = "2 PolyMesh.deserialize: Wrong serialization size.\n";
char const* const mismatch = "2 PolyMesh.deserialize: Serialization size mismatch.\n";

struct Free {
    void operator()(unsigned char* block) const { std::free(block); }
};

Bytes serialize(PolyMesh const& mesh) {
    unsigned long long size = 0;
    std::unique_ptr<unsigned char, Free> const block(mesh.serialize(size));
    return {block.get(), block.get() + size};
}

// From a block that ends where its memory ends.
bool deserialize(PolyMesh& mesh, Bytes const& bytes) {
    auto const block = std::make_unique<unsigned char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), block.get());
    return mesh.deserialize(block.get(), bytes.size());
}

Numbers get_words(Bytes const& bytes) {
    Numbers words(bytes.size() / 4);
    std::memcpy(words.data(), bytes.data(), bytes.size());
    return words;
}

}  // namespace

TEST(MeshBlock, HasThisLayout) {
    Shape shape = make_triangle();
    shape.velocities = {{-0.0f, 2, 0}, {0, 0, 0}, {0, 0, std::bit_cast<float>(0x7FC12345)}};
    PolyMesh mesh;
    shape.set(mesh);
    constexpr unsigned int one = 0x3F800000;
    Bytes const block =
        make_block({3, 0, 0, 0, one, 0, 0,          0, one, 0, 3, 0x80000000, 0x40000000,
                    0, 0, 0, 0, 0,   0, 0x7FC12345, 3, 0,   1, 2, 1,          3});
    EXPECT_EQ(get_words(serialize(mesh)), get_words(block));
    EXPECT_EQ(get_words(serialize(PolyMesh())), Numbers({20, 0, 0, 0, 0}));
}

TEST(MeshBlock, RestoresPointsAndPolygons) {
    for (unsigned int seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        Shape shape = make_soup(seed);
        shape.positions[seed % 12].y = std::nanf("");
        LogCapture const quiet(1);
        PolyMesh source;
        shape.set(source);
        Bytes const block = serialize(source);
        PolyMesh mesh;
        make_soup(seed + 1).set(mesh);
        ASSERT_TRUE(deserialize(mesh, block));
        EXPECT_EQ(find_broken_invariant(mesh), "");
        EXPECT_EQ(serialize(mesh), block);
        EXPECT_EQ(mesh.get_shading_group_names().get_count(), 1u);
        EXPECT_EQ(mesh.get_topology().polygon_shading_groups.get_count(),
                  std::max(mesh.get_polygon_index_count(), mesh.get_polygon_count()));
        EXPECT_EQ(
            mesh.get_uv_map_count() + mesh.get_color_map_count() + mesh.get_normal_map_count(), 0u);
    }
}

TEST(MeshBlock, MakesAKeyOfItsOwn) {
    Shape square = make_square();
    PolyMesh mesh;
    square.set(mesh);
    mesh.set_creases(CoreArray<int>(2), {});
    mesh.set_uv_map_compression_mode(PolyMeshTopology::COMPRESSION_NONE);
    Bytes block = serialize(mesh);
    // One velocity: too few to be kept, but part of the key.
    set_word(block, 14, 1);
    unsigned int const velocity[] = {0x3F800000, 0x40000000, 0x40400000};
    auto const* const bytes = reinterpret_cast<unsigned char const*>(velocity);
    block.insert(block.begin() + 60, bytes, bytes + 12);
    set_word(block, 0, static_cast<unsigned int>(block.size()));
    ASSERT_TRUE(deserialize(mesh, block));
    EXPECT_FALSE(mesh.get_point_cloud()->has_velocities());
    EXPECT_EQ(mesh.get_hash_key(),
              (Core128BitHashKey{{0x49e950ca881c67b9ull, 0x4588d0c7037deccaull}}));
    EXPECT_EQ(mesh.get_polygon_creases_indice().get_count(), 2u);  // what no step touches stays
    EXPECT_EQ(mesh.get_uv_map_compression_mode(), PolyMeshTopology::COMPRESSION_NONE);
    ASSERT_TRUE(deserialize(mesh, serialize(PolyMesh())));
    EXPECT_EQ(mesh.get_hash_key(), CoreHash::null_key());
    EXPECT_EQ(mesh.get_shading_group_names()[0], "default");
    EXPECT_EQ(find_broken_invariant(mesh), "");
}

TEST(MeshBlock, IsReadAsFarAsItIsSound) {
    for (MeshBlock const& row : list_mesh_blocks()) {
        SCOPED_TRACE(row.name);
        PolyMesh mesh;
        make_row().set(mesh);
        PolyMeshTopology const* const topology = &mesh.get_topology();
        Bytes const before = serialize(mesh);
        LogCapture capture(2);
        EXPECT_EQ(deserialize(mesh, row.bytes), row.is_accepted);
        EXPECT_EQ(capture.take(), row.is_accepted ? "" : mismatch);
        EXPECT_EQ(find_broken_invariant(mesh), "");
        EXPECT_EQ(&mesh.get_topology(), topology);
        EXPECT_EQ(serialize(mesh) == before, !row.is_accepted);
        EXPECT_EQ(mesh.get_shading_group_names()[0], row.is_accepted ? "default" : "all");
    }
}

TEST(MeshBlock, IsRefusedWhenCut) {
    PolyMesh source;
    make_row().set(source);
    Bytes const block = serialize(source);
    PolyMesh mesh;
    make_square().set(mesh);
    PolyMesh copy(mesh);
    Bytes const before = serialize(copy);
    LogCapture capture(2);
    for (std::size_t size = 0; size < block.size(); ++size) {
        Bytes cut(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(deserialize(copy, cut));
        EXPECT_EQ(capture.take(), size < 4 ? wrong_size : mismatch) << size;
        if (size >= 4) {  // and with the size that it has
            set_word(cut, 0, static_cast<unsigned int>(size));
            EXPECT_FALSE(deserialize(copy, cut)) << size;
            EXPECT_EQ(capture.take(), mismatch);
        }
    }
    EXPECT_EQ(serialize(copy), before);
    EXPECT_EQ(&copy.get_topology(), &mesh.get_topology());  // still shared
}

TEST(MeshBlock, SurvivesChangedBytes) {
    unsigned int accepted_count = 0;
    std::mt19937 random(1);
    LogCapture const quiet(1);
    PolyMesh mesh;
    for (unsigned int round = 0; round < 2000; ++round) {
        PolyMesh source;
        make_soup(round % 16).set(source);
        Bytes block = serialize(source);
        for (unsigned int i = 0; i < 1 + round % 3; ++i) {
            block[4 + random() % (block.size() - 4)] = static_cast<unsigned char>(random() % 16);
        }
        accepted_count += deserialize(mesh, block) ? 1 : 0;
        ASSERT_EQ(find_broken_invariant(mesh), "") << round;
    }
    EXPECT_GT(accepted_count, 500u);
    EXPECT_LT(accepted_count, 1900u);
}
