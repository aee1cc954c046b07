#include <tests/platform/obj_testing.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

#include <sys/stat.h>
#include <sys/time.h>

namespace {

std::string const points = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n";

TEST(ObjHostile, ThingsThatAreNoFiles) {
    std::string const pipe = get_obj_path();
    std::string const loop = pipe + ".loop";
    std::filesystem::create_symlink(loop, loop);
    struct Row {
        std::string path;
        char const* reason;
    };
    Row const rows[] = {
        {pipe + ".none", "No such file or directory"},
        {::testing::TempDir(), "Is a directory"},
        {loop, "Too many levels of symbolic links"},
        {write_obj("") + "/in it", "Not a directory"},
        {"/proc/self/mem", "Input/output error"},
        {"/dev/null", "the file ends without a point"},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(read_obj_file(row.path).get_refusal(),
                  "Obj.load: '" + row.path + "': " + row.reason + ".\n");
    }
    std::filesystem::remove(pipe);
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::signal(SIGALRM, [](int) {});
    itimerval timer = {{0, 10000}, {0, 10000}};  // signals, in microseconds, that end no wait
    ::setitimer(ITIMER_REAL, &timer, nullptr);
    EXPECT_EQ(read_obj_file(pipe).get_refusal(),
              "Obj.load: '" + pipe + "': Nobody writes to this pipe.\n");
    std::thread writer([&pipe] {
        std::ofstream stream(pipe);
        // Longer than anybody is waited for: that the pipe is open is enough.
        std::this_thread::sleep_for(std::chrono::milliseconds(2100));
        stream << points << std::flush;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        stream << "f 1 2 3 4\n";
    });
    AppProgressBar bar("load");
    ObjOutcome const outcome = read_obj_file(pipe, {}, &bar);
    writer.join();
    timer = {};
    ::setitimer(ITIMER_REAL, &timer, nullptr);
    EXPECT_EQ(describe(outcome.mesh), "square; f 0 1 2 3");
    EXPECT_EQ(bar.get_value(), 0.0);
    std::fstream const silent(pipe);  // both ends are open
    bar.request_stop();
    EXPECT_EQ(read_obj_file(pipe, {}, &bar).get_refusal(),
              "Obj.load: '" + pipe + "' line 1: stopped.\n");
}

TEST(ObjHostile, FailureLeavesTheOutputs) {
    CoreArray<GMathVec3<float>> positions;
    CoreArray<unsigned int> indices, counts, groups;
    CoreArray<CoreString> names;
    CoreArray<GeometryUvMap> uv_maps;
    CoreArray<GeometryNormalMap> normal_maps;
    CoreArray<GeometryColorMap> color_maps;
    ResourceImportData* data = nullptr;
    auto const load = [&](std::string const& text) {
        return Obj::load(write_obj(text).c_str(), positions, indices, counts, groups, names,
                         uv_maps, normal_maps, color_maps, data, nullptr);
    };
    ASSERT_TRUE(load(points + "vt 0 0\nvn 0 0 1\nusemtl a\nf 1/1/1 2/1/1 3/1/1\nf 1 2\n"));
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->warnings.get_count(), 1u);
    ResourceImportData* const first = data;
    unsigned int const level = CoreLogHandler::get_main().get_level();
    CoreLogHandler::get_main().set_level(0);
    EXPECT_FALSE(load("v 9 9 9\nv 9 9 9 1 1 1\nusemtl b\nvn 9 9 9\nf 1//1 1//1 1//1\nf 7 7 7\n"));
    CoreLogHandler::get_main().set_level(level);
    EXPECT_EQ(data, first);
    EXPECT_EQ(positions.get_count(), 4u);
    EXPECT_EQ(join(indices) + "; " + join(counts) + "; " + join(groups), "0 1 2; 3; 0");
    EXPECT_EQ(names[0], CoreString("a"));
    EXPECT_TRUE(uv_maps.get_count() == 1 && normal_maps.get_count() == 1 && color_maps.is_empty());
    delete data;
}

TEST(ObjHostile, CountsUpToTheLimitAndNotBeyond) {
    struct Counted {
        char const* repeated;
        unsigned int count;  // of points, values or corners that one adds
    };
    for (Counted const& row : {Counted{"v 1 2 3\n", 1}, Counted{"vt 1 2\n", 1},
                               Counted{"vn 1 2 3\n", 1}, Counted{"f 1 1 1\n", 3}}) {
        unsigned int const limit = 3000;
        std::string text = row.repeated[1] == ' ' && row.repeated[0] == 'v' ? "" : "v 1 2 3\n";
        for (unsigned int i = 0; i < limit; i += row.count) {
            text += row.repeated;
        }
        ObjLimits const limits = {.block_size = 512, .largest_count = limit};
        EXPECT_TRUE(read_obj(text, limits).is_loaded) << row.repeated;
        EXPECT_NE(read_obj(text + row.repeated, limits).get_refusal().find("more points"),
                  std::string::npos)
            << row.repeated;
    }
}

