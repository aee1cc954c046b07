#include <fuzz/memory_file.h>
#include <fuzz/query_property.h>
#include <fuzz/target.h>
#include <tests/shapes.h>
#include <tools/qzpoly/models/property_file.h>

#include <cstdio>
#include <vector>

namespace {

// Small ones, so that small files fit them; the last moves.
struct Meshes {
    Meshes() {
        make_triangle().set(meshes[0]);
        make_row().set(meshes[1]);
        Shape square = make_square();
        square.velocities = square.positions;
        square.set(meshes[2]);
    }
    PolyMesh meshes[3];
};

// No corner names an item that is not there.
void require_components(PolyMeshProperty const& property) {
    GeometryFragment fragment;
    fragment.primitive_index = 0;
    std::vector<double> values(property.get_value_extent());
    double* const nothing = nullptr;
    require(property.evaluate(CtxEval(), fragment, values.data(), nothing, nothing, nothing,
                              property.get_value_extent()) == property.get_value_extent(),
            "a property that was read has all its components");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    static Meshes const all;
    static MemoryFile file;
    file.write(bytes, size);
    // Messages are made but not wanted; faults go to the descriptor itself.
    static bool const is_silent = (stderr = std::fopen("/dev/null", "w")) != nullptr;
    require(is_silent, "messages can be thrown away");
    ToolMessages messages;
    for (PolyMesh const& mesh : all.meshes) {
        std::unique_ptr<PolyMeshProperty> const property =
            load_property(file.get_path(), mesh, messages);
        if (property) {
            query_property(mesh, *property);
            require_components(*property);
        }
    }
    return 0;
}
