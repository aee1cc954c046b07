#include <tests/platform/obj_refusals.h>
#include <tests/platform/obj_testing.h>

namespace {

constexpr unsigned int block_sizes[] = {1, 2, 3, 5, 8, 13, 64, 1u << 16};

// Every text is also read with each of these block sizes, so that every edge is crossed.
struct Case {
    char const* text;  // in which "4v;" stands for the four points of a square
    char const* expected;
    unsigned int warning_count = 0;
};

void check(Case const& row) {
    SCOPED_TRACE(row.text);
    std::string const path = write_obj(expand(row.text));
    for (unsigned int const block_size : block_sizes) {
        ObjOutcome const outcome = read_obj_file(path, {.block_size = block_size});
        EXPECT_EQ(describe(outcome.mesh), outcome.is_loaded ? row.expected : "")
            << "block size " << block_size
            << (outcome.messages.empty() ? "" : outcome.messages[0].second);
        EXPECT_EQ(outcome.messages.size(), row.warning_count);
        EXPECT_EQ(outcome.mesh.import_data.warnings.get_count(), row.warning_count);
    }
}

TEST(ObjText, LinesAndBytes) {
    Case const rows[] = {
        {"v 1 2 3", "v 1 2 3"},
        {"v 1 2 3\r\nv 4 5 6\rv 7 8 9\n\r\n\n\rv 0 0 0\r", "v 1 2 3, 4 5 6, 7 8 9, 0 0 0"},
        {"\xEF\xBB\xBFv 1 2 3\n", "v 1 2 3"},
        {"  \t v\t1  2\t 3 \t\n v 4 5 6", "v 1 2 3, 4 5 6"},
        {"# v 9 9 9 \\\nv 1 2 3.# here\n  #\xE9\nv 4 5 6 #\n#", "v 1 2 3, 4 5 6"},
        {"v 1 \\\n2 \\ \t\r\n\\\r 3\n4v", "v 1 2 3"},
        {"v 1 2 3\nv 4 5 6\\\n", "v 1 2 3, 4 5 6"},
        {"4v;f 1 2\\\n 3 4\nf 1\\\n2 3\\\n", "square; f 0 1 2 3; f 0 1 2"},
        {"mtllib c:\\a\\\nv 1 2 3\ng \\\no \\\nv 4 5 6\n", "v 1 2 3, 4 5 6"},
        {"vx 1\nv 1 2 3\ncurv 0 1 \\\n f 1 2 3\nvp 1 # \\\nl 1 2\np 1\nV 1\ncsh ls\ncall x.obj\n",
         "v 1 2 3"},
        {"unknown_long_keyword_that_crosses_blocks\\\nv 9 9 9\nv 1 2 3\ns off\n", "v 1 2 3"},
        {"keyword.#with \\\nv 1 2 3\n", "v 1 2 3"},
    };
    for (Case const& row : rows) {
        check(row);
    }
}

TEST(ObjText, Numbers) {
    Case const rows[] = {
        {"v +1 2. .8e-1\nv -.5 1E2 1e-001\nv 1e+2 -0 00012", "v 1 2 0.08, -0.5 100 0.1, 100 -0 12"},
        {"v 3.1+e2 1e 2.5.6\nv 1 2 3x", "v 3.1 1 2.5, 1 2 3", 1},
        {"v nan inf -INF\nv 1.#IND -1.#INF 1.#QNAN0\nv 1 2 1.#INF00",
         "v nan inf -inf, nan -inf nan, 1 2 inf"},
        {"v 1e60 -1e60 1e-60\nv 1e-400 -1e400 0e999999999999999\nv 1e-46 1e39 .1e40",
         "v inf -inf 0, 0 -inf 0, 0 inf inf"},
        {"v 0.00000000000000000000000000000000000000001e41 100000000000000000000e-20 "
         "12345678901234567890",
         "v 1 1 1.2345679e+19"},
        {"v 16777217 16777219 0.1000000014901161193847656250001\nv 9007199254740993 16777217.0 1",
         "v 16777216 16777220 0.1, 9.007199e+15 16777216 1"},
        {"v 1 2 3 4\nv 1 2 3 4 5", "v 1 2 3, 1 2 3"},
    };
    for (Case const& row : rows) {
        check(row);
    }
}

TEST(ObjText, Colors) {
    Case const rows[] = {
        {"v 0 0 0\nv 1 0 0 1 .5 -1\nv 2 0 0 9 9 nan 0.25 # x\nv 3 0 0 0.5",
         "v 0 0 0, 1 0 0, 2 0 0, 3 0 0; color (255 255 255 255) (255 128 0 255) (255 255 0 64) "
         "(255 255 255 255)"},
        {"v 0 0 0 0 0 0 1 7 x", "v 0 0 0; color (0 0 0 255)"},
    };
    for (Case const& row : rows) {
        check(row);
    }
}

TEST(ObjText, FacesAndMaps) {
    Case const rows[] = {
        {"4v;f -4 -3 -2 -1\nf 4 2 4 1 \nf +1 2 3\t4", "square; f 0 1 2 3; f 3 1 3 0; f 0 1 2 3"},
        {"f 1 2 3\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n", "square; f 0 1 2"},
        {"4v;f\nf 1\nf 1 2\nf 1 2 3\n", "square; f 0 1 2", 1},
        // Indices that are those of the points need no list, unless the values are not as many.
        {"4v;vt 0\nvt 1 2\nvt 3 4 5\nvt 6\nf 1/1 2/2 3/3\nf 2/2 3/3 4/4\n",
         "square; f 0 1 2; f 1 2 3; uv 0 0 0, 1 2 0, 3 4 5, 6 0 0: "},
        {"4v;vt 0 1\nvt 1 1\nvt 3 4\nf 1/1 2/2 3/3\nf 1/1 3/3 2/2",
         "square; f 0 1 2; f 0 2 1; uv 0 1 0, 1 1 0, 3 4 0: 0 1 2 0 2 1"},
        {"4v;vn 0 0 1\nvn 0 0 2\nvn 0 0 3\nvn 0 0 4\nf 1//1 2//2 3//3\nf 1//1 2//2 4//3\n"
         "f 4//4 3//3 2//2\nf 1 2 3\n",
         "square; f 0 1 2; f 0 1 3; f 3 2 1; f 0 1 2; normal 0 0 1, 0 0 2, 0 0 3, 0 0 4: "
         "0 1 2 0 1 2 3 2 1 - - -"},
        {"4v;vt 5 6\nvn 0 1 0\nf 1 2 3\nf 1/1/1 2/1/1 3/1/1\nf 1/1 2//1 3/ 4//\nf 1/-1/-1 2 3",
         "square; f 0 1 2; f 0 1 2; f 0 1 2 3; f 0 1 2; uv 5 6 0: - - - 0 0 0 0 - - - 0 - -; "
         "normal 0 1 0: - - - 0 0 0 - 0 - - 0 - -"},
        {"4v;vt 5 6\nvt 7 8\nf 1/1 2/2 3/1\nf -4/-1 -3/-2 -1/-2\nf 1/1 2/-3 3/1\n",
         "square; f 0 1 2; f 0 1 3; f 0 1 2; uv 5 6 0, 7 8 0: 0 1 0 1 0 0 0 - 0", 1},
        // Indices of a face that is dropped leave no trace.
        {"4v;vt 0 1\nf 1/1 2/1\nf 1 2 3\n", "square; f 0 1 2", 1},
        {"4v;vt 0 1\nvn 1 0 0\nf 1 2 3\n", "square; f 0 1 2"},
        // Dangling indices, ahead of their values or not, are none; so is the map then.
        {"4v;f 1//1 2//2 3//3\n", "square; f 0 1 2", 1},
        {"4v;f 1/2 2/1 3/3\nf 2/0 3/x 4/-9\nf 1/99999999999999999999 2/1. 3/2\nvt 1 1\nvt 2 2\n",
         "square; f 0 1 2; f 1 2 3; f 0 1 2; uv 1 1 0, 2 2 0: 1 0 - - - - - - 1", 1},
        {"4v;vt 1 1\nvt 1 2\nvt 1 3\nf 1/1 2/2 3/3 4/4\n",
         "square; f 0 1 2 3; uv 1 1 0, 1 2 0, 1 3 0: 0 1 2 -", 1},
        // Not finite, too few.
        {"4v;vt nan 1e60 2\nvn 1 inf 2\nvn 1\nf 1/1/1 2/1/2 3/1/1\n",
         "square; f 0 1 2; uv 0 0 2: 0 0 0; normal 0 0 0, 1 0 0: 0 1 0", 2},
    };
    for (Case const& row : rows) {
        check(row);
    }
}

TEST(ObjText, Groups) {
    Case const rows[] = {
        {"4v;f 1 2 3\nusemtl b\nusemtl  Material #25\\ \t\nf 1 2 3\nusemtl b\r\nf 1 2 3\n"
         "usemtl\nf 1 2 3\nusemtl b\nf 1 2 3\nusemtl unused",
         "square; f 0 1 2; f 0 1 2; f 0 1 2; f 0 1 2; f 0 1 2; "
         "groups 0 1 2 0 2 'default' 'Material #25\\' 'b'"},
        {"4v;usemtl a\no x\ng y\nf 1 2\nusemtl c\nf 1 2 3\n", "square; f 0 1 2; groups 0 'c'", 1},
    };
    for (Case const& row : rows) {
        check(row);
    }
}

TEST(ObjText, Creases) {
    Case const rows[] = {
        {"4v;t crease 2/1/0 1 3 4.7\nt crease 4/2/0 0 1 1 2 -3 5\nt crease 4/1 0 1 1 2 \\\n9\n"
         "t hole 1/0/0 2\nec 2.5 1 4\n",
         "square; creases 1 3 0 1 1 2 0 1 1 2 0 3: 4.7 0 5 9 9 2.5"},
        {"4v;t crease 2/1/0 0 4 1\nt crease 2/1/0 0 3 1 x\nec 1 0 1\nt crease 2/1/0 -1 0 1\n",
         "square; creases 0 3: 1", 1},
        {"4v;t crease 4000000000/1/0 0 1 2\nt crease 3/1/0 0 1 2 1\nt crease 2/1/0 0 b 1\n"
         "t crease 2/0/0 0 1\nt crease 0/0/0\nt crease\nt crease 2/1/0 0 1 x\nec 1\n",
         "square", 1},
    };
    for (Case const& row : rows) {
        check(row);
    }
}

TEST(ObjText, Refusals) {
    for (ObjRefusal const& row : list_obj_refusals()) {
        SCOPED_TRACE(row.text);
        std::string const path = write_obj(row.text);
        std::string const line = row.line == 0 ? "" : " line " + std::to_string(row.line);
        std::string const place = "Obj.load: '" + path + "'" + line + ": ";
        for (unsigned int const block_size : block_sizes) {
            std::string const message =
                read_obj_file(path, {.block_size = block_size}).get_refusal();
            EXPECT_EQ(message.substr(0, place.size()), place);
            EXPECT_NE(message.find(row.reason), std::string::npos) << message;
            EXPECT_EQ(message.substr(message.size() - 2), ".\n");
        }
    }
}

}  // namespace
