#include <fuzz/kept_mesh.h>
#include <fuzz/memory_file.h>
#include <fuzz/target.h>

#include <platform/qz_obj/obj_file.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace {

// Bit for bit, NaN included.
template <typename T>
bool is_same(CoreBasicArray<T> const& a, CoreBasicArray<T> const& b) {
    return a.get_count() == b.get_count() &&
           (a.is_empty() ||
            std::memcmp(a.get_data(), b.get_data(), sizeof(T) * a.get_count()) == 0);
}

template <typename Map>
bool is_same_map(CoreArray<Map> const& a, CoreArray<Map> const& b) {
    return a.get_count() == b.get_count() &&
           (a.is_empty() || (is_same<>(a[0].values, b[0].values) &&
                             is_same<unsigned int>(a[0].indices, b[0].indices)));
}

bool is_same(ObjMesh const& a, ObjMesh const& b) {
    return is_same<GMathVec3<float>>(a.positions, b.positions) &&
           is_same<unsigned int>(a.polygon_vertex_indices, b.polygon_vertex_indices) &&
           is_same<unsigned int>(a.polygon_vertex_count, b.polygon_vertex_count) &&
           is_same<unsigned int>(a.polygon_shading_groups, b.polygon_shading_groups) &&
           std::equal(a.shading_group_names.begin(), a.shading_group_names.end(),
                      b.shading_group_names.begin(), b.shading_group_names.end()) &&
           is_same_map(a.uv_maps, b.uv_maps) && is_same_map(a.normal_maps, b.normal_maps) &&
           is_same_map(a.color_maps, b.color_maps) &&
           is_same<int>(a.import_data.crease_indices, b.import_data.crease_indices) &&
           is_same<float>(a.import_data.crease_sharpnesses, b.import_data.crease_sharpnesses) &&
           a.import_data.warnings.get_count() == b.import_data.warnings.get_count();
}

// A mesh without points when the file is refused.
ObjMesh load(std::string_view const& text, unsigned int const& block_size) {
    static MemoryFile file;
    static CoreString const path(file.get_path().c_str());
    file.write(reinterpret_cast<std::uint8_t const*>(text.data()), text.size());
    ObjMesh mesh;
    return obj_read_file(path, {.block_size = block_size}, nullptr, mesh) ? std::move(mesh)
                                                                          : ObjMesh();
}

// What is read hangs neither on where the blocks of a file end nor on blanks at the beginnings of
// lines, with which no short cut is taken.
void compare_ways_of_reading(std::string_view const& text) {
    ObjMesh const whole = load(text, 1u << 16);
    require(is_same(whole, load(text, static_cast<unsigned int>(1 + text.size() % 61))),
            "a file reads the same in blocks of any size");
    std::string padded;
    for (char const character : text) {
        padded += character == '\n' ? "\n " : std::string(1, character);
    }
    require(is_same(whole, load(padded, 1u << 16)),
            "a file reads the same with blanks in front of its lines");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    static KeptMesh kept_mesh;
    static MemoryFile file;
    static CoreString const path(file.get_path().c_str());
    CoreLogHandler::get_main().set_level(0);
    file.write(bytes, size);
    compare_ways_of_reading({reinterpret_cast<char const*>(bytes), size});
    AppProgressBar progress("build");  // with it, 4-gons are checked
    kept_mesh.run([&](PolyMesh& mesh) {
        return mesh.import_from_file(path, "", 0.0, nullptr, size % 2 == 0 ? &progress : nullptr);
    });
    return 0;
}
