#include <fuzz/kept_mesh.h>
#include <fuzz/memory_file.h>
#include <fuzz/target.h>

#include <platform/qz_lwo.h>
#include <platform/qz_lwo/lwo_object.h>
#include <platform/qz_lwo/lwo_surface_colors.h>

namespace {

// From a block that ends where the input does.
bool load_from_memory(std::uint8_t const* bytes, std::size_t const& size,
                      CoreString const& item_name, unsigned int& point_count) {
    LwoMesh loaded;
    bool const is_loaded = lwo_load_from_memory(bytes, size, "input", item_name, loaded, nullptr);
    point_count = loaded.positions.get_count();
    return is_loaded;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    static KeptMesh kept_mesh;
    static MemoryFile file;
    static CoreString const path(file.get_path().c_str());
    CoreLogHandler::get_main().set_level(0);
    unsigned int point_count = 0;
    CoreArray<CoreString> names;
    CoreArray<GMathVec3<float>> colors;
    lwo_read_surface_colors(bytes, size, names, colors);
    load_from_memory(bytes, size, "L1", point_count);
    bool const is_loaded = load_from_memory(bytes, size, "", point_count);
    file.write(bytes, size);
    if (!Lwo::is_valid(path)) {
        require(!is_loaded, "only what is valid loads");
        return 0;
    }
    AppProgressBar progress("build");  // with it, 4-gons are checked
    kept_mesh.run([&](PolyMesh& mesh) {
        bool const is_imported =
            mesh.import_from_file(path, "", 0.0, nullptr, size % 2 == 0 ? &progress : nullptr);
        require(is_imported == (is_loaded && point_count != 0) &&
                    (!is_imported || mesh.get_vertex_count() == point_count),
                "a file gives what its bytes in memory give");
        return is_imported;
    });
    return 0;
}
