#include "lwo_builder.h"

#include <gtest/gtest.h>

#include <random>

namespace {

Bytes const four_points = chunk("PNTS", floats({0, 0, 0, 0, 1, 0, 1, 1, 0, 1, 0, 0}));
Bytes const values = u2({0}) + floats({0, 0}) + u2({1}) + floats({0, 1});

Bytes const objects[] = {
    form("LWO2", chunk("TAGS", text("Sky") + text("Blue")) + layer("L1") + four_points +
                     chunk("VMAP", map_head("TXUV", 2, "U") + values) +
                     chunk("POLS", "FACE" + u2({4, 0, 1, 2, 3, 3, 0, 1, 2})) +
                     chunk("PTAG", "SURF" + u2({0, 0, 1, 1})) +
                     chunk("VMAD", map_head("TXUV", 2, "U") + u2({1, 0}) + floats({0.5, 1})) +
                     chunk("VMAP", map_head("NORM", 3, "N") + u2({0xFF00, 2}) + floats({0, 0, 1}))),
    form("LWOB", chunk("SRFS", text("Sky") + text("Ink")) + four_points +
                     chunk("POLS", u2({4, 0, 1, 2, 3, 0xFFFF, 1, 3, 0, 1, 2, 2}))),
};

void expect_one_refusal(Loaded const& loaded, std::string const& what) {
    EXPECT_EQ(loaded.refusals.size(), 1u) << what;
    EXPECT_EQ(loaded.warnings.size(), 0u) << what;
}

template <typename Map>
void expect_sound_maps(CoreArray<Map> const& maps, LwoMesh const& mesh, std::string const& what) {
    for (Map const& map : maps) {
        unsigned int const value_count = map.values.get_count();
        EXPECT_EQ(map.indices.is_empty() ? mesh.positions.get_count() : value_count, value_count);
        EXPECT_TRUE(map.indices.is_empty() || map.indices.get_count() == mesh.corners.get_count());
        for (unsigned int const& index : map.indices) {
            EXPECT_TRUE(index < value_count || index == CoreIndexArray::absent) << what;
        }
    }
}

void expect_sound(LwoMesh const& mesh, std::string const& what) {
    unsigned int corner_count = 0;
    for (unsigned int const& count : mesh.polygon_counts) {
        EXPECT_GE(count, 3u) << what;
        corner_count += count;
    }
    EXPECT_EQ(corner_count, mesh.corners.get_count()) << what;
    for (unsigned int const& corner : mesh.corners) {
        EXPECT_LT(corner, mesh.positions.get_count()) << what;
    }
    EXPECT_EQ(mesh.polygon_groups.get_count(), mesh.polygon_counts.get_count()) << what;
    for (unsigned int const& group : mesh.polygon_groups) {
        EXPECT_LT(group, mesh.group_names.get_count()) << what;
    }
    expect_sound_maps(mesh.uv_maps, mesh, what);
    expect_sound_maps(mesh.normal_maps, mesh, what);
}

TEST(LwoHostile, RefusesEveryTruncation) {
    for (Bytes const& object : objects) {
        ASSERT_TRUE(load(object).is_good);
        for (std::size_t size = 0; size < object.size(); ++size) {
            Loaded const loaded = load(object.substr(0, size));
            EXPECT_FALSE(loaded.is_good) << size;
            expect_one_refusal(loaded, std::to_string(size));
            // The same cut inside a form that claims no more than there is.
            if (size >= 12) {
                Bytes cut = object.substr(0, size);
                cut.replace(4, 4, number(static_cast<unsigned int>(size) - 8, 4));
                Loaded const whole = load(cut);
                EXPECT_EQ(whole.refusals.size(), whole.is_good ? 0u : 1u) << size;
            }
        }
    }
}

TEST(LwoHostile, SurvivesCorruption) {
    unsigned int accepted = 0;
    unsigned int refused = 0;
    for (unsigned int seed = 0; seed < 6000; ++seed) {
        std::mt19937 random(seed);
        Bytes bytes = objects[seed % 2];
        for (unsigned int i = 0; i <= seed % 3; ++i) {
            std::size_t const place = 8 + random() % (bytes.size() - 8);
            bytes[place] = static_cast<char>(random() % 4 == 0 ? random() : random() % 5);
        }
        Loaded const loaded = load(bytes);
        std::string const what = "seed " + std::to_string(seed);
        if (loaded.is_good) {
            ++accepted;
            expect_sound(loaded.mesh, what);
        } else {
            ++refused;
            expect_one_refusal(loaded, what);
        }
    }
    EXPECT_GT(accepted, 1000u);
    EXPECT_GT(refused, 1000u);
}

}  // namespace
