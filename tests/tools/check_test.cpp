#include <tests/tools/run_tool.h>

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::json;

constexpr char const* square = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n";
constexpr char const* cube =
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 1\nv 1 0 1\nv 1 1 1\nv 0 1 1\n"
    "f 4 3 2 1\nf 5 6 7 8\nf 1 2 6 5\nf 2 3 7 6\nf 3 4 8 7\nf 4 1 5 8\n";

// What is found, without the kinds that are clean.
Json find_counts(ToolRun const& run) {
    Json counts = Json::object();
    Json const report = Json::parse(run.output);
    for (auto const& [kind, fault] : report[0]["faults"].items()) {
        if (fault["count"] != 0) {
            counts[kind] = fault["count"];
        }
    }
    return counts;
}

TEST(Check, FindsEachKindOfFault) {
    ToolFolder const folder;
    struct Row {
        char const* name;
        std::string text;
        char const* counts;
    };
    std::string const points = square;
    std::vector<Row> const rows = {
        {"closed", cube, "{}"},
        {"open", points + "f 1 2 3 4\n", R"({"border-edge": 4})"},
        {"spare point", std::string(cube) + "v 9 9 9\n", R"({"unused-vertex": 1})"},
        {"no number", points + "v nan 0 -inf\nf 1 2 3 4\nf 1 5 2\n",
         R"({"border-edge": 5, "invalid-position": 1})"},
        {"three at an edge", points + "v 0 0 1\nf 1 2 3\nf 2 1 4\nf 1 2 5\n",
         R"({"border-edge": 6, "non-manifold-edge": 1})"},
        {"turned over", points + "f 1 2 3\nf 1 4 3\nf 2 3 4\n",
         R"({"border-edge": 3, "winding": 2})"},
        {"not merged", points + "v 0 0 -0\nv 1 1 0\nf 1 2 3\nf 5 6 4\n",
         R"({"border-edge": 6, "duplicate-edge": 2})"},
        {"no area", points + "v 0.5 0 0\nf 1 2 5\n",
         R"({"border-edge": 3, "unused-vertex": 2, "zero-area": 1})"},
        {"no area but by rounding",
         "v 1000.1 0.1 7.7\nv 1000.2 0.2 7.7\nv 1000.3 0.3 7.7\nf 1 2 3\n",
         R"({"border-edge": 3, "zero-area": 1})"},
        {"vertex twice", points + "f 1 2 3 3 4\n",
         R"({"border-edge": 4, "repeated-vertex": 1, "uncut-polygon": 1})"},
        {"crossing itself", "v 0 0 0\nv 2 1 0\nv 2 0 0\nv 0 1 0\nv 1 3 0\nf 1 2 3 4 5\n",
         R"({"border-edge": 5, "uncut-polygon": 1})"},
        {"bent", "v 0 0 0\nv 1 0 0\nv 1 1 0.1\nv 0 1 0\nf 1 2 3 4\n",
         R"({"border-edge": 4, "non-planar": 1})"},
        {"mirrored uv, outside", points + "vt 0 0\nvt 2 0\nvt 2 1\nf 1/1 3/2 2/3\nf 1/3 4/2 3/1\n",
         R"({"border-edge": 4, "uv-flipped": 1, "uv-outside": 2})"},
        {"uv at some corners", points + "vt 7 7\nf 1/1 2 3 4\n", R"({"border-edge": 4})"},
        {"some without a group", points + "f 1 2 3\nusemtl a\nf 1 3 4\n",
         R"({"border-edge": 4, "no-group": 1})"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        std::string const file = folder.write("mesh.obj", row.text);
        ToolRun const run = run_tool({"check", file, "--json"});
        Json const expected = Json::parse(row.counts);
        EXPECT_EQ(find_counts(run), expected);
        EXPECT_EQ(run.status, expected.empty() ? 0 : 1);
        if (expected.size() == 1) {
            EXPECT_EQ(run_tool({"check", file, "--ignore", expected.begin().key()}).status, 0);
        }
    }
}

TEST(Check, TellsWhere) {
    ToolFolder const folder;
    std::string const tricky =
        "# f 1 2 3\r\nv 0 0 0 # v\r\n v 1 0 \\\r\n 0\r\nv 1 1 0\r\n\r\ng f \\\r\nf 1 2\r\n"
        "f 1 2 \\\r\n  3\r\nv 0 1 0\r\nf 1 3 4 4\r\n";
    std::string const file = folder.write("mesh.obj", tricky);
    ToolRun const run = run_tool({"check", file, "--json", "--ignore", "border-edge"});
    Json const places = Json::parse(run.output)[0]["faults"]["repeated-vertex"]["places"];
    EXPECT_EQ(places, Json::parse(R"([{"polygon": 1, "line": 12}])")) << run.output;
    ToolRun const text = run_tool({"check", file, "--places", "1"});
    EXPECT_NE(text.output.find("vertices 0 and 1 of polygon 0, line 9\n         ...\n"),
              std::string::npos)
        << text.output;

    std::string const picture = folder.get_path("picture.png");
    std::vector<std::string> arguments = {"check", file,        "--size", "60",
                                          "50",    "--picture", picture};
    EXPECT_EQ(run_tool(arguments).status, 1);
    std::string const drawn = folder.read("picture.png");
    EXPECT_GT(drawn.size(), 500u);
    EXPECT_EQ(run_tool(arguments).status, 1);
    EXPECT_EQ(folder.read("picture.png"), drawn);
    arguments.push_back(file);
    EXPECT_EQ(run_tool(arguments).status, 2);
    EXPECT_EQ(run_tool({"check", "--ignore", "evil", file}).status, 2);
    EXPECT_EQ(run_tool({"check", folder.get_path("none"), file}).status, 1);
}

}  // namespace
