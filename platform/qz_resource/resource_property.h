#pragma once

#include <platform/qz_core.h>
#include <platform/qz_resource/export.h>

// A block of value items of one type, of at most 2^32 - 1 bytes. Every item is a run of elements:
// all of one length, or each of its own.
class QZ_RESOURCE_EXPORT ResourceProperty {
  public:
    enum Type {
        TYPE_INT8 = 0,
        TYPE_UINT8 = 1,
        TYPE_INT16 = 2,
        TYPE_UINT16 = 3,
        TYPE_INT32 = 4,
        TYPE_UINT32 = 5,
        TYPE_INT64 = 6,
        TYPE_UINT64 = 7,
        TYPE_HALF = 8,
        TYPE_FLOAT = 9,
        TYPE_DOUBLE = 10,
        TYPE_BOOL = 11,    // stored as TYPE_INT8
        TYPE_CHOICE = 12,  // stored as TYPE_UINT16
    };

    // `item_count` items of `extent` elements each, all bytes zero.
    ResourceProperty(Type const& type, unsigned int const& extent, unsigned int const& item_count);
    // Item i has the elements offsets[i] to offsets[i + 1] - 1, all bytes zero. `offsets` ascends
    // from 0 and has one entry more than there are items; at least one.
    ResourceProperty(Type const& type, CoreBasicArray<unsigned int> const& offsets);
    ResourceProperty(ResourceProperty const&) = delete;
    ResourceProperty& operator=(ResourceProperty const&) = delete;
    virtual ~ResourceProperty();

    // Bytes of one element; 0 for an unknown type.
    static unsigned int get_element_size(Type const& type);

    Type const& get_type() const { return m_type; }
    unsigned int const& get_item_count() const { return m_item_count; }
    bool has_offsets() const { return !m_offsets.is_empty(); }
    // Elements of item `index`; 0 for an item past the last.
    unsigned int get_item_length(unsigned int const& index) const {
        if (index >= m_item_count) {
            return 0;
        }
        return has_offsets() ? m_offsets[index + 1] - m_offsets[index] : m_extent;
    }

    // The elements of item `index`, aligned for their type; the end of the block for an item past
    // the last.
    void const* get_item_values(unsigned int const& index) const {
        return m_bytes.get_data() + get_item_offset(index) * m_element_size;
    }
    void* get_item_values(unsigned int const& index) {
        return m_bytes.get_data() + get_item_offset(index) * m_element_size;
    }

    virtual unsigned long long get_memory_size() const;

  private:
    unsigned long long get_item_offset(unsigned int const& index) const {
        unsigned int const item = index < m_item_count ? index : m_item_count;
        return has_offsets() ? m_offsets[item] : static_cast<unsigned long long>(item) * m_extent;
    }
    void allocate(unsigned long long const& element_count);

    CoreArray<unsigned char> m_bytes;
    CoreArray<unsigned int> m_offsets;
    Type m_type;
    unsigned int m_element_size;
    unsigned int m_extent = 0;
    unsigned int m_item_count;
};
