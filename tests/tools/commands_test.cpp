#include <tests/platform/lwo_builder.h>
#include <tests/shapes.h>
#include <tests/tools/run_tool.h>

#include <tools/qzpoly/terminal/terminal.h>

#include <nlohmann/json.hpp>

#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <memory>
#include <sstream>

namespace {

std::string read_source_file(std::string const& name) {
    std::ifstream file(QZPOLY_SOURCE_FOLDER "/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

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
        std::vector<std::string> arguments = {"visible", block};
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
    std::string const bent =
        folder.write("bent.obj", make_block(0) + "vn 0 0.6 0.8\nf 1//1 2//1 3//1\n");
    using namespace lwo_building;
    std::string const layers =
        folder.write("layers.lwo", object(layer("A") + square + faces({4, 0, 1, 2, 3}) +
                                          layer("B") + square + faces({3, 0, 1, 2})));
    struct Row {
        std::vector<std::string> arguments;
        int status;
        char const* part;  // of the message
    };
    std::vector<Row> const rows = {
        {{}, 2, "subcommand"},
        {{"paint"}, 2, "paint; see qzpoly --help"},
        {{"render", block, "--shade", "nice"}, 2, "nice"},
        {{"render", block, "--size", "0", "9"}, 2, "--size"},
        {{"render", block, "--sphere", "3", "3"}, 2, "excludes"},
        {{"info"}, 2, "FILE"},
        {{"info", ""}, 2, "FILE: no name"},
        {{"info", folder.get_path("none.obj")}, 1, "not found"},
        {{"render", broken}, 1, "line 2"},
        {{"render", block, "--uv-map", "3"}, 2, "has 0"},
        {{"probe", block, "--normal-map", "0"}, 2, "has 0; see qzpoly probe --help"},
        {{"probe", block, "--primitive", "99"}, 2, "has 8"},
        {{"probe", "--frames", layers, layers, "--item", "B", "--primitive", "9"}, 2, "has 1"},
        {{"probe", block, "--primitive", "1", "--batch"}, 2, "excludes"},
        {{"probe", block, "--ray", "0", "0", "-.5", "0", "0", "-inf"}, 2, "not a finite number"},
        {{"probe", block, "--primitive", "1", "--property", folder.get_path(".")},
         1,
         "Is a directory"},
        {{"stats", block, "--smooth", "181"}, 2, "--smooth"},
        {{"dump", block, "--smooth", "9", "nan"}, 2, "not a finite number: nan"},
        {{"visible", block, "--fov", "nan"}, 2, "not a finite number: nan"},
        {{"render", block, "--eye", "1", "1", "1", "--target", "1", "1", "1"}, 1, "camera"},
        {{"render", block, "--size", "8", "8", "-o", folder.get_path("no/such/folder.png")},
         1,
         "cannot write"},
        {{"render", block, "--size", "8", "8", "-o", "/dev/full"}, 1, "No space left"},
        {{"pack", block, "-o", "/dev/full"}, 1, "No space left"},
        {{"info", "no\x1b\xc3\xa9\xe9"}, 1, "no\\x1B\xc3\xa9\\xE9"},
        {{"turntable", block, "--shade", "property:heat"}, 1, "no --property is named 'heat'"},
        {{"render", block, "--shade", "uv", "--texture", "x.png"}, 2, "needs --shade shaded"},
        {{"render", block, "--texture", block}, 1, "cannot read"},
        {{"render", block, "--background", "12345G"}, 2, "no color: 12345G"},
        {{"render", block, "--ambient-occlusion", "0"}, 2, "--ambient-occlusion"},
        {{"convert", block, folder.get_path("no/x.obj")}, 1, "cannot write"},
        {{"convert", "/dev/null", folder.get_path("x.obj")}, 1, "is read twice"},
        {{"render", block, "--camera", "below"}, 2, "there are front, back, left"},
        {{"render", block, "--camera", "top", "--eye", "1", "1", "1"}, 2, "excludes"},
        {{"render", "--sphere", "3", "-1"}, 2, "--sphere"},
        {{"render", "--sphere", "3", "3", "--frames", block, block}, 2, "excludes"},
        {{"render", "--frames", block, other}, 1, "other polygons"},
        {{"render", "--frames", block, block, "--times", "1", "1"}, 2, "--times"},
        {{"render", block, "--shutter", "1", "0"}, 2, "closes before it opens"},
        {{"render", block, "--shutter", "0", "1"}, 2, "nothing moves"},
        {{"probe", bent, "--smooth", "9", "--normal-map", "0"}, 2, "not used beside"},
        {{"probe", block, "--ray", "0", "0", "9", "0", "0", "-1", "--st", "0", "0"}, 2, "excludes"},
        {{"probe", block, "--primitive", "1", "--exact"}, 2, "requires --ray"},
        {{"render", block, "--shade", "color", "--ambient-occlusion"}, 2, "no light with"},
        {{"visible", block, "--near", "2", "--far", "1"}, 2, "not before --far"},
        {{"sheet", block, "--shade", "property:heat"}, 2, "no such mode"},
        {{"--paint"}, 2, "there is no option --paint"},
        {{"render", block, "--shutter", "0", "inf"}, 2, "not a finite number: inf"},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        ToolRun const run = run_tool(row.arguments);
        EXPECT_EQ(run.status, row.status);
        EXPECT_NE(run.errors.find(row.part), std::string::npos) << run.errors;
    }
    EXPECT_EQ(run_tool({"render", "--help"}).status, 0);
}

TEST(Commands, OutputIsWholeOrNotThere) {
    ToolFolder const folder;
    std::string const block = folder.write("block.obj", make_block(0));
    std::string const packed = folder.write("packed", "as it was");
    std::filesystem::permissions(packed, std::filesystem::perms(0640));
    std::filesystem::create_symlink("packed", folder.get_path("link"));
    auto const count_files = [&] {
        auto const files = std::filesystem::directory_iterator(folder.get_path("."));
        return std::distance(begin(files), end(files));
    };
    rlimit const limit = {50, RLIM_INFINITY};  // bytes of a file, as on a disk that fills up
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &limit);
    ToolRun const run = run_tool({"pack", block, "-o", folder.get_path("link")});
    rlimit const no_limit = {RLIM_INFINITY, RLIM_INFINITY};
    setrlimit(RLIMIT_FSIZE, &no_limit);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(folder.read("packed"), "as it was");
    EXPECT_EQ(count_files(), 3);
    EXPECT_EQ(run_tool({"pack", block, "-o", folder.get_path("link")}).status, 0);
    EXPECT_EQ(folder.read("packed"), folder.read("link"));
    EXPECT_GT(folder.read("packed").size(), 100u);
    EXPECT_EQ(std::filesystem::status(packed).permissions(), std::filesystem::perms(0640));
    EXPECT_EQ(count_files(), 3);
}

TEST(Commands, InterruptsLeaveFilesAsTheyWere) {
    ToolFolder const folder;
    std::string const out = folder.write("out", "as it was");
    auto const interrupt = [&](bool const& is_writing) {
        catch_interrupts();
        if (is_writing) {
            begin_writing();
        }
        std::raise(SIGINT);
        char const* const arguments[] = {"qzpoly", "pack", "--sphere", "9", "9", "-o", out.c_str()};
        std::_Exit(run_program(7, arguments));
    };
    EXPECT_EXIT(interrupt(false), testing::ExitedWithCode(130), "interrupted");
    EXPECT_EXIT(interrupt(true), testing::ExitedWithCode(130), "interrupted");
    EXPECT_EQ(folder.read("out"), "as it was");
}

TEST(Commands, DumpHasTheFewestDigitsThatReadBack) {
    ToolFolder const folder;
    std::string const file = folder.write(
        "points.obj", "v 123456792 100000 -0\nv 0.1 16777217 1e-45\nv 7.3e27 nan -1e999\n");
    EXPECT_NE(run_tool({"dump", file})
                  .output.find("[1.2345679e+08,1e+05,-0,0.1,16777216,1e-45,7.3e+27,null,-1e999]"),
              std::string::npos);
}

// A mesh that was converted and read back is the same in every array.
TEST(Commands, ConvertKeepsTheMesh) {
    using namespace lwo_building;
    ToolFolder const folder;
    std::string const tail =
        "vt 0.1 -0 0.3\nvt 1e-30 3.4e38\nvn 0 0.6 0.8\nusemtl  a  b\nf 1/1/1 2 3//1 4/2\n"
        "usemtl\nf 9 8 7\nt crease 2/1/0 0 8 2.5\nec 1e-7 1 2\n";
    Bytes const by_corner = chunk("VMAD", uv_head("uv") + u2({1, 0}) + f4({0.5, 1}));
    Bytes const tags_of_two = chunk("TAGS", s0("Sky") + s0(" Ink "));
    struct Row {
        char const* what;
        std::string text;
        char const* warning;
    };
    std::vector<Row> const rows = {
        {"plain", make_block(0.1), ""},
        {"everything", make_block(1.0 / 3) + tail, ""},
        {"colors", "v 0 0 0 1 0.5 0\nv 1e-45 inf nan 0 0 0 0.25\nv nan 4 5\nf 1 2 3\n",
         "vertex 1 is not valid: (1e-45, inf, nan), and 1 more\n"},
        {"what has no place", "o a\ng b\ns 1\n" + make_block(0) + "l 1 2\n",
         "1 of g, 1 of l, 1 of o, 1 of s"},
        {"LightWave",
         object(tags_of_two + faces({4, 0, 1, 2, 3, 3, 0, 1, 2}) + by_corner + tags({0, 0})), ""},
        {"surface",
         object(tags_of_two + faces({4, 0, 1, 2, 3}) + tags({0, 0}) +
                chunk("SURF", s0("Sky") + s0("") + "COLR" + u2({14}) + f4({1, 0, 0}) + u2({0}))),
         "colors of surfaces are left out"},
        {"names of maps", object(faces({4, 0, 1, 2, 3}) + uv({0}, {0, 1})), "U becomes uv"},
        {"names of groups", object(tags_of_two + faces({4, 0, 1, 2, 3}) + tags({0, 1})), "' Ink '"},
    };
    std::string const out = folder.get_path("out.obj");
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        std::string const file = folder.write("in", row.text);
        ToolRun const run = run_tool({"convert", file, out});
        EXPECT_EQ(run.status, 0);
        EXPECT_NE(run.errors.find(row.warning), std::string::npos) << run.errors;
        if (!std::string(row.what).starts_with("names")) {
            EXPECT_EQ(run.errors.empty(), *row.warning == '\0') << run.errors;
            EXPECT_EQ(run_tool({"dump", out}).output, run_tool({"dump", file}).output);
            std::string const text = folder.read("out.obj");
            EXPECT_EQ(run_tool({"convert", out, out}).status, 0);
            EXPECT_EQ(folder.read("out.obj"), text);
        }
    }
    EXPECT_EQ(run_tool({"convert", out, out, "--uv-map", "1"}).status, 2);
}

