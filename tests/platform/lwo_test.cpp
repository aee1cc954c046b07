#include "lwo_builder.h"

#include <platform/qz_lwo.h>
#include <platform/qz_sys.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

float const nan_value = std::numeric_limits<float>::quiet_NaN();
Bytes const four_points =
    chunk("PNTS", floats({0, 0, 0, 0, 1, 0, 1, 1, 0, 1, 0, 0}));  // clockwise as seen from -z
Bytes const quad = chunk("POLS", "FACE" + u2({4, 0, 1, 2, 3}));
Bytes const names = chunk("TAGS", text("Sky") + text("") + text("Ink"));

Bytes uv_of_points(Bytes const& name, std::initializer_list<unsigned int> const& points) {
    Bytes data = map_head("TXUV", 2, name);
    for (unsigned int const& point : points) {
        data += u2({point}) + floats({float(point), 5});
    }
    return chunk("VMAP", data);
}

Bytes uv_of_corner(unsigned int const& point, unsigned int const& polygon, float const& u) {
    return u2({point, polygon}) + floats({u, 7});
}

Bytes uv_of_corners(Bytes const& name, Bytes const& values) {
    return chunk("VMAD", map_head("TXUV", 2, name) + values);
}

Bytes normals(std::initializer_list<float> const& normal) {
    return chunk("VMAP", map_head("NORM", 3, "N") + u2({1}) + floats(normal));
}

struct Case {
    char const* what;
    Bytes bytes;
    char const* expected;  // the mesh described, or a part of the message
    unsigned int warning_count = 0;
    char const* item_name = "";
};

