#include <tests/platform/lwo_refusals.h>
#include <tests/scratch_path.h>

#include <platform/qz_lwo/lwo_surface_colors.h>
#include <platform/qz_sys.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace {

using namespace lwo_building;

float const nan_value = std::numeric_limits<float>::quiet_NaN();
// Values of map "U" for all four points.
Bytes const uv_of_square =
    chunk("VMAP", uv_head("U") + u2({0}) + f4({0, 5}) + u2({1}) + f4({1, 5}) + u2({2}) +
                      f4({2, 5}) + u2({3}) + f4({3, 5}));

struct Case {
    char const* what;
    Bytes bytes;
    char const* expected;  // the mesh described, or a part of the message
    unsigned int warning_count = 0;
    char const* item_name = "";
};

TEST(Lwo, ReadsEveryConstruct) {
    Bytes const old_names = chunk("SRFS", s0("Sky") + s0("Ink"));
    Bytes const old_quad = chunk("POLS", u2({4, 0, 1, 2, 3, 0}));
    auto const old_layer = [](char const* name) { return chunk("LAYR", u2({1, 0}) + s0(name)); };
    Case const cases[] = {
        {"values by point and by corner",
         object(chunk("TAGS", s0("Sky")) + uv({0}, {0, 0}) + uv({1}, {0, 1}) + quad + tags({0, 0}) +
                uv({1, 0}, {0.5, 1})),
         "4: 3 2 1 0 Sky; uv:U - - 0.5,1 0,0", 1},
        {"values of corners win, wherever they stand",
         object(chunk("PTAG", "PART") + quad + uv({1, 0}, {9, 9}) + uv_of_square),
         "4: 3 2 1 0 default; uv:U 3,5 2,5 9,9 0,5"},
        {"a map of several layers by point",
         form("LWO2",
              layer("A") + square + uv_of_square + quad + layer("B") + square + uv_of_square),
         "8: 3 2 1 0 default; uv:U* 0,5 1,5 2,5 3,5 0,5 1,5 2,5 3,5"},
        {"a map that no corner uses", object(uv({3}, {1, 1}) + faces({3, 0, 1, 2})),
         "4: 2 1 0 default;"},
        {"a map given twice", object(uv({0}, {1, 1}) + uv({0}, {2, 2}) + quad),
         "4: 3 2 1 0 default; uv:U - - - 2,2", 1},
        {"a value for a point that the polygon lacks",
         object(faces({3, 0, 1, 2}) + uv_of_square + uv({3, 0}, {1, 1})),
         "4: 2 1 0 default; uv:U* 0,5 1,5 2,5 3,5", 1},
        {"all points in another order",
         object(uv({3}, {3, 5}) + uv({0}, {0, 5}) + uv({1}, {1, 5}) + uv({2}, {2, 5}) + quad),
         "4: 3 2 1 0 default; uv:U 3,5 2,5 1,5 0,5", 1},
        {"two values for two visits of a point",
         object(faces({4, 0, 1, 0, 2}) +
                chunk("VMAD", uv_head("U") + u2({0, 0}) + f4({1, 1}) + u2({0, 0}) + f4({2, 2}))),
         "4: 2 0 1 0 default; uv:U - 2,2 - 2,2"},
        {"maps of other types and dimensions",
         object(quad + chunk("VMAP", "WGHTxx") + chunk("VMAP", "TXUV" + u2({3}) + s0("U") + "x")),
         "4: 3 2 1 0 default;", 1},
        {"numbers that are none",
         object(quad + normal({1}, {1, nan_value, 1}) + uv({0, 0}, {nan_value, 2})),
         "4: 3 2 1 0 default; uv:U - - - 0,2 normal:N - - 0,0,0 -", 1},
        {"normals that fit", object(normal({1}, {3, 0, 1}) + quad),
         "4: 3 2 1 0 default; normal:N - - 3,0,1 -"},
        {"mirrored normals", object(normal({1}, {3, 0, -1}) + quad),
         "4: 3 2 1 0 default; normal:N - - 3,0,1 -"},
        {"indices count from the last points of a layer",
         object(quad + square + quad + uv({1, 0}, {9, 7})),
         "8: 3 2 1 0 default; 7 6 5 4 default; uv:U - - - - - - 9,7 -"},
        {"indices of four bytes",
         object(names + faces({3, 0xFF00, 0, 1, 0xFF00, 2}) + tags({0xFF00, 0, 2}) +
                uv({0xFF00, 2, 0xFF00, 0}, {8, 7})),
         "4: 2 1 0 Ink; uv:U 8,7 - -"},
        {"flags above the corner count", object(chunk("POLS", "SUBD" + u2({0xFC03, 0, 1, 2}))),
         "4: 2 1 0 default;"},
        {"curves take the tags and values behind them along",
         object(names + quad + chunk("POLS", "CURV" + u2({2, 0, 1})) + tags({7, 2}) +
                uv({9, 9}, {9, 9}) + chunk("POLS", "BONE") + tags({0, 2})),
         "4: 3 2 1 0 default;"},
        {"polygons that are dropped count",
         object(faces({1, 0, 0, 3, 0, 1, 2}) + tags({2, 2, 0, 0}) + names + uv({1, 2}, {9, 7})),
         "4: 2 1 0 Ink; uv:U - 9,7 -", 1},
        {"groups by first use, equal and empty names",
         object(chunk("TAGS", s0("b") + s0("") + s0("a") + s0("b")) +
                faces({3, 0, 1, 2, 3, 1, 2, 3, 3, 2, 3, 0, 3, 3, 0, 1}) +
                tags({3, 0, 2, 1, 1, 3, 0, 2})),
         "4: 2 1 0 a; 3 2 1 b; 0 3 2 default; 1 0 3 b;"},
        {"one layer of several, and two of its name",
         object(quad + layer("A") + square + layer("B") + faces({9}) + layer("A") + square + quad),
         "8: 7 6 5 4 default;", 0, "A"},
        {"odd sizes and forms inside",
         form("LWO3", chunk("DESC", "abc") + chunk("FORM", "SURFxPNTS") + square + quad),
         "4: 3 2 1 0 default;"},
        {"detail polygons",
         form("LWOB",
              old_names + square + chunk("POLS", u2({4, 0, 1, 2, 3, 0xFFFF, 1, 3, 0, 1, 2, 2}))),
         "4: 3 2 1 0 Sky; 2 1 0 Ink;"},
        {"patches, and names behind the points",
         form("LWOB", square + old_names + chunk("PCHS", u2({3, 1, 2, 3, 1})) + old_quad),
         "4: 3 2 1 Sky; 3 2 1 0 default;"},
        {"a layer of the old form",
         form("LWLO", old_layer("A") + square + old_layer("B") + square + old_quad),
         "4: 3 2 1 0 default;", 0, "B"},
        {"bytes behind the form", object("") + "x", "4:", 1},
        {"no padding at the end", object(chunk("DESC", "a")).substr(0, 77), "4:", 1},
    };
    for (Case const& row : cases) {
        Loaded const loaded = load(row.bytes, row.item_name);
        EXPECT_TRUE(loaded.is_good) << row.what;
        EXPECT_EQ(describe(loaded.mesh), row.expected) << row.what;
        EXPECT_EQ(std::count(loaded.log.begin(), loaded.log.end(), '\n'), row.warning_count)
            << row.what << loaded.log;
    }
}

