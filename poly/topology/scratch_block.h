#pragma once

#include <cassert>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>

// One heap block, freed with this, that the arrays of one operation are cut from. They start unset.
class ScratchBlock {
  public:
    // Room for `size` bytes, the sum of get_size() over the arrays that are to be taken.
    explicit ScratchBlock(std::size_t const& size)
        : m_bytes(new (std::nothrow) std::byte[size + alignment]),
          m_left(size + alignment),
          m_next(m_bytes.get()) {
        std::align(alignment, size, m_next, m_left);
    }

    // False if the memory was refused; then nothing may be taken.
    bool is_valid() const { return m_bytes != nullptr; }

    template <typename T>
    static constexpr std::size_t get_size(std::size_t const& count) {
        return (count * sizeof(T) + alignment - 1) / alignment * alignment;
    }

    // An array of `count` elements, at the start of a cache line.
    template <typename T>
    T* take(std::size_t const& count) {
        static_assert(std::is_trivial_v<T> && alignof(T) <= alignment);
        assert(is_valid() && get_size<T>(count) <= m_left);
        T* const array = static_cast<T*>(m_next);
        m_next = static_cast<std::byte*>(m_next) + get_size<T>(count);
        m_left -= get_size<T>(count);
        return array;
    }

    // Room again for `array`, taken with `count` elements, when nothing was taken since.
    template <typename T>
    void give_back(T* array, std::size_t const& count) {
        m_next = array;
        m_left += get_size<T>(count);
    }

  private:
    static constexpr std::size_t alignment = 64;

    std::unique_ptr<std::byte[]> m_bytes;
    std::size_t m_left;
    void* m_next;
};
