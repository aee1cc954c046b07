#include <platform/qz_core/core_hash.h>

#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "keys are hashed in storage order");

namespace {

constexpr unsigned long long factor_1 = 0x87c37b91114253d5ull;
constexpr unsigned long long factor_2 = 0x4cf5ad432745937full;

unsigned long long load(unsigned char const* bytes) {
    unsigned long long word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

unsigned long long scramble_1(unsigned long long const& word) {
    return std::rotl(word * factor_1, 31) * factor_2;
}

unsigned long long scramble_2(unsigned long long const& word) {
    return std::rotl(word * factor_2, 33) * factor_1;
}

unsigned long long finish(unsigned long long word) {
    word ^= word >> 33;
    word *= 0xff51afd7ed558ccdull;
    word ^= word >> 33;
    word *= 0xc4ceb9fe1a85ec53ull;
    return word ^ (word >> 33);
}

}  // namespace

void CoreHash::generate_murmur3(void const* data, unsigned long long const& size,
                                Core128BitHashKey& key, unsigned int const& seed) {
    unsigned char const* bytes = static_cast<unsigned char const*>(data);
    unsigned long long const length = size;
    unsigned long long h1 = seed;
    unsigned long long h2 = seed;
    for (unsigned long long block = length / 16; block != 0; --block, bytes += 16) {
        h1 ^= scramble_1(load(bytes));
        h1 = (std::rotl(h1, 27) + h2) * 5 + 0x52dce729;
        h2 ^= scramble_2(load(bytes + 8));
        h2 = (std::rotl(h2, 31) + h1) * 5 + 0x38495ab5;
    }
    unsigned long long const rest = length % 16;
    if (rest != 0) {
        unsigned char tail[16] = {};
        std::memcpy(tail, bytes, static_cast<std::size_t>(rest));
        h2 ^= scramble_2(load(tail + 8));  // zero bytes beyond the tail scramble to zero
        h1 ^= scramble_1(load(tail));
    }
    h1 ^= length;
    h2 ^= length;
    h1 += h2;
    h2 += h1;
    h1 = finish(h1);
    h2 = finish(h2);
    h1 += h2;
    h2 += h1;
    key = {{h1, h2}};
}
