#include <platform/qz_core/core_index_array.h>

#include <algorithm>
#include <utility>

namespace {

unsigned int get_width(unsigned int const& largest) {
    return static_cast<unsigned int>(std::min(
        32, static_cast<int>(std::bit_width(static_cast<unsigned long long>(largest) + 1))));
}

// All bits of the values plus one, of which the largest has the highest; absent entries wrap to 0.
unsigned int get_stored_bits(CoreBasicArray<unsigned int> const& values) {
    unsigned int bits = 0;
    for (unsigned int const value : values) {
        bits |= value + 1u;
    }
    return bits;
}

}  // namespace

void CoreIndexArray::init(unsigned int const& count, unsigned int const& largest) {
    allocate(count, get_width(largest));
}

void CoreIndexArray::copy_from(CoreBasicArray<unsigned int> const& values) {
    unsigned int const bits = std::max(1u, get_stored_bits(values));
    allocate(values.get_count(), static_cast<unsigned int>(std::bit_width(bits)));
    CoreIndexWriter writer(*this);
    unsigned int const* next = values.begin();
    if (values.get_count() % 2 != 0) {
        writer.append(*next++);
    }
    for (; next != values.end(); next += 2) {
        writer.append(next[0], next[1]);
    }
}

void CoreIndexArray::copy_from(CoreIndexArray const& other) {
    if (this == &other) {
        return;
    }
    allocate(other.m_count, other.m_bit_count);
    if (m_data) {
        std::memcpy(m_data, other.m_data, m_byte_count);
    }
}

void CoreIndexArray::clear() { CoreIndexArray().swap(*this); }

void CoreIndexArray::swap(CoreIndexArray& other) noexcept {
    std::swap(m_data, other.m_data);
    std::swap(m_byte_count, other.m_byte_count);
    std::swap(m_count, other.m_count);
    std::swap(m_bit_count, other.m_bit_count);
    std::swap(m_mask, other.m_mask);
}

void CoreIndexArray::get_indices(unsigned int const& first, unsigned int const& count,
                                 unsigned int* out) const {
    assert(count <= m_count && first <= m_count - count);
    CoreIndexReader(*this).read(first, count, out);
}

void CoreIndexArray::get_array(CoreArray<unsigned int>& out) const {
    out.reset(m_count);
    get_indices(0, m_count, out.get_data());
}

// The seven bytes of slack let the last entry be read and written by a 64-bit access.
void CoreIndexArray::allocate(unsigned int const& count, unsigned int const& bit_count) {
    unsigned int const new_count = count;
    unsigned int const new_bit_count = bit_count;
    clear();
    m_count = new_count;
    m_bit_count = new_bit_count;
    m_mask = static_cast<unsigned int>((1ull << new_bit_count) - 1);
    if (new_count != 0) {
        m_byte_count = (static_cast<unsigned long long>(new_count) * new_bit_count + 7) / 8 + 7;
        m_data = static_cast<unsigned char*>(core_allocate_zeros(m_byte_count));
    }
}
