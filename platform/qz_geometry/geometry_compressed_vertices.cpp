#include <platform/qz_geometry/geometry_compressed_vertices.h>

#include <algorithm>
#include <limits>

namespace {

constexpr double largest_code = 65535.0;

// Rounds to the nearest code. A NaN, and any value in a box without extent, gives code 0.
unsigned short encode_component(float const& value, float const& minimum, float const& extent) {
    double const fraction =
        (static_cast<double>(value) - static_cast<double>(minimum)) / static_cast<double>(extent);
    double const code = fraction * largest_code + 0.5;
    if (!(extent > 0.0f) || !(code > 0.0)) {
        return 0;
    }
    return static_cast<unsigned short>(std::min(code, largest_code));
}

// An inverted axis becomes [0, 0]; an extent beyond the floats is cut, so that it stays finite.
void set_axis(float const& low, float const& high, float& minimum, float& extent) {
    bool const is_valid = low <= high;
    minimum = is_valid ? low : 0.0f;
    extent = is_valid ? std::min(high - low, std::numeric_limits<float>::max()) : 0.0f;
}

}  // namespace

void GeometryCompressedVertices::copy_from(CoreBasicArray<GMathVec3<float>> const& values,
                                           bool const& is_compressed) {
    GMathBbox3<float> box = GMathBbox3<float>::get_inverted();
    if (is_compressed) {
        for (GMathVec3<float> const& value : values) {
            box.extend(value);
        }
    }
    copy_from(values, box, is_compressed);
}

void GeometryCompressedVertices::copy_from(CoreBasicArray<GMathVec3<float>> const& values,
                                           GMathBbox3<float> const& box,
                                           bool const& is_compressed) {
    m_count = values.get_count();
    m_is_compressed = is_compressed;
    if (!is_compressed) {
        m_packed.clear();
        m_plain.copy_from(values);
        return;
    }
    m_plain.clear();
    for (unsigned int axis = 0; axis < 3; ++axis) {
        set_axis(box.minimum[axis], box.maximum[axis], m_minimum[axis], m_extent[axis]);
    }
    m_packed.reset(m_count);
    for (unsigned int i = 0; i < m_count; ++i) {
        m_packed[i] = encode(values[i]);
    }
}

void GeometryCompressedVertices::get_array(CoreArray<GMathVec3<float>>& values) const {
    values.reset(m_count);
    for (unsigned int i = 0; i < m_count; ++i) {
        values[i] = get(i);
    }
}

unsigned long long GeometryCompressedVertices::get_memory_size() const {
    return m_plain.get_memory_size() + m_packed.get_memory_size() +
           (m_is_compressed ? sizeof(GMathBbox3<float>) : 0);
}

GeometryCompressedVertices::Packed
GeometryCompressedVertices::encode(GMathVec3<float> const& value) const {
    return {encode_component(value.x, m_minimum.x, m_extent.x),
            encode_component(value.y, m_minimum.y, m_extent.y),
            encode_component(value.z, m_minimum.z, m_extent.z)};
}
