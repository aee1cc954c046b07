#include <platform/qz_resource/resource_property.h>

#include <algorithm>
#include <cassert>
#include <iterator>

ResourceProperty::ResourceProperty(Type const& type, unsigned int const& extent,
                                   unsigned int const& item_count)
    : m_type(type),
      m_element_size(get_element_size(type)),
      m_extent(extent),
      m_item_count(item_count) {
    allocate(static_cast<unsigned long long>(extent) * item_count);
}

ResourceProperty::ResourceProperty(Type const& type, CoreBasicArray<unsigned int> const& offsets)
    : m_offsets(offsets),
      m_type(type),
      m_element_size(get_element_size(type)),
      m_item_count(offsets.get_count() - 1) {
    assert(offsets[0] == 0 && std::is_sorted(offsets.begin(), offsets.end()));
    allocate(offsets[m_item_count]);
}

ResourceProperty::~ResourceProperty() = default;

unsigned int ResourceProperty::get_element_size(Type const& type) {
    static constexpr unsigned int sizes[] = {1, 1, 2, 2, 4, 4, 8, 8, 2, 4, 8, 1, 2};
    unsigned int const index = static_cast<unsigned int>(type);
    return index < std::size(sizes) ? sizes[index] : 0;
}

unsigned long long ResourceProperty::get_memory_size() const {
    return sizeof(ResourceProperty) + m_bytes.get_memory_size() + m_offsets.get_memory_size();
}

void ResourceProperty::allocate(unsigned long long const& element_count) {
    assert(m_element_size == 0 || element_count <= 0xFFFFFFFFull / m_element_size);
    m_bytes.reset(static_cast<unsigned int>(element_count * m_element_size));
    m_bytes.fill(0);
}
