#include <fuzz/kept_mesh.h>
#include <fuzz/target.h>

#include <vector>

// Blocks as they are, and with their true size put before them, without which few are believed.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    static KeptMesh kept_mesh;
    CoreLogHandler::get_main().set_level(0);
    auto const deserialize = [](std::uint8_t const* block, std::size_t const& block_size) {
        kept_mesh.run([&](PolyMesh& mesh) { return mesh.deserialize(block, block_size); });
    };
    deserialize(bytes, size);
    std::vector<std::uint8_t> sized(size + 4);
    for (unsigned int byte = 0; byte < 4; ++byte) {
        sized[byte] = static_cast<std::uint8_t>(sized.size() >> 8 * byte);
    }
    std::copy(bytes, bytes + size, sized.begin() + 4);
    deserialize(sized.data(), sized.size());
    return 0;
}
