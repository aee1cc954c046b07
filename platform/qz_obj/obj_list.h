#pragma once

#include <platform/qz_core.h>

#include <algorithm>
#include <cassert>
#include <type_traits>
#include <utility>

// An array in the making. Storage grows by half and is never held twice; hot loops ask once for
// room and write behind the end. Elements are trivially copyable.
template <typename T>
class ObjList {
    static_assert(std::is_trivially_copyable_v<T>);

  public:
    unsigned int const& get_count() const { return m_count; }
    T const* get_data() const { return m_storage.get_data(); }
    T* get_data() { return m_storage.get_data(); }
    // Where the next element goes, in the room that `make_room` made.
    T* get_end() { return m_storage.get_data() + m_count; }

    // Room for `extra` more elements. False: there would be more than `largest_count`.
    bool make_room(unsigned int const& extra, unsigned int const& largest_count) {
        unsigned long long const needed = 1ull * m_count + extra;
        unsigned long long const capacity = m_storage.get_count();
        if (needed > largest_count) {
            return false;
        }
        if (needed > capacity) {
            unsigned long long const grown =
                std::min<unsigned long long>(capacity + capacity / 2, largest_count);
            m_storage.resize(static_cast<unsigned int>(std::max({needed, grown, 16ull})));
        }
        return true;
    }

    // Storage that will do for a file of `size` bytes with an element every `bytes_per_element`, so
    // that it need not move; pages that are never written cost nothing. Storage of many megabytes
    // is moved without copying, so there is no gain beyond.
    void reserve(unsigned long long const& size, unsigned int const& bytes_per_element,
                 unsigned int const& largest_count) {
        unsigned long long const largest =
            std::min<unsigned long long>((1ull << 25) / sizeof(T), largest_count);
        unsigned long long const count = std::min(size / bytes_per_element, largest);
        m_storage.resize(static_cast<unsigned int>(std::max<unsigned long long>(count, m_count)));
    }

    // Takes in `count` elements that were written behind the end.
    void commit(unsigned int const& count) {
        assert(count <= m_storage.get_count() - m_count);
        m_count += count;
    }

    // `value` is no element of this list. False: there are `largest_count` elements already.
    bool append(T const& value, unsigned int const& largest_count) {
        if (m_count == m_storage.get_count() && !make_room(1, largest_count)) {
            return false;
        }
        *get_end() = value;
        ++m_count;
        return true;
    }

    // Drops the elements from number `count` on.
    void truncate(unsigned int const& count) {
        assert(count <= m_count);
        m_count = count;
    }

    // Hands the elements over, in storage that fits them.
    CoreArray<T> take() {
        m_storage.resize(m_count);
        m_storage.shrink_to_fit();
        m_count = 0;
        return std::move(m_storage);
    }

  private:
    CoreArray<T> m_storage;  // its count is our capacity
    unsigned int m_count = 0;
};
