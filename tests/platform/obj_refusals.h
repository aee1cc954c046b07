#pragma once

#include <string>
#include <vector>

// "4v;" in front stands for the four points of a square.
inline std::string expand(std::string const& text) {
    std::string const points = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n";
    return text.substr(0, 3) == "4v;" ? points + text.substr(3) : text;
}

// Texts that are refused.
struct ObjRefusal {
    std::string text;
    unsigned int line;  // 0: none is told
    char const* reason;
};

inline std::vector<ObjRefusal> list_obj_refusals() {
    using namespace std::string_literals;
    std::vector<ObjRefusal> rows = {
        {"", 0, "without a point"},
        {"# nothing\nf 1 2 3\n", 0, "without a point"},
        {"\xFF\xFEv\0"s, 1, "UTF-16"},
        {"\xFE\xFF\0v"s, 1, "UTF-16"},
        {"v 1 2 3\n\nv\0"s, 3, "NUL"},
        {"v 1 2 3\n# \0"s, 2, "NUL"},
        {"v 1 2 3\0\n"s, 1, "NUL"},
        {"v 1 2 3\ng \0\n"s, 2, "NUL"},
        {"v 1 2 3\nusemtl a\0b\n"s, 2, "NUL"},
        {"v 1 2 3\nl 1 \\\n\0\n"s, 3, "NUL"},
        {"v 1 2 3\r\nv 1 2\r\n", 2, "fewer than 3"},
        {"v 1 2 \\\n", 2, "fewer than 3"},
        {"v 0,5 1 2\n", 1, "comma in a number: '0,5'"},
        {"v 1 2 3\nvt 1, 2\n", 2, "comma"},
        {"v 1 2 x3\n", 1, "not a number: 'x3'"},
        {"v 1 2 nano\n", 1, "not a number: 'nano'"},
        {"v 1 2 +-3\n", 1, "not a number"},
        {"v 1 2 --3\n", 1, "not a number"},
        {"v 1 2 .\n", 1, "not a number: '.'"},
        {"v 1 2 3\nvn 1 2 \xC3\xA9\n", 2, "not a number: '?\?'"},
        {"v 1 2 \\3\n", 1, "backslash"},
        {"# 3456\n\\v 1 2 3\n", 2, "backslash"},  // a block of 8 bytes ends behind it
        {"4v;f 1 2 0\n", 5, "'0'"},
        {"4v;f 1 2 -5\n", 5, "'-5'"},
        {"4v;f 1 2 3\nf 1 2 5\nf 1 2 3\n", 6, "names point 5, but there are only 4"},
        {"4v;f 1 2 4294967295\n", 5, "names point 4294967295"},
        {"4v;f 1 2 4294967296\n", 5, "'4294967296'"},
        {"4v;f 1 2 99999999999999999999\n", 5, "without a point that is there"},
        {"4v;f 1 2 3\nf 1 2 - 3\n", 6, "'-'"},
        {"4v;f 1 2 3x\n", 5, "'3x'"},
        {"4v;f 1 2 3.0\n", 5, "'3.0'"},
        {"4v;f 1 2 /3\n", 5, "'/3'"},
        {"4v;f 1 2 3/1/1/1\n", 5, "more than 3 indices"},
        {"4v;f 1 2 3/1/1/\n", 5, "more than 3 indices"},
    };
    for (ObjRefusal& row : rows) {
        row.text = expand(row.text);
    }
    return rows;
}
