#include <tests/tools/run_tool.h>

#include <tools/qzpoly/models/obj_statements.h>
#include <tools/qzpoly/pictures/palette.h>
#include <tools/qzpoly/pictures/picture_text.h>
#include <tools/qzpoly/pictures/texture.h>
#include <tools/qzpoly/pictures/texture_statement.h>

#include <cmath>
#include <random>
#include <set>

namespace {

ToolImage make_noise(unsigned int const& width, unsigned int const& height,
                     unsigned int const& seed) {
    std::mt19937 random(seed);
    ToolImage image(width, height);
    for (unsigned char& byte : image.bytes) {
        byte = static_cast<unsigned char>(random());
    }
    return image;
}

// Pixel centers give the pixels themselves, a turn further on too; between them it is linear.
TEST(Texture, RepeatsAndBlends) {
    ToolImage const image = make_noise(3, 2, 1);
    ToolTexture const texture{ToolImage(image)};
    auto const get_light = [&](unsigned int const& x, unsigned int const& y) {
        unsigned char const* const p = &image.bytes[3 * (3 * (y % 2) + x % 3)];
        return from_display(float(p[0]) / 255, float(p[1]) / 255, float(p[2]) / 255);
    };
    for (int turn : {-7, -1, 0, 1, 1000}) {
        for (unsigned int place = 0; place < 6; ++place) {
            unsigned int const x = place % 3;
            unsigned int const y = place / 3;
            double const u = (x + 0.5) / 3 + turn;
            double const v = 1 - (y + 0.5) / 2 - turn;
            auto const expect = [&](ToolColor const& found, ToolColor const& wanted) {
                EXPECT_LT(gmath_length(found - wanted), 1e-5f) << turn << " " << x << " " << y;
            };
            expect(texture.get_color(u, v), get_light(x, y));
            expect(texture.get_color(u + 0.25 / 3, v),
                   get_light(x, y) * 0.75f + get_light(x + 1, y) * 0.25f);
            expect(texture.get_color(u, v - 0.25), (get_light(x, y) + get_light(x, y + 1)) * 0.5f);
        }
    }
    EXPECT_TRUE(std::isfinite(texture.get_color(-1e-30, 1e300).x));
}

TEST(Texture, RefusesWhatIsBroken) {
    ToolFolder const folder;
    std::string reason;
    std::size_t size = 0;
    ToolMessages messages;
    ASSERT_TRUE(write_png(make_noise(9, 7, 2), folder.get_path("whole.png"), messages));
    std::string const whole = folder.read("whole.png");
    auto const load = [&](std::string const& bytes, std::size_t const& largest_size) {
        return load_texture(folder.write("t.png", bytes), largest_size, size, reason) != nullptr;
    };
    EXPECT_TRUE(load(whole, 63));
    EXPECT_EQ(size, 63u);
    EXPECT_FALSE(load(whole, 62));
    EXPECT_NE(reason.find("9 x 7"), std::string::npos) << reason;
    for (std::size_t length = 0; length + 20 < whole.size(); ++length) {
        EXPECT_FALSE(load(whole.substr(0, length), 63)) << length;
        EXPECT_FALSE(reason.empty());
    }
    // Dimensions that so few bytes cannot have, with their checksum.
    std::string wide = whole;
    wide.replace(16, 17, std::string("\0\0\x20\0\0\0\x20\0\x8\x2\0\0\0\xFD\xC8\x5D\x0E", 17));
    EXPECT_FALSE(load(wide, tool_largest_texture));
    EXPECT_EQ(reason, "too short for 8192 x 8192 pixels");
    for (unsigned int seed = 0; seed < 100; ++seed) {
        std::mt19937 random(seed);
        std::string bytes = whole;
        bytes[random() % bytes.size()] = static_cast<char>(random());
        load(bytes, 1u << 16);  // whatever comes of it
    }
}

TEST(Texture, IsFoundBehindOptions) {
    struct Row {
        char const* text;
        char const* path;
        float scale[2];
        float offset[2];
    };
    for (Row const& row : {
             Row{"a b.png", "a b.png", {1, 1}, {0, 0}},
             Row{"-s 2 3.png", "3.png", {2, 1}, {0, 0}},
             Row{"-s 2 -3 1 -o .5 +1e-1 7 x -o.png", "x -o.png", {2, -3}, {0.5f, 0.1f}},
             Row{"-o 0.25 nan 1", "nan 1", {1, 1}, {0.25f, 0}},
             Row{"-blendu off -clamp on -mm 0 1 -t 1 1 -bm 2 -texres 64 -imfchan r -cc on -type "
                 "s\tx",
                 "x",
                 {1, 1},
                 {0, 0}},
             Row{"-s", "", {1, 1}, {0, 0}},
             Row{"-odd x", "-odd x", {1, 1}, {0, 0}},
         }) {
        ToolTextureStatement const found = read_texture_statement(row.text);
        EXPECT_EQ(found.path, row.path);
        EXPECT_EQ(found.scale, GMathVec2<float>(row.scale[0], row.scale[1])) << row.text;
        EXPECT_EQ(found.offset, GMathVec2<float>(row.offset[0], row.offset[1])) << row.text;
    }
}

TEST(Palette, ShowsWhatIsThere) {
    // Colors in the middle of their levels, few enough for all to have their own.
    ToolImage flags(40, 30);
    for (unsigned int i = 0; i < 1200; ++i) {
        for (unsigned int channel = 0; channel < 3; ++channel) {
            flags.bytes[3 * i + channel] = static_cast<unsigned char>(
                (i / 40 * 7 + i % 5 * 3 + channel * i / 200) % 6 * 40 + 20);
        }
    }
    struct Row {
        char const* what;
        ToolImage image;
        double largest_mean_error;
    };
    ToolImage gradient(256, 16);
    for (unsigned int i = 0; i < 256 * 16; ++i) {
        gradient.bytes[3 * i] = static_cast<unsigned char>(i % 256);
        gradient.bytes[3 * i + 1] = static_cast<unsigned char>(200 - i % 256 / 4);
    }
    for (Row const& row : {Row{"one color", ToolImage(5, 4), 0}, Row{"flags", flags, 0},
                           Row{"gradient", gradient, 3}, Row{"noise", make_noise(64, 64, 3), 22}}) {
        std::vector<unsigned char> numbers;
        ToolPalette const palette = choose_palette(row.image, numbers);
        ASSERT_EQ(numbers.size() * 3, row.image.bytes.size());
        double error = 0;
        for (std::size_t i = 0; i < row.image.bytes.size(); ++i) {
            error += std::abs(palette.colors[numbers[i / 3]][i % 3] - row.image.bytes[i]);
        }
        EXPECT_LE(error / double(row.image.bytes.size()), row.largest_mean_error) << row.what;
    }
}

TEST(PictureText, HasALetterForEachCharacter) {
    std::set<std::vector<unsigned char>> letters;
    for (char character = ' '; character <= '~'; ++character) {
        ToolImage image(6, 8);
        draw_text(image, {&character, 1}, 0, 0, 1, ToolColor(1, 1, 1));
        letters.insert(image.bytes);
    }
    EXPECT_EQ(letters.size(), 95u);
    ToolImage image(20, 9);
    draw_text(image, "cut off\xFF\n", 3, 5, 3, ToolColor(1, 1, 1));  // within its bytes
    fill(image, 19, 8, ~0u - 30, 7, ToolColor(1, 1, 1));
}

TEST(ObjStatements, HaveTheLinesOfTheReader) {
    struct Row {
        char const* text;
        char const* expected;  // keyword, words, line
    };
    for (Row const& row : {
             Row{"", ""},
             Row{"f 1 2 3", "f3@1 "},
             Row{"\n\r\r\n# f\nv 1 2 #3 4\n", "v2@5 "},
             Row{"f 1 2\\\n3 \\ \n\\\n 4\nv", "f4@1 v0@5 "},
             Row{"g a \\\nf 1\no \\\nusemtl \\\nv 1", "g0@1 f1@2 o0@3 usemtl0@4 v1@5 "},
             Row{"\t f\v1\f2\nvt 1 \\", "f2@1 vt1@2 "},
         }) {
        std::string found;
        ToolObjStatements statements(row.text);
        ToolObjStatement statement;
        while (statements.find_next(statement)) {
            found.append(statement.keyword).append(std::to_string(statement.word_count));
            found.append("@").append(std::to_string(statement.line)).append(" ");
        }
        EXPECT_EQ(found, row.expected) << row.text;
    }
}

}  // namespace
