#include <platform/qz_core.h>

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

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
    CoreHash::generate_murmur3("The quick brown fox jumps over the lazy dog", 43, key, 0);
    EXPECT_EQ(key, (Core128BitHashKey{{0xe34bbc7bbc071b6cull, 0x7a433ca9c49a9347ull}}));
    CoreHash::generate_murmur3(nullptr, 0, key, 0);
    EXPECT_EQ(key, CoreHash::null_key());
}

TEST(CoreHash, GivesManyKeysAsOneAfterTheOther) {
    std::vector<unsigned char> bytes(1000);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(1));
    std::vector<unsigned long long> const rows[] = {
        {}, {40}, {0, 0}, {64, 64, 64}, {900, 33, 15, 0, 500, 16}, {1, 100, 999, 1000, 0, 17}};
    for (std::vector<unsigned long long> const& sizes : rows) {
        std::vector<CoreHashInput> inputs;
        for (unsigned long long const size : sizes) {
            inputs.push_back({bytes.data() + (1000 - size), size});
        }
        std::vector<Core128BitHashKey> keys(sizes.size());
        CoreHash::generate_murmur3(inputs.data(), static_cast<unsigned int>(sizes.size()),
                                   keys.data(), 7);
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            Core128BitHashKey key;
            CoreHash::generate_murmur3(inputs[i].data, inputs[i].size, key, 7);
            EXPECT_EQ(keys[i], key) << i << " of " << sizes.size();
        }
    }
}
