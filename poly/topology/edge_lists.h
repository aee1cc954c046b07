#pragma once

#include <platform/qz_core.h>
#include <poly/topology/eight_numbers.h>

#include <algorithm>
#include <bit>
#include <cassert>

// Finds, for every edge, the first edge given with the same two vertices in either direction.
// `Edge` is what the caller wants to know of an edge.
//
// Edges are listed by the lesser of their two vertices, all lists in one array: they are counted
// first, then put into their places. A list keeps the order in which edges were given, so that the
// first of a pair is found however the lists are searched; most are so short that eight ends at a
// time are compared without a branch. A long one, that of a fan around one vertex, is sorted.
template <typename Edge>
class EdgeLists {
  public:
    // Vertices are below `vertex_count`.
    explicit EdgeLists(unsigned int const& vertex_count) : m_list_ends(vertex_count) {
        m_list_ends.fill(0);
    }

    // First for every edge: its vertices, which differ.
    void count(unsigned int const& a, unsigned int const& b) {
        assert(a != b && std::max(a, b) < m_list_ends.get_count());
        ++m_list_ends[std::min(a, b)];
    }
    void finish_counting() {
        unsigned int sum = 0;
        for (unsigned int& end : m_list_ends) {
            unsigned int const begin = sum;
            sum += end;
            end = begin;  // moves on with each edge that is added
        }
        m_listed.reset(sum);
    }
    // Then for every edge again.
    void add(unsigned int const& a, unsigned int const& b, Edge const& edge) {
        m_listed[m_list_ends[std::min(a, b)]++] = {std::max(a, b), edge};
    }

    // Calls `link(edge, first)` for every edge that is not the first on its vertices, the edges of
    // one pair of vertices in the order in which they were added.
    template <typename Link>
    void link_all(Link const& link) {
        unsigned int begin = 0;
        for (unsigned int const end : m_list_ends) {
            unsigned int const size = end - begin;
            if (size > long_size) {
                link_long(begin, size, link);
            } else if (size > 8 || begin + 8 > m_listed.get_count()) {
                link_medium(begin, size, link);
            } else if (size > 1) {
                link_short(begin, size, link);
            }
            begin = end;
        }
    }

  private:
    static constexpr unsigned int long_size = 64;

    struct Listed {
        unsigned int greater;  // the other vertex
        Edge edge;
    };

    struct Entry {
        unsigned int greater;
        unsigned int place;
        bool operator<(Entry const& b) const {
            return greater != b.greater ? greater < b.greater : place < b.place;
        }
    };

    // Eight ends may be read.
    template <typename Link>
    void link_short(unsigned int const& begin, unsigned int const& size, Link const& link) {
        Listed const* const listed = m_listed.get_data() + begin;
        EightNumbers const ends(&listed->greater, sizeof(Listed) / sizeof(unsigned int));
        for (unsigned int i = 1; i < size; ++i) {
            unsigned int const earlier = ends.get_equal_bits(listed[i].greater) & ((1u << i) - 1u);
            if (earlier != 0) {
                link(listed[i].edge, listed[std::countr_zero(earlier)].edge);
            }
        }
    }

    template <typename Link>
    void link_medium(unsigned int const& begin, unsigned int const& size, Link const& link) {
        Listed const* const listed = m_listed.get_data() + begin;
        for (unsigned int i = 1; i < size; ++i) {
            unsigned int first = 0;
            while (listed[first].greater != listed[i].greater) {
                ++first;
            }
            if (first < i) {
                link(listed[i].edge, listed[first].edge);
            }
        }
    }

    template <typename Link>
    void link_long(unsigned int const& begin, unsigned int const& size, Link const& link) {
        m_sorted.resize(size);
        for (unsigned int i = 0; i < size; ++i) {
            m_sorted[i] = {m_listed[begin + i].greater, begin + i};
        }
        std::sort(m_sorted.begin(), m_sorted.begin() + size);
        unsigned int first = 0;
        for (unsigned int i = 1; i < size; ++i) {
            if (m_sorted[i].greater != m_sorted[first].greater) {
                first = i;
            } else {
                link(m_listed[m_sorted[i].place].edge, m_listed[m_sorted[first].place].edge);
            }
        }
    }

    CoreArray<unsigned int> m_list_ends;  // by lesser vertex
    CoreArray<Listed> m_listed;
    CoreArray<Entry> m_sorted;  // grows to the longest list
};
