#include <bench/peers.h>

#include <benchmark/benchmark.h>

#define XXH_INLINE_ALL
#include <xxhash.h>

void hash_by_xxh3(std::vector<ByteSpan> const& spans) {
    for (ByteSpan const& span : spans) {
        benchmark::DoNotOptimize(XXH3_128bits(span.data(), span.size()));
    }
}
