#pragma once

#include <platform/qz_gmath.h>

#include <cassert>

// Equal components, where +0 and -0 are the same.
inline bool is_same_half(unsigned short const& a, unsigned short const& b) {
    return a == b || ((a | b) & 0x7FFFu) == 0;
}
inline bool is_same_normal(GMathShortNormal const& a, GMathShortNormal const& b) {
    return is_same_half(a.x, b.x) && is_same_half(a.y, b.y) && is_same_half(a.z, b.z);
}

// The normals that corners have beside those of their vertices: each vertex's without repetition,
// all numbered in the order in which they came. A hash table finds a vertex's normal in constant
// time, however many it has; its slots are numbered in 32 bits, which allows 2^30 normals.
class ExtraNormals {
  public:
    // The number of a normal of this vertex; a new one is appended.
    unsigned int add(unsigned int const& vertex, GMathShortNormal const& normal) {
        if (2ull * m_normals.get_count() >= m_slots.get_count()) {
            grow();
        }
        unsigned int const slot = find_slot(vertex, normal);
        if (m_slots[slot] == no_normal) {
            m_slots[slot] = m_normals.get_count();
            m_normals.append(normal);
            m_vertices.append(vertex);
        }
        return m_slots[slot];
    }

    GMathShortNormalArray const& get_normals() const { return m_normals; }

  private:
    static constexpr unsigned int no_normal = 0xFFFFFFFFu;

    static unsigned short get_canonical(unsigned short const& half) {
        return half == 0x8000u ? static_cast<unsigned short>(0) : half;
    }

    static unsigned long long get_hash(unsigned int const& vertex, GMathShortNormal const& normal) {
        unsigned long long hash = get_canonical(normal.x);
        hash = hash << 16 | get_canonical(normal.y);
        hash = hash << 16 | get_canonical(normal.z);
        hash = (hash ^ vertex * 0x9E3779B97F4A7C15ull) * 0xD6E8FEB86659FD93ull;
        return hash ^ hash >> 32;
    }

    // The slot that holds the normal, or the free one where it belongs.
    unsigned int find_slot(unsigned int const& vertex, GMathShortNormal const& normal) const {
        unsigned int const mask = m_slots.get_count() - 1;
        unsigned int slot = static_cast<unsigned int>(get_hash(vertex, normal)) & mask;
        while (m_slots[slot] != no_normal && !(m_vertices[m_slots[slot]] == vertex &&
                                               is_same_normal(m_normals[m_slots[slot]], normal))) {
            slot = (slot + 1) & mask;
        }
        return slot;
    }

    void grow() {
        assert(m_slots.get_count() < 0x80000000u);
        m_slots.reset(m_slots.is_empty() ? 64 : 2 * m_slots.get_count());
        m_slots.fill(no_normal);
        for (unsigned int i = 0; i < m_normals.get_count(); ++i) {
            m_slots[find_slot(m_vertices[i], m_normals[i])] = i;
        }
    }

    GMathShortNormalArray m_normals;
    CoreArray<unsigned int> m_vertices;  // whose normal each is
    CoreArray<unsigned int> m_slots;     // a power of two of them, at most half in use
};