TEST(Lwo, NegatesZ) {
    Loaded const loaded = load(form("LWO2", chunk("PNTS", f4({1, -2, 3, 4, 5, -6}))));
    ASSERT_EQ(loaded.mesh.positions.get_count(), 2u);
    EXPECT_EQ(loaded.mesh.positions[0], GMathVec3<float>(1, -2, -3));
    EXPECT_EQ(loaded.mesh.positions[1], GMathVec3<float>(4, 5, 6));
}

TEST(Lwo, RefusesWithPlaceAndReason) {
    for (Refusal const& row : list_refusals()) {
        Loaded const loaded = load(row.bytes, row.item_name);
        EXPECT_FALSE(loaded.is_good) << row.what;
        EXPECT_EQ(loaded.log.find("2 Lwo.load: File 'test.lwo'"), 0u) << row.what;
        EXPECT_NE(loaded.log.find(row.expected), std::string::npos) << row.what << loaded.log;
        EXPECT_EQ(loaded.log.find('\n') + 1, loaded.log.size()) << row.what << loaded.log;
    }
}

std::string write(Bytes const& bytes) {
    std::string path = get_scratch_path(".lwo");
    SysFile file;
    EXPECT_TRUE(file.open(path.c_str(), SysFile::MODE_WRITE));
    EXPECT_TRUE(file.write(bytes.data(), bytes.size()) && file.close());
    return path;
}

Bytes f8(std::vector<double> const& values) {
    Bytes bytes;
    for (double const& value : values) {
        auto const bits = std::bit_cast<std::uint64_t>(value);
        bytes += big_endian(static_cast<unsigned int>(bits >> 32), 4);
        bytes += big_endian(static_cast<unsigned int>(bits), 4);
    }
    return bytes;
}

