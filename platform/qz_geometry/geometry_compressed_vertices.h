#pragma once

#include <platform/qz_core.h>
#include <platform/qz_geometry/export.h>
#include <platform/qz_gmath.h>

// An array of vectors, kept as floats or as 16 bits a component within a box. A component q of
// 0..65535 means minimum + extent * (q * (1 / 65535)), in floats: the minimum exactly when the box
// has no extent on that axis. An extent above the largest float counts as that. An index at or past
// the count, 0xFFFFFFFF included, reads (0, 0, 0).
class QZ_GEOMETRY_EXPORT GeometryCompressedVertices {
  public:
    // Keeps `values`; compressed, within the box of them all (NaN components left out).
    void copy_from(CoreBasicArray<GMathVec3<float>> const& values, bool const& is_compressed);
    // The same within a given box: components outside are moved to its border, a NaN to its
    // minimum.
    void copy_from(CoreBasicArray<GMathVec3<float>> const& values, GMathBbox3<float> const& box,
                   bool const& is_compressed);

    unsigned int const& get_count() const { return m_count; }
    bool const& is_compressed() const { return m_is_compressed; }

    GMathVec3<float> get(unsigned int const& index) const {
        if (index >= m_count) {
            return {0, 0, 0};
        }
        return m_is_compressed ? decode(m_packed[index]) : m_plain[index];
    }
    void get(unsigned int const& index_0, unsigned int const& index_1, GMathVec3<float>& value_0,
             GMathVec3<float>& value_1) const {
        value_0 = get(index_0);
        value_1 = get(index_1);
    }
    void get(unsigned int const& index_0, unsigned int const& index_1, unsigned int const& index_2,
             GMathVec3<float>& value_0, GMathVec3<float>& value_1,
             GMathVec3<float>& value_2) const {
        value_0 = get(index_0);
        value_1 = get(index_1);
        value_2 = get(index_2);
    }
    // All values; the old storage of `values` is freed first.
    void get_array(CoreArray<GMathVec3<float>>& values) const;

    // Both arrays, of which one is empty, and 24 bytes of box when the values are compressed.
    unsigned long long get_memory_size() const;

  private:
    struct Packed {
        unsigned short x;
        unsigned short y;
        unsigned short z;
    };

    Packed encode(GMathVec3<float> const& value) const;
    GMathVec3<float> decode(Packed const& packed) const {
        constexpr float step = 1.0f / 65535.0f;
        return {m_minimum.x + m_extent.x * (static_cast<float>(packed.x) * step),
                m_minimum.y + m_extent.y * (static_cast<float>(packed.y) * step),
                m_minimum.z + m_extent.z * (static_cast<float>(packed.z) * step)};
    }

    CoreArray<GMathVec3<float>> m_plain;
    CoreArray<Packed> m_packed;
    GMathVec3<float> m_minimum{0, 0, 0};
    GMathVec3<float> m_extent{0, 0, 0};
    unsigned int m_count = 0;
    bool m_is_compressed = false;
};
