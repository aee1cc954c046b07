#include <tests/mesh/mesh_blocks.h>
#include <tests/tools/run_tool.h>

#include <nlohmann/json.hpp>

namespace {

// A cube of this size; perhaps without one of its sides.
std::string make_cube(char const* size, bool const& is_open) {
    std::string text;
    for (unsigned int i = 0; i < 8; ++i) {
        for (unsigned int axis = 0; axis < 3; ++axis) {
            text += std::string(axis == 0 ? "v " : " ") + ((i >> axis & 1) != 0 ? size : "0");
        }
        text += "\n";
    }
    text += "f 1 3 4 2\nf 5 6 8 7\nf 1 2 6 5\nf 3 7 8 4\nf 1 5 7 3\n";
    return text + (is_open ? "" : "f 2 4 8 6\n");
}

// A triangle with velocities, which rays at rest ignore.
std::string make_moving_triangle() {
    constexpr unsigned int one = 0x3F800000;
    Bytes const bytes = make_block(Numbers{3,   0,   0, 0, one, 0,   0,   0, one, 0, 3, one, one,
                                           one, one, 0, 0, one, one, one, 3, 0,   1, 2, 1,   3});
    return {bytes.begin(), bytes.end()};
}

TEST(Verify, TellsTightMeshesFromLeakyOnes) {
    ToolFolder const folder;
    std::string const cube = folder.write("cube.obj", make_cube("2", false));
    struct Row {
        std::vector<std::string> arguments;
        int status;
        char const* output;
        char const* errors;
    };
    std::vector<Row> const rows = {
        {{cube, "--rays", "5000", "--near"}, 0, "cube: 12 triangles, closed\n", ""},
        {{folder.write("hole.obj", make_cube("2", true)), cube, "--rays", "9"},
         0,
         "open: 4 edges",
         ""},
        // Here a distance, as a product of three lengths, is too large for a float.
        {{folder.write("huge.obj", make_cube("1e14", false)), "--rays", "99"}, 1, "closed", "miss"},
        {{folder.write("dots.obj", "v 0 0 0\nv 1 1 1\nf 1 1 1\nf 2 2 2\n"), "--rays", "9"},
         0,
         "no triangles that share an edge",
         ""},
        {{folder.write("moving", make_moving_triangle()), "--rays", "9"}, 0, "bounds: 0", ""},
        {{folder.get_path("none.obj"), cube, "--rays", "9"}, 1, "cube", "not found"},
        {{cube, "--rays", "none"}, 2, "", "--rays"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        std::vector<std::string> arguments = {"verify"};
        arguments.insert(arguments.end(), row.arguments.begin(), row.arguments.end());
        ToolRun const run = run_tool(arguments);
        EXPECT_EQ(run.status, row.status);
        EXPECT_NE(run.output.find(row.output), std::string::npos) << run.output;
        EXPECT_NE(run.errors.find(row.errors), std::string::npos) << run.errors;
    }
}

// The tolerance is too small for rays at edges; without it, none slips through.
TEST(Verify, CountsTheSameForAnyNumberOfThreads) {
    std::vector<std::string> arguments = {"verify", "--sphere", "16",     "9",
                                          "--rays", "20000",    "--json", "--threads"};
    arguments.emplace_back("1");
    ToolRun const run = run_tool(arguments);
    EXPECT_EQ(run.status, 0) << run.errors;
    arguments.back() = "3";
    EXPECT_EQ(run_tool(arguments).output, run.output);
    nlohmann::json const report = nlohmann::json::parse(run.output).at(0);
    ASSERT_EQ(report["places"].size(), 4u);
    for (nlohmann::json const& place : report["places"]) {
        EXPECT_GT(place["origins_inside"], 100);
        EXPECT_EQ(place["corners_out_of_bounds"], 0);
        EXPECT_EQ(place["exact"]["edges"]["rays"], 10000);
        EXPECT_EQ(place["exact"]["edges"]["misses"], 0);
        EXPECT_EQ(place["exact"]["faces"]["parity_faults"], 0);
        EXPECT_GT(place["tolerant"]["edges"]["misses"], 0);
    }
}

}  // namespace