TEST(Lwo, ReadsEveryConstruct) {
    Bytes const old_triangle = chunk("POLS", u2({3, 0, 1, 2, 1}));
    Case const cases[] = {
        {"a uv map by point and corner",
         form("LWO2", chunk("TAGS", text("Sky")) + layer("L1") + four_points +
                          chunk("VMAP", map_head("TXUV", 2, "U") + u2({0}) + floats({0, 0}) +
                                            u2({1}) + floats({0, 1}) + u2({2}) + floats({1, 1})) +
                          quad + chunk("PTAG", "SURF" + u2({0, 0})) +
                          uv_of_corners("U", u2({1, 0}) + floats({0.5, 1}))),
         "4: 3 2 1 0 Sky; uv:U - 1,1 0.5,1 0,0"},
        {"detail polygons",
         form("LWOB", chunk("SRFS", text("Sky") + text("Ink")) + four_points +
                          chunk("POLS", u2({4, 0, 1, 2, 3, 0xFFFF, 1, 3, 0, 1, 2, 2}))),
         "4: 3 2 1 0 Sky; 2 1 0 Ink;"},
        {"no surface, and names behind the points",
         form("LWOB", four_points + chunk("SRFS", text("Sky")) +
                          chunk("PCHS", u2({3, 0, 1, 2, 0, 3, 1, 2, 3, 1}))),
         "4: 2 1 0 default; 3 2 1 Sky;"},
        {"indices count from the last points of a layer",
         form("LWO2",
              four_points + quad + four_points + quad + uv_of_corners("U", uv_of_corner(1, 0, 9))),
         "8: 3 2 1 0 default; 7 6 5 4 default; uv:U - - - - - - 9,7 -"},
        {"flags above the corner count",
         form("LWO2", four_points + chunk("POLS", "SUBD" + u2({0xFC03, 0, 1, 2}))),
         "4: 2 1 0 default;"},
        {"curves take the tags and values behind them along",
         form("LWO2", names + four_points + quad + chunk("POLS", "CURV" + u2({2, 0, 1})) +
                          chunk("PTAG", "SURF" + u2({7, 2})) +
                          uv_of_corners("U", uv_of_corner(9, 9, 9)) + chunk("POLS", "BONE") +
                          chunk("PTAG", "SURF" + u2({0, 2}))),
         "4: 3 2 1 0 default;"},
        {"indices of four bytes",
         form("LWO2", names + four_points +
                          chunk("POLS", "FACE" + u2({3, 0xFF00, 0, 1, 0xFF00, 2})) +
                          chunk("PTAG", "SURF" + u2({0xFF00, 0, 2})) +
                          uv_of_corners("U", u2({0xFF00, 2, 0xFF00, 0}) + floats({8, 7}))),
         "4: 2 1 0 Ink; uv:U 8,7 - -"},
        {"odd sizes and forms inside",
         form("LWO3", chunk("DESC", "abc") + chunk("FORM", "SURFxPNTS") + four_points + quad),
         "4: 3 2 1 0 default;"},
        {"a map given twice",
         form("LWO2", four_points + uv_of_points("U", {0, 1}) + quad +
                          chunk("VMAP", map_head("TXUV", 2, "U") + u2({1}) + floats({3, 3}))),
         "4: 3 2 1 0 default; uv:U - - 3,3 0,5", 1},
        {"a value for a point that the polygon lacks",
         form("LWO2", four_points + chunk("POLS", "FACE" + u2({3, 0, 1, 2})) +
                          uv_of_corners("U", uv_of_corner(3, 0, 9) + uv_of_corner(0, 0, 4))),
         "4: 2 1 0 default; uv:U - - 4,7", 1},
        {"two values for two visits of a point",
         form("LWO2", four_points + chunk("POLS", "PTCH" + u2({4, 0, 1, 0, 2})) +
                          uv_of_corners("U", uv_of_corner(0, 0, 3) + uv_of_corner(0, 0, 4))),
         "4: 2 0 1 0 default; uv:U - 4,7 - 4,7"},
        {"values of corners win, wherever they stand",
         form("LWO2", chunk("PTAG", "PART") + four_points + quad +
                          uv_of_corners("U", uv_of_corner(0, 0, 3)) + uv_of_points("U", {0, 2})),
         "4: 3 2 1 0 default; uv:U - 2,5 - 3,7"},
        {"polygons that are dropped count",
         form("LWO2", four_points + chunk("POLS", "FACE" + u2({1, 0, 0, 3, 0, 1, 2})) +
                          chunk("PTAG", "SURF" + u2({2, 2, 0, 0})) + names +
                          uv_of_corners("U", uv_of_corner(1, 2, 9) + uv_of_corner(0, 0, 1))),
         "4: 2 1 0 Ink; uv:U - 9,7 -", 1},
        {"groups by first use, equal and empty names",
         form("LWO2",
              chunk("TAGS", text("b") + text("") + text("a") + text("b")) + four_points +
                  chunk("POLS", "FACE" + u2({3, 0, 1, 2, 3, 1, 2, 3, 3, 2, 3, 0, 3, 3, 0, 1})) +
                  chunk("PTAG", "SURF" + u2({3, 0, 2, 1, 1, 3, 0, 2}))),
         "4: 2 1 0 a; 3 2 1 b; 0 3 2 default; 1 0 3 b;"},
        {"a map of several layers by point",
         form("LWO2", layer("A") + four_points + uv_of_points("U", {0, 1, 2, 3}) + quad +
                          layer("B") + four_points + uv_of_points("U", {0, 1, 2, 3})),
         "8: 3 2 1 0 default; uv:U* 0,5 1,5 2,5 3,5 0,5 1,5 2,5 3,5"},
        {"one layer of several, and two of its name",
         form("LWO2", four_points + quad + layer("A") + four_points + uv_of_points("U", {0}) +
                          layer("B") + chunk("POLS", "") + layer("A") + four_points + quad),
         "8: 7 6 5 4 default;", 0, "A"},
        {"a layer of the old form",
         form("LWLO", chunk("SRFS", text("Sky")) + chunk("LAYR", u2({1, 0}) + text("A")) +
                          four_points + old_triangle + chunk("LAYR", u2({2, 0}) + text("B")) +
                          four_points + old_triangle),
         "4: 2 1 0 Sky;", 0, "B"},
        {"maps of other types and dimensions",
         form("LWO2", four_points + quad + chunk("VMAP", map_head("WGHT", 1, "W") + "x") +
                          chunk("VMAP", map_head("TXUV", 3, "U") + "x") + uv_of_points("V", {3})),
         "4: 3 2 1 0 default; uv:V 3,5 - - -", 1},
        {"numbers that are none",
         form("LWO2", four_points + quad + normals({1, nan_value, 1}) +
                          uv_of_corners("U", u2({0, 0}) + floats({nan_value, 2}))),
         "4: 3 2 1 0 default; uv:U - - - 0,2 normal:N - - 0,0,0 -", 1},
        {"normals that fit", form("LWO2", four_points + normals({3, 0, 1}) + quad),
         "4: 3 2 1 0 default; normal:N - - 3,0,1 -"},
        {"mirrored normals", form("LWO2", four_points + normals({3, 0, -1}) + quad),
         "4: 3 2 1 0 default; normal:N - - 3,0,1 -"},
        {"bytes behind the form", form("LWO2", four_points) + "x", "4:", 1},
        {"no padding at the end", form("LWO2", four_points + chunk("DESC", "a")).substr(0, 77),
         "4:", 1},
    };
    for (Case const& row : cases) {
        Loaded const loaded = load(row.bytes, row.item_name);
        EXPECT_TRUE(loaded.is_good) << row.what;
        EXPECT_EQ(describe(loaded.mesh), row.expected) << row.what;
        EXPECT_EQ(loaded.warnings.size(), row.warning_count) << row.what;
        EXPECT_EQ(loaded.refusals, std::vector<std::string>()) << row.what;
    }
}

