#pragma once

#include <platform/qz_core/export.h>

// A 128-bit content key. `words[0]` holds the first eight bytes in storage order.
struct Core128BitHashKey {
    unsigned long long words[2];

    friend bool operator==(Core128BitHashKey const& a, Core128BitHashKey const& b) = default;
};

// Bytes to be hashed; `data` may be null when `size` is 0, and needs no alignment.
struct CoreHashInput {
    void const* data;
    unsigned long long size;
};

class QZ_CORE_EXPORT CoreHash {
  public:
    // MurmurHash3 in its x64 128-bit form, the public algorithm of Austin Appleby. `size` is in
    // bytes; `data` may be null when it is 0, and needs no alignment.
    static void generate_murmur3(void const* data, unsigned long long const& size,
                                 Core128BitHashKey& key, unsigned int const& seed);
    // The keys of `count` inputs, each as above: sooner than one after the other.
    static void generate_murmur3(CoreHashInput const* inputs, unsigned int const& count,
                                 Core128BitHashKey* keys, unsigned int const& seed);

    // The key of nothing: all zeros.
    static Core128BitHashKey null_key() { return {{0, 0}}; }
};
