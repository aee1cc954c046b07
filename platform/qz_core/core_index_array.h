#pragma once

#include <platform/qz_core/core_array.h>
#include <platform/qz_core/export.h>

#include <bit>
#include <cassert>
#include <cstring>

// A packed array of unsigned 32-bit indices. Every value is stored plus one in the same number of
// bits, the fewest that hold the largest value plus one, so that 0 is left for "no index": such an
// entry reads 0xFFFFFFFF. New entries are absent. Reads may run on any number of threads at once.
//
//     CoreIndexArray corners;
//     corners.init(3, 7);       // three entries of 0..7 or absent: 4 bits each
//     corners.set(0, 7);
//     corners[0];               // 7
//     corners[1];               // 0xFFFFFFFF
class QZ_CORE_EXPORT CoreIndexArray {
  public:
    static constexpr unsigned int absent = 0xFFFFFFFFu;

    CoreIndexArray() = default;
    CoreIndexArray(CoreIndexArray const& other) { copy_from(other); }
    CoreIndexArray(CoreIndexArray&& other) noexcept { swap(other); }
    ~CoreIndexArray() { core_release(m_data); }
    CoreIndexArray& operator=(CoreIndexArray const& other) {
        copy_from(other);
        return *this;
    }
    CoreIndexArray& operator=(CoreIndexArray&& other) noexcept {
        swap(other);
        return *this;
    }

    // Holds `count` absent entries wide enough for 0..`largest`; 0xFFFFFFFF takes all 32 bits.
    void init(unsigned int const& count, unsigned int const& largest);
    // Packs `values` in the width of the largest; 0xFFFFFFFF is absent and asks for no width.
    void copy_from(CoreBasicArray<unsigned int> const& values);
    void copy_from(CoreIndexArray const& other);
    void clear();
    void swap(CoreIndexArray& other) noexcept;

    unsigned int const& get_count() const { return m_count; }
    bool is_empty() const { return m_count == 0; }
    unsigned int const& get_bit_count() const { return m_bit_count; }
    // The largest index that an entry can hold; 0 when nothing was ever stored.
    unsigned int get_largest_value() const {
        return m_bit_count == 0 ? 0u : static_cast<unsigned int>(m_mask - 1);
    }

    // One unaligned 64-bit load, a shift, a mask and a subtraction, with no branch. `index` must be
    // below the count.
    unsigned int operator[](unsigned int const& index) const {
        assert(index < m_count);
        unsigned long long const bit = static_cast<unsigned long long>(index) * m_bit_count;
        unsigned long long word;
        std::memcpy(&word, m_data + (bit >> 3), sizeof word);
        return static_cast<unsigned int>((word >> (bit & 7)) & m_mask) - 1u;
    }

    // Stores `value`, or nothing when it is 0xFFFFFFFF. A value above `get_largest_value` does not
    // fit (asserted in debug builds). Not safe beside other threads, even for other entries.
    void set(unsigned int const& index, unsigned int const& value) {
        assert(index < m_count);
        assert(static_cast<unsigned int>(value + 1u) <= m_mask);
        unsigned long long const bit = static_cast<unsigned long long>(index) * m_bit_count;
        unsigned long long word;
        std::memcpy(&word, m_data + (bit >> 3), sizeof word);
        word &= ~(static_cast<unsigned long long>(m_mask) << (bit & 7));
        word |= (static_cast<unsigned long long>(value + 1u) & m_mask) << (bit & 7);
        std::memcpy(m_data + (bit >> 3), &word, sizeof word);
    }
    void set_absent(unsigned int const& index) { set(index, absent); }

    // Unpacks `count` entries from `first` on into `out`.
    void get_indices(unsigned int const& first, unsigned int const& count, unsigned int* out) const;
    // Unpacks all entries; the old storage of `out` is freed first.
    void get_array(CoreArray<unsigned int>& out) const;

    // Bytes: 16 without storage, 28 with, plus the packed bytes with their 7 bytes of slack.
    unsigned long long get_memory_size() const {
        return m_byte_count == 0 ? 16ull : 28ull + m_byte_count;
    }

  private:
    friend class CoreIndexReader;
    friend class CoreIndexWriter;

    void allocate(unsigned int const& count, unsigned int const& bit_count);

    unsigned char* m_data = nullptr;
    unsigned long long m_byte_count = 0;
    unsigned int m_count = 0;
    unsigned int m_bit_count = 0;
    unsigned int m_mask = 0;
};

