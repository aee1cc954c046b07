#include <poly/property/poly_mesh_property.h>

#include <poly/property/property_callbacks.h>

#include <algorithm>
#include <cassert>

PolyMeshProperty::PolyMeshProperty(PolyMesh const& mesh, PolyMeshProperty::Type const& type,
                                   ResourceProperty::Type const& value_type,
                                   unsigned int const& value_extent,
                                   unsigned int const& value_count, unsigned int const& index_count,
                                   CoreString const& name, GMathTimeSampling const& time_sampling,
                                   bool const& owns_values)
    : GeometryProperty(name, time_sampling, value_type, value_extent, value_count, index_count),
      m_mesh(&mesh),
      m_values(time_sampling.get_sample_count()),
      m_type(type),
      m_owns_values(owns_values) {
    PropertyCallbacks const callbacks = get_property_callbacks(type, value_type);
    set_evaluate_callbacks(callbacks.integer_callback, callbacks.double_callback);
}

PolyMeshProperty::PolyMeshProperty(PolyMeshProperty const& other) = default;

PolyMeshProperty::~PolyMeshProperty() {
    if (m_owns_values) {
        for (ResourceProperty const* const block : m_values) {
            delete block;
        }
    }
}

bool PolyMeshProperty::init(unsigned int const& sample, ResourceProperty* values) {
    if (!values || values->get_type() != get_value_type()) {
        set_block(sample, nullptr);
        return false;
    }
    if (!has_fitting_count(*values)) {
        return false;
    }
    set_block(sample, values);
    return true;
}

void PolyMeshProperty::init_indices(CoreBasicArray<unsigned int> const& indices) {
    if (indices.get_data() != m_indices.get_data()) {
        assert(std::all_of(m_values.begin(), m_values.end(),
                           [](ResourceProperty const* block) { return !block; }));
        m_indices.copy_from(indices);
    }
}

ResourceProperty const* PolyMeshProperty::get_values_property(unsigned int const& sample) const {
    return load(sample) ? m_values[sample] : nullptr;
}

unsigned long long PolyMeshProperty::get_memory_size() const {
    unsigned long long size = sizeof(PolyMeshProperty);
    if (m_owns_values) {
        for (ResourceProperty const* const block : m_values) {
            size += block ? block->get_memory_size() : 0;
        }
    }
    return size;
}

void PolyMeshProperty::set_block(unsigned int const& sample, ResourceProperty* values) {
    if (m_owns_values && m_values[sample] != values) {
        delete m_values[sample];
    }
    m_values[sample] = values;
    set_attached(sample, values != nullptr);
}

bool PolyMeshProperty::has_fitting_count(ResourceProperty const& values) const {
    unsigned int const count = has_indices() ? m_indices.get_count() : values.get_item_count();
    switch (m_type) {
    case TYPE_VERTEX:
        return count ==
               (has_indices() ? m_mesh->get_polygon_index_count() : m_mesh->get_vertex_count());
    case TYPE_POLYGON:
        return count == m_mesh->get_polygon_count();
    case TYPE_CONSTANT:
        return true;
    }
    return false;
}
