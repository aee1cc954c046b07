#include <bench/peers.h>
#include <bench/plain/plain_murmur.h>
#include <bench/rows.h>

#include <poly/mesh/content_key.h>

#include <memory>

namespace {

// What the key of a mesh covers: positions, no velocities, corners, counts and groups.
struct KeyInput {
    BenchMesh const& mesh;
    std::vector<unsigned int> groups;

    explicit KeyInput(BenchMesh const& input) : mesh(input), groups(input.counts.size(), 0) {}
    std::vector<ByteSpan> get_spans() const {
        auto const get_span = [](auto const& values) { return std::as_bytes(std::span(values)); };
        return {get_span(mesh.positions),
                {},
                get_span(mesh.corners),
                get_span(mesh.counts),
                get_span(groups)};
    }
};

Core128BitHashKey compute_plainly(KeyInput const& input) {
    std::vector<Core128BitHashKey> keys;
    for (ByteSpan const& span : input.get_spans()) {
        keys.push_back(plain::hash(span.data(), span.size()));
    }
    return plain::hash(keys.data(), keys.size() * sizeof keys[0]);
}

}  // namespace

void add_hash_rows(Bench& bench, BenchInputs& inputs) {
    bench.add("hash/sphere", [&inputs](BenchRow& row) {
        auto const input = std::make_shared<KeyInput>(inputs.get_mesh("sphere"));
        auto const key = std::make_shared<Core128BitHashKey>();
        auto const plain_key = std::make_shared<Core128BitHashKey>();
        row.ours([=] {
            BenchMesh const& mesh = input->mesh;
            *key =
                compute_content_key(view(mesh.positions), {},
                                    {view(mesh.corners), view(mesh.counts), view(input->groups)});
        });
        row.peer(
            "plain", [=] { *plain_key = compute_plainly(*input); }, at_least(1.25));
        row.agree("key with plain", [=] { return *key == *plain_key; });
        if constexpr (has_xxhash) {
            row.peer("xxh3", [=] { hash_by_xxh3(input->get_spans()); });
            row.note("xxh3 gives other keys");
        } else {
            row.missing("xxh3");
        }
    });
}
