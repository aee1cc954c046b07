#pragma once

#include <platform/qz_core.h>

#include <algorithm>
#include <cassert>

// Finds, for one edge after another, the first edge given with the same two vertices in either
// direction. `Edge` is what the caller wants to know of that first edge.
//
// Each pair of vertices has one record, in a linked list of its lesser vertex. A list that has
// grown to `full_length` takes no more: later pairs go to the greater vertex, so that a fan around
// one vertex, however large, costs no more than other faces. Only between two full lists do
// searches get longer.
template <typename Edge>
class EdgeTable {
  public:
    // Vertices are below `vertex_count`; there will be up to `edge_count` edges.
    EdgeTable(unsigned int const& vertex_count, unsigned int const& edge_count)
        : m_heads(vertex_count) {
        m_heads.fill(none);
        // In most meshes two faces meet at most edges.
        m_records.reserve(edge_count / 2 + edge_count / 8);
    }

    // The edge that was added for the vertices a and b, which differ; null after adding `edge` for
    // them.
    Edge const* find_or_add(unsigned int const& a, unsigned int const& b, Edge const& edge) {
        unsigned int const low = std::min(a, b);
        unsigned int const high = std::max(a, b);
        assert(low != high && high < m_heads.get_count());
        Place const place = find(&m_heads[low], high, full_length);
        if (place.record) {
            return &place.record->edge;
        }
        if (place.length == full_length) {
            return find_or_add_beyond(place, low, high, edge);
        }
        add(m_heads[low], high, edge);
        return nullptr;
    }

  private:
    static constexpr unsigned int none = 0xFFFFFFFFu;
    static constexpr unsigned int full_length = 32;

    struct Record {
        unsigned int end;  // the vertex of the pair that has not this list
        unsigned int next;
        Edge edge;
    };

    struct Place {
        Record const* record;  // null if none was found
        unsigned int* link;    // to the record, or to what follows those that were searched
        unsigned int length;   // of the list before it
    };

    // Searches up to `max_length` records from `link` on.
    Place find(unsigned int* link, unsigned int const& end, unsigned int const& max_length) {
        unsigned int length = 0;
        for (; *link != none && length < max_length; ++length) {
            Record& record = m_records[*link];
            if (record.end == end) {
                return {&record, link, length};
            }
            link = &record.next;
        }
        return {nullptr, link, length};
    }

    // The list of `low` is full, so that its part that ends at `low_place` changes no more.
    Edge const* find_or_add_beyond(Place const& low_place, unsigned int const& low,
                                   unsigned int const& high, Edge const& edge) {
        Place const high_place = find(&m_heads[high], low, full_length);
        if (high_place.record) {
            return &high_place.record->edge;
        }
        if (high_place.length < full_length) {
            add(m_heads[high], low, edge);
            return nullptr;
        }
        Place const last_place = find(low_place.link, high, none);
        if (last_place.record) {
            return &last_place.record->edge;
        }
        add(*last_place.link, high, edge);
        return nullptr;
    }

    // Puts a record before the one that `link` leads to. `link` may itself be in a record.
    void add(unsigned int& link, unsigned int const& end, Edge const& edge) {
        unsigned int const next = link;
        link = m_records.get_count();
        m_records.append({end, next, edge});
    }

    CoreArray<unsigned int> m_heads;
    CoreArray<Record> m_records;
};
