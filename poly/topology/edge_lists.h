#pragma once

#include <platform/qz_core.h>

#include <algorithm>
#include <cassert>

// Finds, for every edge, the first edge given with the same two vertices in either direction.
// `Edge` is what the caller wants to know of an edge.
//
// Edges are listed by the lesser of their two vertices, all lists in one array: they are counted
// first, then put into their places. A list keeps the order in which edges were given. While one is
// gone through, every other vertex knows the first of its edges in it: lists of any length take
// linear time, without a branch that depends on what is found.
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

    // Calls `link(edge, first)` for every edge, the edges of one pair of vertices in the order in
    // which they were added; the first of them is linked with itself.
    template <typename Link>
    void link_all(Link const& link) {
        CoreArray<unsigned int> firsts(m_list_ends.get_count());  // place + 1, by vertex
        firsts.fill(0);
        unsigned int begin = 0;
        for (unsigned int const end : m_list_ends) {
            for (unsigned int place = begin; place < end; ++place) {
                Listed const& listed = m_listed[place];
                unsigned int& first = firsts[listed.greater];
                first = first > begin ? first : place + 1;  // those before are of earlier lists
                link(listed.edge, m_listed[first - 1].edge);
            }
            begin = end;
        }
    }

  private:
    struct Listed {
        unsigned int greater;  // the other vertex
        Edge edge;
    };

    CoreArray<unsigned int> m_list_ends;  // by lesser vertex
    CoreArray<Listed> m_listed;
};
