#include <tests/platform/lwo_builder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace {

using namespace lwo_building;

Bytes const objects[] = {
    object(layer("L") + square + chunk("TAGS", s0("Sky") + s0("Blue")) + uv({0}, {0, 1}) +
           uv({2}, {1, 1}) + faces({4, 0, 1, 2, 3, 3, 0, 1, 2}) + tags({0, 0, 1, 1}) +
           uv({1, 0}, {0.5, 1}) + normal({0xFF00, 2, 0}, {0, 0, 1})),
    form("LWOB", chunk("SRFS", s0("Sky") + s0("Ink")) + square +
                     chunk("POLS", u2({4, 0, 1, 2, 3, 0xFFFF, 1, 3, 0, 1, 2, 2}))),
};

bool is_one_refusal(std::string const& log) {
    return log.starts_with("2 Lwo.load: ") && std::count(log.begin(), log.end(), '\n') == 1;
}

// All entries are below `limit`, or mark that there is none.
bool are_below(CoreArray<unsigned int> const& values, unsigned int const& limit) {
    return std::all_of(values.begin(), values.end(), [&](unsigned int const& value) {
        return value < limit || value == CoreIndexArray::absent;
    });
}

template <typename Map>
bool are_sound(CoreArray<Map> const& maps, LwoMesh const& mesh) {
    return std::all_of(maps.begin(), maps.end(), [&](Map const& map) {
        unsigned int const count = map.values.get_count();
        return map.indices.is_empty()
                   ? count == mesh.positions.get_count()
                   : map.indices.get_count() == mesh.polygon_vertex_indices.get_count() &&
                         are_below(map.indices, count);
    });
}

bool is_sound(LwoMesh const& mesh) {
    CoreArray<unsigned int> const& counts = mesh.polygon_vertex_count;
    return std::accumulate(counts.begin(), counts.end(), 0u) ==
               mesh.polygon_vertex_indices.get_count() &&
           are_below(mesh.polygon_vertex_indices, mesh.positions.get_count()) &&
           mesh.polygon_shading_groups.get_count() == counts.get_count() &&
           are_below(mesh.polygon_shading_groups, mesh.shading_group_names.get_count()) &&
           are_sound(mesh.uv_maps, mesh) && are_sound(mesh.normal_maps, mesh);
}

TEST(LwoHostile, RefusesEveryTruncation) {
    for (Bytes const& whole : objects) {
        EXPECT_TRUE(load(whole).is_good);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            Bytes cut = whole.substr(0, size);
            Loaded const loaded = load(cut);
            EXPECT_TRUE(!loaded.is_good && is_one_refusal(loaded.log)) << size << loaded.log;
            // The same in a form that claims no more than there is.
            if (size >= 12) {
                cut.replace(4, 4, big_endian(static_cast<unsigned int>(size) - 8, 4));
                Loaded const fitting = load(cut);
                EXPECT_TRUE(fitting.is_good || is_one_refusal(fitting.log)) << size << fitting.log;
            }
        }
    }
}

TEST(LwoHostile, SurvivesCorruption) {
    unsigned int good_count = 0;
    unsigned int const seed_count = 6000;
    for (unsigned int seed = 0; seed < seed_count; ++seed) {
        std::mt19937 random(seed);
        Bytes bytes = objects[seed % 2];
        for (unsigned int i = 0; i <= seed % 3; ++i) {
            std::size_t const place = 8 + random() % (bytes.size() - 8);
            bytes[place] = static_cast<char>(random() % 4 == 0 ? random() : random() % 5);
        }
        Loaded const loaded = load(bytes);
        good_count += loaded.is_good ? 1 : 0;
        EXPECT_TRUE(loaded.is_good ? is_sound(loaded.mesh) : is_one_refusal(loaded.log)) << seed;
    }
    EXPECT_GT(good_count, seed_count / 6);
    EXPECT_LT(good_count, seed_count - seed_count / 6);
}

}  // namespace
