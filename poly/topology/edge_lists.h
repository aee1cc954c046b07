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
    explicit EdgeLists(unsigned int const& vertex_count) : m_lists(vertex_count) {
        m_lists.fill({0, 0});
    }

    // First for every edge: its vertices, which differ.
    void count(unsigned int const& a, unsigned int const& b) {
        assert(a != b && std::max(a, b) < m_lists.get_count());
        ++m_lists[std::min(a, b)].end;
    }
    void finish_counting() {
        unsigned int sum = 0;
        for (List& list : m_lists) {
            unsigned int const begin = sum;
            sum += list.end;
            list.end = begin;  // moves on with each edge that is added
        }
        m_listed.reset(sum);
    }
    // Then for every edge again.
    void add(unsigned int const& a, unsigned int const& b, Edge const& edge) {
        m_listed[m_lists[std::min(a, b)].end++] = {std::max(a, b), edge};
    }

    // Calls `link(edge, first)` for every edge, the edges of one pair of vertices in the order in
    // which they were added; the first of them is linked with itself.
    template <typename Link>
    void link_all(Link const& link) {
        unsigned int begin = 0;
        for (List const& list : m_lists) {
            unsigned int const end = list.end;
            for (unsigned int place = begin; place < end; ++place) {
                Listed const& listed = m_listed[place];
                unsigned int& first = m_lists[listed.greater].first;
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

    // Of a vertex: where its list ends, and where it first is in the list that is gone through.
    struct List {
        unsigned int end;
        unsigned int first;  // place + 1, or one of an earlier list
    };

    CoreArray<List> m_lists;  // by lesser vertex
    CoreArray<Listed> m_listed;
};