TEST(ObjHostile, StopsWhenAskedAndTellsHowFarItIs) {
    std::string text = points;
    while (text.size() < 4000000) {
        text += "f 1 2 3 4\n";
    }
    std::string const path = write_obj(text);
    AppProgressBar bar("load");
    unsigned int calls = 0;
    auto const count_calls = [](void* user, AppProgressBar const& told) {
        return ++*static_cast<unsigned int*>(user) < 20 || told.get_value() == 1.0;
    };
    bar.set_callback(count_calls, &calls);
    EXPECT_NE(read_obj_file(path, {}, &bar).get_refusal().find("stopped"), std::string::npos);
    EXPECT_EQ(calls, 20u);
    EXPECT_LT(bar.get_value(), 0.5);

    calls = 0;
    bar.set_callback(nullptr, nullptr);
    bar.start();
    EXPECT_TRUE(read_obj_file(path, {}, &bar).is_loaded);
    EXPECT_EQ(bar.get_value(), 1.0);
}

TEST(ObjHostile, LongLinesAndManyNames) {
    std::string corners = "f";
    std::string names;
    for (unsigned int i = 0; i < 200000; ++i) {
        corners += i % 3 == 0 ? " 1" : i % 3 == 1 ? "\t-1" : " \\\n2/1/1";
        names += "usemtl material " + std::to_string(i) + "\nf 1 2 3\n";
    }
    std::string const text = points + corners + "\n#" + std::string(1000000, ' ') + "\n" + names +
                             "usemtl " + std::string(100000, 'x') +
                             "\nf 1 2 3\nusemtl material 7\n" + "f 1 2 3\n";
    ObjOutcome const outcome = read_obj(text);
    ASSERT_TRUE(outcome.is_loaded);
    EXPECT_EQ(outcome.mesh.polygon_vertex_count[0], 200000u);
    EXPECT_EQ(outcome.mesh.polygon_vertex_indices[199999], 3u);
    EXPECT_EQ(outcome.mesh.shading_group_names.get_count(), 200002u);
    EXPECT_EQ(outcome.mesh.shading_group_names[200001].get_length(), 100000u);
    EXPECT_EQ(outcome.mesh.polygon_shading_groups[200002], 8u);
    EXPECT_NE(read_obj("v 1 2 " + std::string(200000, '0')).get_refusal().find("65536"),
              std::string::npos);
}

// Whatever bytes are changed, dropped or doubled: a mesh whose indices are all in range, or one
// refusal; and the same for every block size.
TEST(ObjHostile, MutatedBytes) {
    std::string const seeds[] = {
        points + "vt 0.5 0.25\nvt 1 0\nvn 0 0 1\nvn 1 0 0\nusemtl a b\nf 1/1/1 2/2/2 3/1/2\n"
                 "f 1//1 2//2 3//1 -1//-1\n# c\ns 1\nf 1 2 3 \\\n 4\nt crease 2/1/0 0 1 2.5\n",
        "v -0.037830 0.127940 1e-5 1 .5 0\r\nv 1 2 3\r\nv 4 5 6 0 0 0 1\r\nvt 1 2\r\n"
        "vt 3 4 5\r\nvt 6 7\r\nf 1/1 2/2 3/3\r\nf 3/3 2/2 1/1\r\nusemtl x\r\nf 1 2 3\r\n"
        "ec 1 1 2\r\ncurv \\\r\n1 2\r\n",
    };
    std::string const bytes = "0123456789 \t\n\r/.-+e#\\vftn,x\xFF" + std::string(1, '\0');
    unsigned int loaded = 0;
    for (unsigned int seed = 0; seed < 3000; ++seed) {
        std::mt19937 random(seed);
        std::string text = seeds[seed % 2];
        for (unsigned int i = 0; i <= seed % 3; ++i) {
            std::size_t const at = random() % text.size();
            switch (random() % 4) {
            case 0:
                text.erase(at, 1 + random() % 4);
                break;
            case 1:
                text.insert(at, text.substr(random() % text.size(), random() % 16));
                break;
            default:
                text[at] = bytes[random() % bytes.size()];
            }
        }
        ObjOutcome const outcome = read_obj(text);
        unsigned int const block_size = 1 + static_cast<unsigned int>(random() % 40);
        ObjOutcome const again = read_obj_file(get_obj_path(), {block_size});
        ASSERT_EQ(outcome.is_loaded, again.is_loaded) << text;
        ASSERT_EQ(outcome.messages, again.messages) << text;
        if (!outcome.is_loaded) {
            outcome.get_refusal();
            continue;
        }
        ++loaded;
        ASSERT_EQ(describe(outcome.mesh), describe(again.mesh)) << text;
        for (unsigned int const index : outcome.mesh.polygon_vertex_indices) {
            ASSERT_LT(index, outcome.mesh.positions.get_count()) << text;
        }
        for (GeometryUvMap const& map : outcome.mesh.uv_maps) {
            for (unsigned int const index : map.indices) {
                ASSERT_TRUE(index == ~0u || index < map.values.get_count()) << text;
            }
        }
    }
    EXPECT_GT(loaded, 1000u);
    EXPECT_LT(loaded, 2500u);
}

}  // namespace
