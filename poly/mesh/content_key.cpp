#include <poly/mesh/content_key.h>

namespace {

constexpr unsigned int seed = 0;

template <typename T>
Core128BitHashKey hash_array(CoreBasicArray<T> const& array) {
    Core128BitHashKey key;
    CoreHash::generate_murmur3(array.get_data(), sizeof(T) * 1ull * array.get_count(), key, seed);
    return key;
}

}  // namespace

Core128BitHashKey compute_content_key(CoreBasicArray<GMathVec3<float>> const& positions,
                                      CoreBasicArray<GMathVec3<float>> const& velocities,
                                      PolyMeshPolygons const& polygons) {
    if (positions.is_empty()) {
        return CoreHash::null_key();
    }
    Core128BitHashKey const keys[5] = {
        hash_array(positions), hash_array(velocities), hash_array(polygons.vertex_indices),
        hash_array(polygons.vertex_count), hash_array(polygons.shading_groups)};
    Core128BitHashKey key;
    CoreHash::generate_murmur3(keys, sizeof keys, key, seed);
    return key;
}
