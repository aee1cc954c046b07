#pragma once

#include <platform/qz_gmath.h>

#include <algorithm>
#include <cstdint>

// Equal components, where +0 and -0 are the same.
inline bool is_same_half(unsigned short const& a, unsigned short const& b) {
    return a == b || ((a | b) & 0x7FFFu) == 0;
}
inline bool is_same_normal(GMathShortNormal const& a, GMathShortNormal const& b) {
    return is_same_half(a.x, b.x) && is_same_half(a.y, b.y) && is_same_half(a.z, b.z);
}

// The normals that corners have beside those of their vertices: each vertex's without repetition,
// all numbered in the order in which they came. The first few of a vertex are a list; a hash table
// finds the others in constant time, however many there are. Where they are in the table depends on
// where it lies in memory, so that no file can crowd it; their numbers do not.
class ExtraNormals {
  public:
    static constexpr unsigned int no_normal = 0xFFFFFFFFu;
    static constexpr unsigned int usual_limit = 1u << 30;  // for slots numbered in 32 bits

    // At most `limit` normals, and so many that their numbers and those of vertices are below
    // `no_normal` in all.
    explicit ExtraNormals(unsigned int const& vertex_count, unsigned int const& limit = usual_limit)
        : m_limit(std::min(limit, no_normal - vertex_count)) {
        m_first.reset(vertex_count);
        m_first.fill(no_normal);
    }

    // The number of a normal of this vertex; a new one is appended, or `no_normal` if there are as
    // many as there may be.
    unsigned int add(unsigned int const& vertex, GMathShortNormal const& normal) {
        unsigned int* next = &m_first[vertex];
        for (unsigned int length = 0; length < list_length; ++length) {
            if (*next == no_normal) {
                unsigned int const number = m_normals.get_count();
                if (number == m_limit) {
                    return no_normal;
                }
                *next = number;  // before append, which moves the list
                append(vertex, normal);
                return number;
            }
            if (is_same_normal(m_normals[*next], normal)) {
                return *next;
            }
            next = &m_owners[*next].next;
        }
        return add_to_table(vertex, normal);
    }

    GMathShortNormal const& get_normal(unsigned int const& number) const {
        return m_normals[number];
    }
    unsigned int get_vertex(unsigned int const& number) const { return m_owners[number].vertex; }

    // Hands the normals over, and gives all storage back.
    void take_normals(GMathShortNormalArray& normals) {
        m_normals.shrink_to_fit();
        normals.swap(m_normals);
        m_normals.clear();
        m_owners.clear();
        m_first.clear();
        m_slots.clear();
    }

  private:
    static constexpr unsigned int list_length = 4;

    struct Owner {
        unsigned int vertex;
        unsigned int next;  // in the vertex's list
    };

    static unsigned short get_canonical(unsigned short const& half) {
        return half == 0x8000u ? static_cast<unsigned short>(0) : half;
    }

    unsigned long long get_hash(unsigned int const& vertex, GMathShortNormal const& normal) const {
        unsigned long long hash = get_canonical(normal.x);
        hash = hash << 16 | get_canonical(normal.y);
        hash = hash << 16 | get_canonical(normal.z);
        hash = (hash ^ (vertex + m_seed) * 0x9E3779B97F4A7C15ull) * 0xD6E8FEB86659FD93ull;
        hash = (hash ^ hash >> 32) * 0xD6E8FEB86659FD93ull;
        return hash ^ hash >> 32;
    }

    void append(unsigned int const& vertex, GMathShortNormal const& normal) {
        m_normals.append(normal);
        m_owners.append({vertex, no_normal});
    }

    unsigned int add_to_table(unsigned int const& vertex, GMathShortNormal const& normal) {
        if (2ull * m_table_count >= m_slots.get_count()) {
            grow();
        }
        unsigned int const slot = find_slot(vertex, normal);
        if (m_slots[slot] == no_normal && m_normals.get_count() < m_limit) {
            m_slots[slot] = m_normals.get_count();
            append(vertex, normal);
            ++m_table_count;
        }
        return m_slots[slot];
    }

    // The slot that holds the normal, or the free one where it belongs.
    unsigned int find_slot(unsigned int const& vertex, GMathShortNormal const& normal) const {
        unsigned int const mask = m_slots.get_count() - 1;
        unsigned int slot = static_cast<unsigned int>(get_hash(vertex, normal)) & mask;
        while (m_slots[slot] != no_normal && !(m_owners[m_slots[slot]].vertex == vertex &&
                                               is_same_normal(m_normals[m_slots[slot]], normal))) {
            slot = (slot + 1) & mask;
        }
        return slot;
    }

    void grow() {
        CoreArray<unsigned int> old;
        old.swap(m_slots);
        m_slots.reset(old.is_empty() ? 64 : 2 * old.get_count());
        m_slots.fill(no_normal);
        for (unsigned int const number : old) {
            if (number != no_normal) {
                m_slots[find_slot(m_owners[number].vertex, m_normals[number])] = number;
            }
        }
    }

    unsigned int m_limit;
    unsigned long long m_seed = reinterpret_cast<std::uintptr_t>(this);
    GMathShortNormalArray m_normals;
    CoreArray<Owner> m_owners;        // by normal
    CoreArray<unsigned int> m_first;  // by vertex
    CoreArray<unsigned int> m_slots;  // a power of two of them, at most half in use
    unsigned int m_table_count = 0;
};
