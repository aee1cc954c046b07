#pragma once

#include <platform/qz_core/export.h>

// A 128-bit content key. `words[0]` holds the first eight bytes in storage order.
struct Core128BitHashKey {
    unsigned long long words[2];

    friend bool operator==(Core128BitHashKey const& a, Core128BitHashKey const& b) = default;
};

class QZ_CORE_EXPORT CoreHash {
  public:
    // MurmurHash3 in its x64 128-bit form, the public algorithm of Austin Appleby. `size` is in
    // bytes; `data` may be null when it is 0, and needs no alignment.
    static void generate_murmur3(void const* data, unsigned long long const& size,
                                 Core128BitHashKey& key, unsigned int const& seed);

    // The key of nothing: all zeros.
    static Core128BitHashKey null_key() { return {{0, 0}}; }
};