TEST(Lwo, NegatesZ) {
    Loaded const loaded = load(form("LWO2", chunk("PNTS", floats({1, -2, 3, 4, 5, -6}))));
    ASSERT_EQ(loaded.mesh.positions.get_count(), 2u);
    EXPECT_EQ(loaded.mesh.positions[0], GMathVec3<float>(1, -2, -3));
    EXPECT_EQ(loaded.mesh.positions[1], GMathVec3<float>(4, 5, 6));
}

// More maps of one value each than lists of all corners could be kept for.
Bytes build_many_maps() {
    unsigned int const count = 5000;
    Bytes polygons = "FACE";
    Bytes maps;
    for (unsigned int i = 0; i < count; ++i) {
        polygons += u2({4, 0, 1, 2, 3});
        maps += uv_of_points(std::to_string(i), {i % 4});
    }
    return form("LWO2", four_points + chunk("POLS", polygons) + maps);
}

TEST(Lwo, RefusesWithPlaceAndReason) {
    Bytes const head = four_points + quad;
    Bytes const old_quad = u2({4, 0, 1, 2, 3});
    Case const cases[] = {
        {"short", "FORM", "fewer than 12 bytes"},
        {"other format", form("LXOB", head), "another format"},
        {"form past the file", form("LWO2", head).substr(0, 60), "chunk FORM at byte 0, byte 4"},
        {"chunk past the form", form("LWO2", head + "PNTS" + number(0xFFFFFFFF, 4)),
         "chunk PNTS at byte 90, byte 90: the chunk reaches past"},
        {"half a chunk", form("LWO2", head + "PNTS"), "byte 90: the chunk reaches past"},
        {"size of points", form("LWO2", chunk("PNTS", "12345")),
         "byte 16: the size is no multiple"},
        {"no points", form("LWO2", chunk("PNTS", "")), "there are no points"},
        {"no points before polygons", form("LWO2", four_points + layer("A") + quad),
         "without points"},
        {"point", form("LWO2", four_points + chunk("POLS", "FACE" + u2({3, 0, 1, 4}))),
         "chunk POLS at byte 68, byte 86: point 4 is out of range, there are 4"},
        {"corners", form("LWO2", four_points + chunk("POLS", "FACE" + u2({1023, 0}))),
         "corners of a polygon"},
        {"index", form("LWO2", four_points + chunk("POLS", "FACE" + u2({3, 0, 1, 0xFF00}))),
         "corners of"},
        {"tagged polygon", form("LWO2", names + head + chunk("PTAG", "SURF" + u2({1, 0}))),
         "polygon 1 is"},
        {"tag", form("LWO2", names + head + chunk("PTAG", "SURF" + u2({0, 3}))),
         "tag 3 is out of range"},
        {"tag end", form("LWO2", names + head + chunk("PTAG", "SURF" + u2({0}))), "inside a tag"},
        {"name", form("LWO2", chunk("TAGS", "Sky") + head), "inside a name"},
        {"map point", form("LWO2", head + uv_of_points("U", {4})), "point 4 is"},
        {"map end", form("LWO2", head + chunk("VMAP", map_head("TXUV", 2, "U") + u2({0, 0}))),
         "a value of"},
        {"map name", form("LWO2", head + chunk("VMAP", "TXUV" + u2({2}) + "U")), "head of the map"},
        {"corner point", form("LWO2", head + uv_of_corners("U", uv_of_corner(4, 0, 0))),
         "point 4 is"},
        {"corner polygon", form("LWO2", head + uv_of_corners("U", uv_of_corner(0, 1, 0))),
         "polygon 1 is"},
        {"surface", form("LWOB", four_points + chunk("POLS", old_quad + u2({1}))),
         "surface (from 1) 1 is"},
        {"lowest surface", form("LWOB", four_points + chunk("POLS", old_quad + u2({0x8000, 0}))),
         "32768"},
        {"surface end", form("LWOB", four_points + chunk("POLS", old_quad)), "the surface of"},
        {"layer", form("LWO2", chunk("LAYR", Bytes(16, '\0')) + head), "description of a layer"},
        {"item", form("LWO2", layer("A\n") + layer("") + head + layer("B") + layer("B")),
         "no layer 'C', there are 'A?', 'B'.", 0, "C"},
        {"maps", build_many_maps(), "too many maps"},
    };
    for (Case const& row : cases) {
        Loaded const loaded = load(row.bytes, row.item_name);
        EXPECT_FALSE(loaded.is_good) << row.what;
        ASSERT_EQ(loaded.refusals.size(), 1u) << row.what;
        EXPECT_NE(loaded.refusals[0].find(row.expected), std::string::npos) << loaded.refusals[0];
        EXPECT_EQ(loaded.refusals[0].find("Lwo.load: File 'test.lwo'"), 0u) << row.what;
    }
}

