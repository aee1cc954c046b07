#pragma once

#include <platform/qz_core.h>

#include <cstring>

// MurmurHash3, x64 form of 128 bits, with seed 0: one key after the other.
namespace plain {

using Word = unsigned long long;

inline Word rotate(Word const& x, int const& bits) { return x << bits | x >> (64 - bits); }

inline Word finish(Word x) {
    x = (x ^ x >> 33) * 0xff51afd7ed558ccdull;
    x = (x ^ x >> 33) * 0xc4ceb9fe1a85ec53ull;
    return x ^ x >> 33;
}

inline Core128BitHashKey hash(void const* data, Word const& size) {
    constexpr Word c1 = 0x87c37b91114253d5ull, c2 = 0x4cf5ad432745937full;
    unsigned char const* const bytes = static_cast<unsigned char const*>(data);
    Word h1 = 0, h2 = 0;
    for (Word offset = 0; offset < size; offset += 16) {
        Word k[2] = {0, 0};
        bool const is_whole = size - offset >= 16;
        if (is_whole) {
            std::memcpy(k, bytes + offset, 16);
        } else {
            std::memcpy(k, bytes + offset, size - offset);
        }
        h1 ^= rotate(k[0] * c1, 31) * c2;
        if (is_whole) {
            h1 = (rotate(h1, 27) + h2) * 5 + 0x52dce729;
        }
        h2 ^= rotate(k[1] * c2, 33) * c1;
        if (is_whole) {
            h2 = (rotate(h2, 31) + h1) * 5 + 0x38495ab5;
        }
    }
    h1 ^= size;
    h2 ^= size;
    h1 += h2;
    h2 += h1;
    h1 = finish(h1);
    h2 = finish(h2);
    h1 += h2;
    return {{h1, h2 + h1}};
}

}  // namespace plain
