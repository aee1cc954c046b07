#pragma once

#include <platform/qz_core/core_memory.h>

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

// A pointer and a count: the read interface of every array, and a view of elements that somebody
// else owns. Counts are 32-bit. An element may be read only below the count (asserted in debug
// builds). The data pointer of an empty array may be null.
template <typename T>
class CoreBasicArray {
  public:
    CoreBasicArray() = default;
    CoreBasicArray(T const* data, unsigned int const& count)
        : m_data(const_cast<T*>(data)), m_count(count) {}

    T const* get_data() const { return m_data; }
    unsigned int const& get_count() const { return m_count; }
    bool is_empty() const { return m_count == 0; }

    T const& operator[](unsigned int const& index) const {
        assert(index < m_count);
        return m_data[index];
    }

    T const* begin() const { return m_data; }
    T const* end() const { return m_data + m_count; }

  protected:
    T* m_data = nullptr;
    unsigned int m_count = 0;
};

// An owning array that grows. Copies are deep and hold exactly their elements. New elements of a
// trivially copyable type are left uninitialised; others are default-constructed. An array without
// elements may still have storage; `clear` gives it back.
template <typename T>
class CoreArray : public CoreBasicArray<T> {
    using Base = CoreBasicArray<T>;
    using Base::m_count;
    using Base::m_data;

  public:
    CoreArray() = default;
    explicit CoreArray(unsigned int const& count) { resize(count); }
    CoreArray(CoreArray const& other) : Base() { copy_from(other); }
    explicit CoreArray(CoreBasicArray<T> const& other) : Base() { copy_from(other); }
    CoreArray(CoreArray&& other) noexcept { swap(other); }
    ~CoreArray() { clear(); }

    CoreArray& operator=(CoreArray const& other) {
        copy_from(other);
        return *this;
    }
    CoreArray& operator=(CoreArray&& other) noexcept {
        swap(other);
        return *this;
    }

    using Base::operator[];
    T& operator[](unsigned int const& index) {
        assert(index < m_count);
        return m_data[index];
    }
    using Base::get_data;
    T* get_data() { return m_data; }
    using Base::begin;
    using Base::end;
    T* begin() { return m_data; }
    T* end() { return m_data + m_count; }

    // Takes over the elements of `other`, which may be a view of this array's own storage.
    void copy_from(CoreBasicArray<T> const& other) {
        if (other.get_data() == m_data && other.get_count() == m_count) {
            return;
        }
        CoreArray copy;
        copy.reset(other.get_count());
        if constexpr (std::is_trivially_copyable_v<T>) {
            if (copy.m_count != 0) {
                std::memcpy(static_cast<void*>(copy.m_data), other.get_data(), bytes(copy.m_count));
            }
        } else {
            for (unsigned int i = 0; i < copy.m_count; ++i) {
                copy.m_data[i] = other[i];
            }
        }
        swap(copy);
    }

    // Keeps the first min(old, new) elements. Storage grows to exactly `count` elements when it
    // must grow, and stays when the array shrinks.
    void resize(unsigned int const& count) {
        unsigned int const wanted = count;
        if (wanted > m_capacity) {
            set_capacity(wanted);
        }
        construct_up_to(wanted);
        destroy_down_to(wanted);
        m_count = wanted;
    }

    // Frees the old storage first, then holds `count` new elements in exactly fitting storage.
    void reset(unsigned int const& count) {
        unsigned int const wanted = count;
        clear();
        resize(wanted);
    }

    void clear() {
        destroy_down_to(0);
        core_release(m_data);
        m_data = nullptr;
        m_count = 0;
        m_capacity = 0;
    }

    void reserve(unsigned int const& capacity) {
        if (capacity > m_capacity) {
            set_capacity(capacity);
        }
    }
    void shrink_to_fit() {
        if (m_capacity != m_count) {
            set_capacity(m_count);
        }
    }

    // Appends one element; storage doubles when it is full. At most 2^32 - 1 elements.
    void append(T const& value) {
        if (m_count == m_capacity) {
            T copy(value);
            set_capacity(get_grown_capacity());
            new (static_cast<void*>(m_data + m_count)) T(std::move(copy));
        } else {
            new (static_cast<void*>(m_data + m_count)) T(value);
        }
        ++m_count;
    }

    void fill(T const& value) {
        // The value may be one of our own elements.
        T const copy(value);  // NOLINT(performance-unnecessary-copy-initialization)
        std::fill(begin(), end(), copy);
    }

    void swap(CoreArray& other) noexcept {
        std::swap(m_data, other.m_data);
        std::swap(m_count, other.m_count);
        std::swap(m_capacity, other.m_capacity);
    }

    unsigned int const& get_capacity() const { return m_capacity; }

    // Bytes: 16 without storage, 28 with, plus the elements that there is room for. What the
    // elements themselves hold elsewhere is not counted.
    unsigned long long get_memory_size() const {
        return m_capacity == 0 ? 16ull : 28ull + bytes(m_capacity);
    }

  private:
    static std::size_t bytes(unsigned int const& count) { return sizeof(T) * std::size_t(count); }

    unsigned int get_grown_capacity() const {
        assert(m_count != 0xFFFFFFFFu);
        if (m_capacity >= 0x80000000u) {
            return 0xFFFFFFFFu;
        }
        return m_capacity == 0 ? 1 : m_capacity * 2;
    }

    void set_capacity(unsigned int const& capacity) {
        if constexpr (std::is_trivially_copyable_v<T>) {
            m_data = static_cast<T*>(core_reallocate(m_data, bytes(capacity)));
        } else {
            T* const data = static_cast<T*>(core_allocate(bytes(capacity)));
            for (unsigned int i = 0; i < m_count; ++i) {
                new (static_cast<void*>(data + i)) T(std::move(m_data[i]));
                m_data[i].~T();
            }
            core_release(m_data);
            m_data = data;
        }
        m_capacity = capacity;
    }

    void construct_up_to(unsigned int const& count) {
        if constexpr (!std::is_trivially_copyable_v<T>) {
            for (unsigned int i = m_count; i < count; ++i) {
                new (static_cast<void*>(m_data + i)) T();
            }
        } else {
            (void)count;
        }
    }

    void destroy_down_to(unsigned int const& count) {
        if constexpr (!std::is_trivially_destructible_v<T>) {
            for (unsigned int i = count; i < m_count; ++i) {
                m_data[i].~T();
            }
        } else {
            (void)count;
        }
    }

    unsigned int m_capacity = 0;
};
