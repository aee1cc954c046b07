#include <tests/tools/run_tool.h>

namespace {

// Renders small, and gives the bytes of the picture.
std::string render(ToolFolder const& folder, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "render");
    arguments.insert(arguments.end(), {"--size", "50", "40", "-o", folder.get_path("out.png")});
    ToolRun const run = run_tool(arguments);
    EXPECT_EQ(run.status, 0) << run.errors;
    return folder.read("out.png");
}

unsigned int read_big_endian(std::string const& bytes, std::size_t const& at) {
    unsigned int value = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        value = value << 8 | static_cast<unsigned char>(bytes.at(at + i));
    }
    return value;
}

TEST(Render, PictureIsTheSameForAnyNumberOfThreads) {
    ToolFolder const folder;
    std::string const block = folder.write("block.obj", make_block(0));
    std::string const picture = render(folder, {block, "--threads", "1"});
    ASSERT_GT(picture.size(), 1000u);
    EXPECT_EQ(read_big_endian(picture, 16), 50u);  // the header chunk starts with the size
    EXPECT_EQ(read_big_endian(picture, 20), 40u);
    EXPECT_EQ(render(folder, {block, "--threads", "1"}), picture);
    EXPECT_EQ(render(folder, {block, "--threads", "3"}), picture);
    EXPECT_NE(render(folder, {block, "--target", "0", "90", "0", "--eye", "0", "80", "1"}),
              picture);
}

// Every option that changes how rays are met or colored; the search by boxes must give what asking
// all primitives gives, and the option must make a difference.
TEST(Render, SearchByBoxesMissesNothing) {
    ToolFolder const folder;
    std::string const block = folder.write("block.obj", make_block(0));
    std::string const middle = folder.write("middle.obj", make_block(0.2));
    std::string const end = folder.write("end.obj", make_block(1.5));
    std::string const still = render(folder, {block, "--samples", "4"});
    std::vector<std::vector<std::string>> const rows = {
        {block, "--exact", "--edges"},
        {block, "--shade", "normal"},
        {block, "--shade", "group"},
        {block, "--camera", "top"},
        {block, "--camera", "left", "--turn", "30", "--up", "0", "0", "1"},
        {block, "--motion"},
        {block, "--spin", "-50", "--velocity", "-1", "0.3", "0", "--shutter", "-1", "2"},
        {"--frames", block, middle, end},
        {"--frames", block, middle, end, "--times", "0", "1", "9", "--shutter", "0.25", "5"},
        {"--frames", block, end, "--shutter", "0.5", "0.5"},
        {"--sphere", "7", "5", "1", "2", "1", "--shade", "primitive"},
        {"--sphere", "9", "7", "--motion", "--exact"},
        {"--motion", "--smooth", "30"},  // the own model
    };
    for (std::vector<std::string> row : rows) {
        SCOPED_TRACE(testing::PrintToString(row));
        row.insert(row.end(), {"--samples", "4"});
        std::string const picture = render(folder, row);
        EXPECT_NE(picture, still);
        row.emplace_back("--brute-force");
        EXPECT_EQ(render(folder, row), picture);
    }
}

// A still between two frames is the frame that would be there.
TEST(Render, FramesBlendLinearly) {
    ToolFolder const folder;
    std::string const begin = folder.write("begin.obj", make_block(0));
    std::string const half = folder.write("half.obj", make_block(0.5));
    std::string const end = folder.write("end.obj", make_block(1));
    auto const draw = [&](std::vector<std::string> arguments) {
        // Without light, since normals stay those of the first frame.
        arguments.insert(arguments.end(), {"--shade", "color", "--edges", "--eye", "4", "3", "5"});
        arguments.insert(arguments.end(), {"--target", "0", "0.5", "0"});
        return render(folder, arguments);
    };
    EXPECT_EQ(draw({"--frames", begin, end, "--shutter", "0.5", "0.5"}), draw({half}));
    EXPECT_NE(draw({"--frames", begin, end, "--shutter", "0.4", "0.4"}), draw({half}));
}

TEST(Render, BrokenMeshesGivePictures) {
    ToolFolder const folder;
    std::vector<std::string> const rows = {
        "v 0 0 0\nv 1 0 0\nv 0 1 0\n",                                          // points alone
        "v nan 0 0\nv 1 inf 0\nv 0 1 0\nv 1 1 0\nf 1 2 3\nf 2 3 4\nf 4 4 4\n",  // none to draw
        "v 0 0 0\nv 1 0 0\nv 0 1 0\nv nan 1e30 0\nf 1 2 3\nf 2 3 4\n",          // one to draw
        "v 1e30 0 0\nv 0 1e30 0\nv 0 0 1e30\nf 1 2 3\n",
        "v 5 5 5\nv 5 5 5\nv 5 5 5\nf 1 2 3\n",
    };
    for (std::string const& text : rows) {
        SCOPED_TRACE(text);
        EXPECT_GT(render(folder, {folder.write("broken.obj", text), "--motion", "--edges"}).size(),
                  100u);
    }
}

}  // namespace
