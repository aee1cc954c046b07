#pragma once

#include <poly/topology/ear_triangle.h>

// Which corners wait for which blocker to go: a list for each blocker, threaded through one record
// a corner. A corner waits for one blocker at a time. Blockers are numbers below the corner count
// of any meaning.
class BlockedCorners {
  public:
    struct Record {
        unsigned int first_waiting;  // for the blocker of this number to go
        unsigned int blocker;        // that the corner of this number waits for, or no_corner
        unsigned int previous;       // in the blocker's list, or no_corner
        unsigned int next;
    };

    // `records` holds one for each corner and outlives this.
    void init(Record* records, unsigned int const& count) {
        m_records = records;
        for (unsigned int i = 0; i < count; ++i) {
            m_records[i] = {no_corner, no_corner, no_corner, no_corner};
        }
    }

    unsigned int get_blocker(unsigned int const& corner) const { return m_records[corner].blocker; }

    void add(unsigned int const& corner, unsigned int const& blocker) {
        unsigned int const next = m_records[blocker].first_waiting;
        Record& record = m_records[corner];
        record.blocker = blocker;
        record.previous = no_corner;
        record.next = next;
        if (next != no_corner) {
            m_records[next].previous = corner;
        }
        m_records[blocker].first_waiting = corner;
    }

    // Nothing happens to a corner that waits for none.
    void remove(unsigned int const& corner) {
        Record& record = m_records[corner];
        if (record.blocker == no_corner) {
            return;
        }
        if (record.previous != no_corner) {
            m_records[record.previous].next = record.next;
        } else {
            m_records[record.blocker].first_waiting = record.next;
        }
        if (record.next != no_corner) {
            m_records[record.next].previous = record.previous;
        }
        record.blocker = no_corner;
    }

    // Calls `release(corner)` for each corner that waits for `blocker`; they wait no more.
    template <typename Release>
    void release_all(unsigned int const& blocker, Release const& release) {
        unsigned int corner = m_records[blocker].first_waiting;
        m_records[blocker].first_waiting = no_corner;
        while (corner != no_corner) {
            m_records[corner].blocker = no_corner;
            release(corner);
            corner = m_records[corner].next;
        }
    }

  private:
    Record* m_records = nullptr;
};
