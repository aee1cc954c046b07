#include <poly/mesh/content_key.h>

#include <iterator>

namespace {

constexpr unsigned int seed = 0;

template <typename T>
CoreHashInput get_input(CoreBasicArray<T> const& array) {
    return {array.get_data(), sizeof(T) * 1ull * array.get_count()};
}

}  // namespace

Core128BitHashKey compute_content_key(CoreBasicArray<GMathVec3<float>> const& positions,
                                      CoreBasicArray<GMathVec3<float>> const& velocities,
                                      PolyMeshPolygons const& polygons) {
    if (positions.is_empty()) {
        return CoreHash::null_key();
    }
    CoreHashInput const inputs[] = {
        get_input(positions), get_input(velocities), get_input(polygons.vertex_indices),
        get_input(polygons.vertex_count), get_input(polygons.shading_groups)};
    Core128BitHashKey keys[std::size(inputs)];
    CoreHash::generate_murmur3(inputs, std::size(inputs), keys, seed);
    Core128BitHashKey key;
    CoreHash::generate_murmur3(keys, sizeof keys, key, seed);
    return key;
}
