#include <tests/tools/run_tool.h>

#include <gif_lib.h>

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
        {block, "--ambient-occlusion"},
        {"--ambient-occlusion", block},
        {block, "--ambient-occlusion", "1", "--background", "30507A"},
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

// A rectangle with uv coordinates; `color` may follow its corners.
std::string make_sheet(std::string const& color) {
    std::string text;
    for (char const* const corner : {"v 0 0 0", "v 2 0 0", "v 2 1 0", "v 0 1 0"}) {
        text += corner + color + "\n";
    }
    return text + "vt 0 0\nvt 3 0\nvt 3 1\nvt 0 1\nusemtl a b\nf 1/1 2/2 3/3 4/4\n";
}

// A material, a texture and the colors of vertices give the same picture.
TEST(Render, ColorsComeFromFiles) {
    ToolFolder const folder;
    std::string const empty = folder.write("empty.obj", "v 0 0 0\n");
    std::string const sheet = make_sheet("");
    std::string const expected =
        render(folder, {folder.write("colored.obj", make_sheet(" 1 0.2 0"))});
    std::string const plain = render(folder, {folder.write("plain.obj", sheet)});
    EXPECT_NE(expected, plain);

    render(folder, {empty, "--background", "FF3300"});
    std::filesystem::rename(folder.get_path("out.png"), folder.get_path("t.png"));
    std::string const texture = folder.get_path("t.png");
    EXPECT_EQ(render(folder, {folder.get_path("plain.obj"), "--texture", texture}), expected);

    std::filesystem::create_directory(folder.get_path("deep"));
    folder.write("deep/m n.mtl", "newmtl a b\nKd 1 .2 0\n");
    folder.write("escape.mtl", "newmtl a b\nKd 0 1 0\n");
    struct Row {
        char const* what;
        std::string library;  // text of the file deep/l.mtl
        char const* line;     // of the model
        bool is_colored;
        char const* warning;
    };
    std::string const no_library = std::string("newmtl").insert(0, 9000, '\xFF');
    std::string const long_line = "newmtl a b\nKd 0 1 0\n" + std::string(20000, '#');
    std::vector<Row> const rows = {
        {"a name with blanks", "", "mtllib m n.mtl", true, ""},
        {"escaped blanks, and one that is missing", "", "mtllib x.mtl m\\ n.mtl", true,
         "x.mtl is not"},
        {"a texture", "newmtl a b\nmap_Kd -s 1 1 1 t.png", "mtllib l.mtl", true, ""},
        {"the first of a name", "newmtl a b\nKd 1 .2 0\r\nnewmtl a b\nKd 0 0 0", "mtllib l.mtl",
         true, ""},
        {"a folder", "", "mtllib ../deep", false, "deep is not"},
        {"a way out", "", "mtllib ../escape.mtl", false, "escape.mtl is not"},
        {"an absolute path", "", "mtllib /etc/passwd", false, "passwd is not"},
        {"no such texture", "newmtl a b\nKd 1 .2 0\nmap_Kd C:\\pics\\u.png", "mtllib l.mtl", true,
         "texture"},
        {"a broken texture", "newmtl a b\nKd 1 .2 0\nmap_Kd l.mtl", "mtllib l.mtl", true,
         "texture l.mtl: not a PNG file"},
        {"no library at all", no_library, "mtllib l.mtl", false, ""},
        {"too long", long_line, "mtllib l.mtl", false, "too long"},
        {"too large", std::string(5000000, '\n'), "mtllib l.mtl", false, "more than"},
    };
    std::filesystem::copy(texture, folder.get_path("deep/t.png"));
    for (Row const& row : rows) {
        SCOPED_TRACE(row.what);
        folder.write("deep/l.mtl", row.library);
        std::string const model =
            folder.write("deep/model.obj", std::string(row.line) + "\n" + sheet);
        ToolRun const run =
            run_tool({"render", model, "--size", "50", "40", "-o", folder.get_path("out.png")});
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(folder.read("out.png") == expected, row.is_colored);
        EXPECT_EQ(run.errors.empty(), *row.warning == '\0') << run.errors;
        EXPECT_NE(run.errors.find(row.warning), std::string::npos) << run.errors;
        EXPECT_EQ(render(folder, {model, "--no-materials"}), plain);
    }
    // Options of a texture do what other uv coordinates would.
    std::filesystem::copy_file(folder.get_path("out.png"), folder.get_path("deep/n o.png"));
    folder.write("deep/l.mtl", "newmtl a b\nmap_Kd -s 2 1 -o 4 n o.png\n");
    std::string wide = sheet;
    wide.replace(wide.find("vt 3 0\nvt 3 1"), 13, "vt 6 0\nvt 6 1");
    EXPECT_EQ(render(folder, {folder.write("deep/model.obj", "mtllib l.mtl\n" + sheet)}),
              render(folder, {folder.write("wide.obj", wide), "--texture",
                              folder.get_path("deep/n o.png")}));
}

// Opens what was written, and gives the number of pictures.
int count_frames(std::string const& path) {
    GifFileType* const gif = DGifOpenFileName(path.c_str(), nullptr);
    int const count = gif != nullptr && DGifSlurp(gif) == GIF_OK ? gif->ImageCount : -1;
    DGifCloseFile(gif, nullptr);
    return count;
}

TEST(Render, TurntableTurns) {
    ToolFolder const folder;
    std::string const block = folder.write("block.obj", make_block(0));
    std::string const gif = folder.get_path("out.gif");
    auto const turn = [&](char const* threads) {
        ToolRun const run = run_tool({"turntable", block, "--frames", "5", "--size", "48", "36",
                                      "--threads", threads, "-o", gif});
        EXPECT_EQ(run.status, 0) << run.errors;
        return folder.read("out.gif");
    };
    std::string const once = turn("1");
    EXPECT_EQ(turn("3"), once);
    EXPECT_EQ(count_frames(gif), 5);
    EXPECT_GT(once.size(), 3000u);
    EXPECT_EQ(run_tool({"turntable", block, "--eye", "1", "1", "1"}).status, 2);
    EXPECT_EQ(run_tool({"turntable", block, "--frames", "1", "--size", "8", "8", "-o",
                        folder.get_path("no/x.gif")})
                  .status,
              1);
}

TEST(Render, SheetShowsWhatCannotBeDrawn) {
    ToolFolder const folder;
    std::filesystem::create_directory(folder.get_path("models"));
    folder.write("models/block.OBJ", make_block(0));
    folder.write("models/note.txt", "no model");
    std::string const models = folder.get_path("models");
    std::string const out = folder.get_path("sheet.png");
    auto const draw = [&] {
        return run_tool({"sheet", models, "--size", "40", "30", "--samples", "1", "-o", out});
    };
    EXPECT_EQ(draw().status, 0);
    folder.write("models/broken.obj", "v 1 2 x\n");
    folder.write("models/points.obj", "v 1 2 3\n");
    ToolRun const run = draw();
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("2 of 3 models, 82 x 90"), std::string::npos) << run.output;
    EXPECT_NE(run.errors.find("broken.obj"), std::string::npos) << run.errors;
    EXPECT_NE(run.errors.find("points.obj: there is nothing"), std::string::npos) << run.errors;
    std::string const sheet = folder.read("sheet.png");
    draw();
    EXPECT_EQ(folder.read("sheet.png"), sheet);
    EXPECT_EQ(run_tool({"sheet", folder.get_path("none"), "-o", out}).status, 1);
}

}  // namespace