TEST(Commands, KnowBlocksThatMove) {
    ToolFolder const folder;
    Shape shape = make_square();
    shape.velocities.assign(4, {1, 0, 0});
    PolyMesh mesh;
    shape.set(mesh);
    unsigned long long size = 0;
    std::unique_ptr<unsigned char, decltype(&std::free)> const bytes(mesh.serialize(size),
                                                                     &std::free);
    std::string const block =
        folder.write("block", {reinterpret_cast<char const*>(bytes.get()), size});
    std::string const picture = folder.get_path("picture.png");
    std::vector<std::string> render = {"render", block, "--size", "8", "6", "-o", picture};
    EXPECT_EQ(run_tool(render).status, 0);
    std::string const still = folder.read("picture.png");
    render.insert(render.end(), {"--shutter", "0", "1"});
    EXPECT_EQ(run_tool(render).status, 0);
    EXPECT_NE(folder.read("picture.png"), still);
    EXPECT_EQ(run_tool({"dump", block, "--no-check-quads"}).errors,
              "error: cannot load " + block + ": the 4-gons of a byte block are always checked\n");
    EXPECT_EQ(run_tool({"convert", block, folder.get_path("out.obj")}).errors,
              "warning: velocities are left out\n");
}

// Help, manual page and completion know every subcommand.
TEST(Commands, AreAllDocumented) {
    std::string const help = run_tool({"--help"}).output;
    std::string const shell = read_source_file("complete.bash");
    std::string const manual = read_source_file("qzpoly.1");
    std::istringstream lines(help.substr(help.find("Subcommands:") + 12));
    unsigned int count = 0;
    for (std::string name; lines >> name; ++count) {
        SCOPED_TRACE(name);
        EXPECT_NE(run_tool({name, "--help"}).output.find("\n  qzpoly " + name), std::string::npos);
        EXPECT_NE(shell.find(name), std::string::npos);
        EXPECT_NE(manual.find(".TP\n.B " + name + "\n"), std::string::npos);
        std::getline(lines, name);
        if (lines.peek() == '\n') {
            break;
        }
    }
    EXPECT_GE(count, 11u);
}

}  // namespace