TEST(Lwo, FindsColorsOfSurfaces) {
    Bytes const named = chunk("    ", s0("Sky") + s0(""));
    Bytes const value = chunk("    ", big_endian(3, 4) + f8({1, 0.2f, 0}));
    Bytes const entry = chunk("FORM", "ENTR" + chunk("NAME", s0("Color")) +
                                          chunk("FORM", "VALU" + chunk("    ", s0("v")) + value));
    Bytes const forms[] = {
        form("LWOB", chunk("SURF", s0("Sky") + "COLR" + u2({4, 0xFF33, 0}))),
        object(chunk("SURF", "Void") +
               chunk("SURF", s0("Sky") + s0("") + "DIFF" + Bytes("\0\1x\0", 4) + "COLR" + u2({14}) +
                                 f4({1, 0.2f, 0}) + u2({0}))),
        form("LWO3", chunk("FORM", "SURF" + named + chunk("NAME", s0("No")) + entry)),
    };
    auto const find = [](Bytes const& bytes) {
        CoreArray<CoreString> names;
        CoreArray<GMathVec3<float>> colors;
        std::vector<unsigned char> const block(bytes.begin(), bytes.end());
        lwo_read_surface_colors(block.data(), block.size(), names, colors);
        bool const is_found = names.get_count() == 1 && names[0] == CoreString("Sky") &&
                              colors[0].x == 1 && colors[0].y == 0.2f && colors[0].z == 0;
        return is_found ? 1 : -static_cast<int>(names.get_count());
    };
    for (Bytes const& whole : forms) {
        EXPECT_EQ(find(whole), 1) << whole.substr(8, 4);
        for (std::size_t size = 0; size < whole.size() - 2; ++size) {
            EXPECT_EQ(find(whole.substr(0, size)), 0) << whole.substr(8, 4) << size;
        }
    }
}

TEST(LwoFiles, AreKnownByContent) {
    for (char const* const type : {"LWOB", "LWLO", "LWO2", "LWO3"}) {
        EXPECT_TRUE(Lwo::is_valid(write(form(type, "")).c_str())) << type;
    }
    for (Bytes const& bytes : {Bytes(), Bytes("FORM0000LWO"), form("LXOB", square)}) {
        EXPECT_FALSE(Lwo::is_valid(write(bytes).c_str())) << bytes;
    }
    EXPECT_FALSE(Lwo::is_valid("no such file"));
    EXPECT_FALSE(Lwo::is_valid(testing::TempDir().c_str()));
}

TEST(LwoFiles, LeaveOutputsAloneWhenRefused) {
    Loaded loaded;
    load_file(write(object(quad + uv_of_square + normal({0}, {1, 0, 0}))), nullptr, loaded);
    ASSERT_TRUE(loaded.is_good) << loaded.log;
    std::string const before = describe(loaded.mesh);
    Bytes const bad = object(square + quad + uv_of_square + normal({4}, {1, 0, 0}));
    for (std::string const& path : {write(bad), std::string("no such file")}) {
        load_file(path, nullptr, loaded);
        EXPECT_FALSE(loaded.is_good);
        EXPECT_EQ(loaded.log.find("2 Lwo.load: File '" + path), 0u) << loaded.log;
        EXPECT_EQ(describe(loaded.mesh), before);
    }
    load_file(write(object("")), nullptr, loaded);
    EXPECT_EQ(describe(loaded.mesh), "4:");
}

TEST(LwoFiles, ReportProgressAndStop) {
    Bytes polygons = "FACE";
    for (unsigned int i = 0; i < 100000; ++i) {
        polygons += u2({4, 0, 1, 2, 3});
    }
    std::string const path = write(object(chunk("POLS", polygons)));
    Loaded loaded;
    AppProgressBar bar("load");
    unsigned int calls = 0;
    auto const callback = [](void* user, AppProgressBar const& shown) {
        ++*static_cast<unsigned int*>(user);
        return shown.get_value() < 0.75;
    };
    bar.set_callback(callback, &calls);
    load_file(path, &bar, loaded);
    EXPECT_EQ(loaded.log, "2 Lwo.load: File '" + path + "': stopped on request.\n");
    EXPECT_TRUE(!loaded.is_good && loaded.mesh.positions.is_empty());
    EXPECT_GT(calls, 10u);
    EXPECT_LT(bar.get_value(), 0.8);
    bar.set_callback(nullptr, nullptr);
    bar.start();
    load_file(path, &bar, loaded);
    EXPECT_TRUE(loaded.is_good && bar.get_value() > 0.99);
}

}  // namespace