// Reads an index array that nobody changes meanwhile. What it copies stays in registers in loops
// that write elsewhere, where the array's own fields would be loaded anew for every entry.
class CoreIndexReader {
  public:
    explicit CoreIndexReader(CoreIndexArray const& array)
        : m_data(array.m_data), m_bit_count(array.m_bit_count), m_mask(array.m_mask) {}

    unsigned int operator[](unsigned int const& index) const {
        return static_cast<unsigned int>(get_word(index * m_bit_count) & m_mask) - 1u;
    }
    // Unpacks `count` entries from `first` on into `out`: two at a time where a word holds them.
    void read(unsigned int const& first, unsigned int const& count, unsigned int* out) const {
        unsigned long long bit = first * m_bit_count;
        unsigned int* const end = out + count;
        unsigned int const pair_count = 2 * m_bit_count + 7 <= 64 ? count / 2 : 0;
        for (unsigned int i = 0; i < pair_count; ++i, out += 2, bit += 2 * m_bit_count) {
            unsigned long long const word = get_word(bit);
            out[0] = static_cast<unsigned int>(word & m_mask) - 1u;
            out[1] = static_cast<unsigned int>((word >> m_bit_count) & m_mask) - 1u;
        }
        for (; out != end; ++out, bit += m_bit_count) {
            *out = static_cast<unsigned int>(get_word(bit) & m_mask) - 1u;
        }
    }
    // Whether the eight entries from `first` on are those before them. `first` must be a multiple
    // of eight, and not 0: such entries fill whole bytes.
    bool is_eight_repeated(unsigned int const& first) const {
        unsigned char const* const eight = m_data + first / 8 * m_bit_count;
        return std::memcmp(eight - m_bit_count, eight, m_bit_count) == 0;
    }

  private:
    unsigned long long get_word(unsigned long long const& bit) const {
        unsigned long long word;
        std::memcpy(&word, m_data + (bit >> 3), sizeof word);
        return word >> (bit & 7);
    }

    unsigned char const* m_data;
    unsigned long long m_bit_count;
    unsigned int m_mask;
};

// Sets the entries of a new index array one after the other, from the first on, in a register that
// is written when it is full. Those that are left remain absent.
class CoreIndexWriter {
  public:
    explicit CoreIndexWriter(CoreIndexArray& array)
        : m_out(array.m_data), m_bit_count(array.m_bit_count) {}
    CoreIndexWriter(CoreIndexWriter const&) = delete;
    CoreIndexWriter& operator=(CoreIndexWriter const&) = delete;
    ~CoreIndexWriter() {
        // The bytes of slack leave room for all eight when there is one bit or more.
        if (m_pending_bits != 0) {
            std::memcpy(m_out, &m_pending, sizeof m_pending);
        }
    }

    // `value` must fit, as for `set`.
    void append(unsigned int const& value) {
        unsigned long long const stored = static_cast<unsigned int>(value + 1u);
        m_pending |= stored << m_pending_bits;
        m_pending_bits += m_bit_count;
        if (m_pending_bits >= 64) {
            std::memcpy(m_out, &m_pending, sizeof m_pending);
            m_out += sizeof m_pending;
            m_pending_bits -= 64;
            m_pending = stored >> (m_bit_count - m_pending_bits);
        }
    }
    // The same with two values at once, which takes half the steps.
    void append(unsigned int const& value, unsigned int const& next_value) {
        unsigned long long const stored =
            static_cast<unsigned long long>(static_cast<unsigned int>(next_value + 1u))
                << m_bit_count |
            static_cast<unsigned int>(value + 1u);
        m_pending |= stored << m_pending_bits;
        m_pending_bits += 2 * m_bit_count;
        if (m_pending_bits >= 64) {
            std::memcpy(m_out, &m_pending, sizeof m_pending);
            m_out += sizeof m_pending;
            m_pending_bits -= 64;
            // A shift by all 64 bits means nothing.
            m_pending = m_pending_bits != 0 ? stored >> (2 * m_bit_count - m_pending_bits) : 0;
        }
    }

  private:
    unsigned char* m_out;
    unsigned long long m_pending = 0;
    unsigned int m_pending_bits = 0;
    unsigned int m_bit_count;
};

static_assert(std::endian::native == std::endian::little, "packed words are little-endian");
