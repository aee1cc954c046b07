#pragma once

#include <tests/shapes.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

using Bytes = std::vector<unsigned char>;

inline void set_word(Bytes& bytes, std::size_t const& word, unsigned int const& value) {
    std::memcpy(bytes.data() + 4 * word, &value, 4);
}

// A block of one point's bits per position, and its size in front.
inline Bytes make_block(Numbers const& words) {
    Bytes bytes(4 * words.size() + 4);
    std::memcpy(bytes.data() + 4, words.data(), 4 * words.size());
    set_word(bytes, 0, static_cast<unsigned int>(bytes.size()));
    return bytes;
}

struct MeshBlock {
    std::string name;
    Bytes bytes;
    bool is_accepted;
};

// Blocks of two points, no velocities, five corners and polygons of 0 to 2 corners, and what can be
// wrong with them.
inline std::vector<MeshBlock> list_mesh_blocks() {
    Numbers const words{2, 0, 0, 0, 0, 0, 0, 0, 5, 0, 1, 0, 1, 0, 3, 0, 2, 1};
    struct Row {
        char const* name;
        std::function<void(Numbers&)> change;
        bool is_accepted;
    };
    Row const rows[] = {
        {"as it is", [](Numbers&) {}, true},
        {"trailing bytes", [](Numbers& w) { w.insert(w.end(), 3, 9); }, true},
        {"a triangle of two points", [](Numbers& w) { w[16] = 3; }, true},
        {"more than all corners", [](Numbers& w) { w[17] = 4; }, false},
        {"sum of counts beyond 32 bits", [](Numbers& w) { w[15] = w[16] = 0x80000000; }, false},
        {"vertex past the end", [](Numbers& w) { w[13] = 2; }, false},
        {"too many points", [](Numbers& w) { w[0] = 0x15555556; }, false},  // 12 N wraps to 8
        {"too many velocities", [](Numbers& w) { w[7] = 0xFFFFFFFF; }, false},
        {"too many corners", [](Numbers& w) { w[8] = 0x40000005; }, false},
        {"too many polygons", [](Numbers& w) { w[14] = 4; }, false},
        {"no polygon count", [](Numbers& w) { w.resize(14); }, false},
    };
    std::vector<MeshBlock> blocks;
    for (Row const& row : rows) {
        Numbers changed = words;
        row.change(changed);
        blocks.push_back({row.name, make_block(changed), row.is_accepted});
    }
    return blocks;
}
