#include <platform/qz_core.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string_view>
#include <vector>

namespace {

Core128BitHashKey hash(std::string_view const& bytes, unsigned int const& seed) {
    Core128BitHashKey key;
    CoreHash::generate_murmur3(bytes.data(), bytes.size(), key, seed);
    return key;
}

}  // namespace

TEST(CoreHash, GivesTheKnownKeys) {
    struct Row {
        std::string_view bytes;
        unsigned int seed;
        Core128BitHashKey key;
    };
    char const* const text = "The quick brown fox jumps over the lazy dog";
    Row const rows[] = {
        {std::string_view(text, 15), 0, {{0x48137cb864e39216ull, 0xfd7baf64397ad64bull}}},
        {std::string_view(text, 16), 0xFFFFFFFFu, {{0x196db6dbd7c415e8ull, 0x3bb0ea47cc76e161ull}}},
        {std::string_view(text, 43), 0, {{0xe34bbc7bbc071b6cull, 0x7a433ca9c49a9347ull}}},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(hash(row.bytes, row.seed), row.key) << row.bytes.size() << " bytes";
    }
    EXPECT_EQ(hash({}, 0), CoreHash::null_key());
}

// The check that the algorithm was published with: the keys of 0, 01, 012, ... up to 255 bytes,
// each with 256 minus its length for a seed, hashed themselves.
TEST(CoreHash, PassesThePublishedCheckOverAllTailLengths) {
    unsigned char bytes[256];
    std::vector<Core128BitHashKey> keys(256);
    for (unsigned int length = 0; length < 256; ++length) {
        bytes[length] = static_cast<unsigned char>(length);
        // Ends where its storage ends, at an odd address.
        std::vector<unsigned char> exact(bytes, bytes + length);
        exact.insert(exact.begin(), 0);
        CoreHash::generate_murmur3(exact.data() + 1, length, keys[length], 256 - length);
    }
    Core128BitHashKey key;
    CoreHash::generate_murmur3(keys.data(), 256 * sizeof key, key, 0);
    EXPECT_EQ(key.words[0] & 0xFFFFFFFFu, 0x6384BA69u);
}
