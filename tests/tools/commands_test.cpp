#include <tests/tools/run_tool.h>

#include <nlohmann/json.hpp>

namespace {

TEST(Commands, VisibleEqualsThePlainCount) {
    ToolFolder const folder;
    std::string const block = folder.write("block.obj", make_block(0));
    struct Row {
        std::vector<std::string> options;
        char const* expected;
    };
    std::vector<Row> const rows = {
        {{}, "8 primitives: 8 overlap the view, 8 lie within it\n9 vertices: 9 "},
        {{"--eye", "0", "0.5", "9", "--fov", "5"}, "8 primitives: 4 overlap the view, 0 lie"},
        {{"--eye", "0", "0.5", "9", "--target", "0", "0.5", "20"}, "8 primitives: 0 overlap"},
        {{"--eye", "0", "0.5", "9", "--near", "8.5"}, "8 primitives: 5 overlap"},
        {{"--eye", "0", "0.5", "9", "--far", "9"}, "8 primitives: 7 overlap the view, 3 lie"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.options));
        std::vector<std::string> arguments = {"visible", block, "--check"};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        ToolRun const run = run_tool(arguments);
        EXPECT_EQ(run.status, 0) << run.errors;
        EXPECT_EQ(run.output.substr(0, std::string(row.expected).size()), row.expected);
    }
}

TEST(Commands, InfoTellsWhatWasBuilt) {
    ToolFolder const folder;
    std::string const bent = make_block(0) + "v 9 0 0\nf 1 9 1 9 1\nf 1 1 1 1\n";
    std::string const file = folder.write("block.obj", bent);
    ToolRun const run = run_tool({"info", "--json", file});
    ASSERT_EQ(run.status, 0) << run.errors;
    nlohmann::json const info = nlohmann::json::parse(run.output);
    EXPECT_EQ(info["vertices"], 10);
    EXPECT_EQ(info["polygons_by_corners"], nlohmann::json::parse(R"({"4": 6, "5": 2})"));
    EXPECT_EQ(info["quads"], 5);
    EXPECT_EQ(info["triangles"], 8);
    EXPECT_EQ(info["degenerate_triangles"], 5);
    EXPECT_EQ(info["groups"][1]["name"], "top");
    EXPECT_EQ(info["groups"][1]["polygons"], 3);
    EXPECT_EQ(info["key"].get<std::string>().size(), 32u);
    EXPECT_NE(run_tool({"info", file}).output.find(info["key"].get<std::string>()),
              std::string::npos);
}

TEST(Commands, FaultsTellTheirReason) {
    ToolFolder const folder;
    std::string const block = folder.write("block.obj", make_block(0));
    std::string const other = folder.write("other.obj", make_block(0) + "f 1 2 9\n");
    std::string const broken = folder.write("broken.obj", "v 0 0 0\nf 1 2 x\n");
    struct Row {
        std::vector<std::string> arguments;
        int status;
        char const* part;  // of the message
    };
    std::vector<Row> const rows = {
        {{}, 2, "subcommand"},
        {{"paint"}, 2, "subcommand"},
        {{"render", block, "--shade", "nice"}, 2, "nice"},
        {{"render", block, "--size", "0", "9"}, 2, "--size"},
        {{"render", block, "--sphere", "3", "3"}, 2, "excludes"},
        {{"info"}, 2, "FILE"},
        {{"info", folder.get_path("none.obj")}, 1, "not found"},
        {{"render", broken}, 1, "line 2"},
        {{"render", block, "--uv-map", "3"}, 1, "has 0"},
        {{"render", block, "--eye", "1", "1", "1", "--target", "1", "1", "1"}, 1, "camera"},
        {{"render", block, "--size", "8", "8", "-o", folder.get_path("no/such/folder.png")},
         1,
         "cannot write"},
        {{"render", "--sphere", "3", "-1"}, 1, "--sphere"},
        {{"render", "--frames", block, other}, 1, "other polygons"},
        {{"render", "--frames", block, block, "--times", "1", "1"}, 1, "--times"},
        {{"render", block, "--shutter", "1", "0"}, 1, "--shutter"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        ToolRun const run = run_tool(row.arguments);
        EXPECT_EQ(run.status, row.status);
        EXPECT_NE(run.errors.find(row.part), std::string::npos) << run.errors;
    }
    EXPECT_EQ(run_tool({"render", "--help"}).status, 0);
}

}  // namespace