class LwoFiles : public testing::Test {
  protected:
    CoreString write(Bytes const& bytes) {
        CoreString path((testing::TempDir() + "qz_lwo_test.bin").c_str());
        SysFile file;
        EXPECT_TRUE(file.open(path, SysFile::MODE_WRITE) && file.write(bytes.data(), bytes.size()));
        return path;
    }

    bool load_file(CoreString const& path, AppProgressBar* bar) {
        LogCatcher const catcher(loaded);
        LwoMesh& to = loaded.mesh;
        return Lwo::load(path, "", to.positions, to.corners, to.polygon_counts, to.polygon_groups,
                         to.group_names, to.uv_maps, to.normal_maps, bar);
    }

    Loaded loaded;
};

TEST_F(LwoFiles, AreKnownByContent) {
    Bytes const other_bytes[] = {"", "FORM0000LWO", form("LXOB", four_points),
                                 "v 1 2 3\nf 1 1 1\n"};
    for (char const* const type : {"LWOB", "LWLO", "LWO2", "LWO3"}) {
        EXPECT_TRUE(Lwo::is_valid(write(form(type, "")))) << type;
    }
    for (Bytes const& bytes : other_bytes) {
        EXPECT_FALSE(Lwo::is_valid(write(bytes))) << bytes;
    }
    EXPECT_FALSE(Lwo::is_valid("no such file"));
    EXPECT_FALSE(Lwo::is_valid(testing::TempDir().c_str()));
}

TEST_F(LwoFiles, LeaveOutputsAloneWhenRefused) {
    Bytes const object =
        form("LWO2", four_points + quad + uv_of_points("U", {0}) + normals({1, 0, 0}));
    ASSERT_TRUE(load_file(write(object), nullptr));
    std::string const before = describe(loaded.mesh);
    Bytes bad = object;
    bad[bad.find("NORM") + 9] = 4;  // a point that is not there, seen when all else is done
    EXPECT_FALSE(load_file(write(bad), nullptr));
    EXPECT_FALSE(load_file("no such file", nullptr));
    EXPECT_EQ(describe(loaded.mesh), before);
    EXPECT_EQ(loaded.refusals.size(), 2u);
    ASSERT_TRUE(load_file(write(form("LWO2", four_points)), nullptr));
    EXPECT_EQ(describe(loaded.mesh), "4:");
}

TEST_F(LwoFiles, ReportProgressAndStop) {
    Bytes polygons = "FACE";
    for (unsigned int i = 0; i < 100000; ++i) {
        polygons += u2({4, 0, 1, 2, 3});
    }
    CoreString const path = write(form("LWO2", four_points + chunk("POLS", polygons)));
    AppProgressBar bar("load");
    unsigned int calls = 0;
    auto const callback = [](void* user, AppProgressBar const& shown) {
        ++*static_cast<unsigned int*>(user);
        return shown.get_value() < 0.75;
    };
    bar.set_callback(callback, &calls);
    EXPECT_FALSE(load_file(path, &bar));
    EXPECT_GT(calls, 10u);
    EXPECT_LT(bar.get_value(), 0.8);
    ASSERT_EQ(loaded.refusals.size(), 1u);
    EXPECT_NE(loaded.refusals[0].find("stopped on request"), std::string::npos);
    EXPECT_TRUE(loaded.mesh.positions.is_empty());
    bar.start();
    bar.set_callback(nullptr, nullptr);
    EXPECT_TRUE(load_file(path, &bar));
    EXPECT_GT(bar.get_value(), 0.99);
}

}  // namespace
