#include <poly/property/property_callbacks.h>

#include <poly/mesh/primitive_corners.h>
#include <poly/property/property_elements.h>
#include <poly/render/surface_weights.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

template <typename Element>
Element const* get_elements(ResourceProperty const& block, unsigned int const& item) {
    return static_cast<Element const*>(block.get_item_values(item));
}

PolyMeshProperty const& get_poly_property(GeometryProperty const& property) {
    return static_cast<PolyMeshProperty const&>(property);
}

// Gives `count` components to an output, component k as `get(k)`.
template <typename Output, typename Get>
void give(Output* output, unsigned int const& count, Get const& get) {
    if (output) {
        for (unsigned int k = 0; k < count; ++k) {
            output[k] = get(k);
        }
    }
}

template <typename Output>
void give_zeros(Output* output, unsigned int const& count) {
    give(output, count, [](unsigned int const&) { return Output(0); });
}

// One item as it is.
template <typename Element, typename Output>
unsigned int give_item(ResourceProperty const& block, unsigned int const& item, Output* values,
                       Output* d_ds, Output* d_dt, Output* d_extra, unsigned int const& max_count) {
    unsigned int const count = std::min(max_count, block.get_item_length(item));
    Element const* const elements = get_elements<Element>(block, item);
    give(values, count,
         [&](unsigned int const& k) { return get_property_output<Output>(elements[k]); });
    give_zeros(d_ds, count);
    give_zeros(d_dt, count);
    give_zeros(d_extra, count);
    return count;
}

// Replaces numbers by what an array holds there. Spelt out, so that all stays in registers.
template <typename Array>
void map_through(Array const& array, unsigned int (&numbers)[3]) {
    numbers[0] = array[numbers[0]];
    numbers[1] = array[numbers[1]];
    numbers[2] = array[numbers[2]];
}

// The numbers of the items at the corners of one triangle of a primitive.
inline void get_corner_items(PolyMeshProperty const& property, PolyMeshTopology const& topology,
                             unsigned int const& primitive, SurfaceTriangle const& triangle,
                             unsigned int (&items)[3]) {
    get_surface_corner_ids(topology, primitive, triangle, items);
    if (property.has_indices()) {
        map_through(property.get_indices(), items);
    } else {
        map_through(topology.polygon_vertex_indices, items);
    }
}

// The elements of three items. Returns how many all of them have, at most `max_count`; `x` may be
// left alone when that is 0. Items of one length lie one after the other.
template <typename Element>
inline unsigned int get_item_elements(ResourceProperty const& block, unsigned int const (&items)[3],
                                      unsigned int const& max_count, Element const* (&x)[3]) {
    unsigned int count = max_count;
    if (block.has_offsets()) {
        for (unsigned int k = 0; k < 3; ++k) {
            count = std::min(count, block.get_item_length(items[k]));
            x[k] = get_elements<Element>(block, items[k]);
        }
        return count;
    }
    unsigned int const item_count = block.get_item_count();
    if (items[0] >= item_count || items[1] >= item_count || items[2] >= item_count) {
        return 0;
    }
    std::size_t const extent = block.get_item_length(0);
    Element const* const first = get_elements<Element>(block, 0);
    x[0] = first + items[0] * extent;
    x[1] = first + items[1] * extent;
    x[2] = first + items[2] * extent;
    return std::min(count, block.get_item_length(0));
}

template <typename Element, typename Output>
unsigned int interpolate(GeometryProperty const& property, CtxEval const&,
                         GeometryFragment const& fragment, unsigned int const& sample,
                         Output* values, Output* d_ds, Output* d_dt, Output* d_extra,
                         unsigned int const& max_count) {
    PolyMeshProperty const& poly_property = get_poly_property(property);
    ResourceProperty const& block = *poly_property.get_attached_values(sample);
    if (fragment.point_index < block.get_item_count()) {
        return give_item<Element>(block, fragment.point_index, values, d_ds, d_dt, d_extra,
                                  max_count);
    }
    PolyMeshTopology const& topology = poly_property.get_mesh().get_topology();
    unsigned int const primitive = fragment.primitive_index;
    if (primitive >= topology.primitive_infos.get_count()) {
        return 0;
    }
    SurfaceWeights const weights =
        compute_property_weights(is_quad(topology, primitive), fragment.s, fragment.t);
    unsigned int items[3];
    get_corner_items(poly_property, topology, primitive, *weights.triangle, items);
    Element const* x[3];
    unsigned int const count = get_item_elements(block, items, max_count, x);
    if (count == 0) {
        return 0;
    }
    Element const* const s_start = x[weights.triangle->s_start];
    Element const* const t_start = x[weights.triangle->t_start];

    using Real = PropertyReal<Element>;
    give(values, count, [&](unsigned int const& k) {
        Real const reals[3] = {get_property_real<Real>(x[0][k]), get_property_real<Real>(x[1][k]),
                               get_property_real<Real>(x[2][k])};
        return get_property_output<Output>(weights.interpolate(reals));
    });
    give(d_ds, count, [&](unsigned int const& k) {
        return get_property_output<Output>(get_property_difference(x[1][k], s_start[k]));
    });
    give(d_dt, count, [&](unsigned int const& k) {
        return get_property_output<Output>(get_property_difference(x[2][k], t_start[k]));
    });
    give_zeros(d_extra, count);
    return count;
}

// Deliberate: the indices of the property are not used, the item is the polygon's own.
template <typename Element, typename Output>
unsigned int look_up_polygon(GeometryProperty const& property, CtxEval const&,
                             GeometryFragment const& fragment, unsigned int const& sample,
                             Output* values, Output* d_ds, Output* d_dt, Output* d_extra,
                             unsigned int const& max_count) {
    PolyMeshProperty const& poly_property = get_poly_property(property);
    PolyMeshTopology const& topology = poly_property.get_mesh().get_topology();
    if (fragment.primitive_index >= topology.primitive_infos.get_count()) {
        return 0;
    }
    return give_item<Element>(*poly_property.get_attached_values(sample),
                              topology.primitive_polygon_indices[fragment.primitive_index], values,
                              d_ds, d_dt, d_extra, max_count);
}

template <typename Element, typename Output>
unsigned int give_constant(GeometryProperty const& property, CtxEval const&,
                           GeometryFragment const&, unsigned int const& sample, Output* values,
                           Output* d_ds, Output* d_dt, Output* d_extra,
                           unsigned int const& max_count) {
    return give_item<Element>(*get_poly_property(property).get_attached_values(sample), 0, values,
                              d_ds, d_dt, d_extra, max_count);
}

// The functions for one value type, by PolyMeshProperty::Type. Whole items of 64-bit integers are
// copied by one function, signed or not.
struct PropertyCallbackRow {
    PropertyCallbacks by_type[3];
};

template <typename Element, typename CopiedInteger = Element>
constexpr PropertyCallbackRow callback_row = {{
    {interpolate<Element, long long>, interpolate<Element, double>},
    {look_up_polygon<CopiedInteger, long long>, look_up_polygon<Element, double>},
    {give_constant<CopiedInteger, long long>, give_constant<Element, double>},
}};

// By ResourceProperty::Type.
constexpr PropertyCallbackRow callback_rows[] = {
    callback_row<signed char>,
    callback_row<unsigned char>,
    callback_row<short>,
    callback_row<unsigned short>,
    callback_row<int>,
    callback_row<unsigned int>,
    callback_row<long long>,
    callback_row<unsigned long long, long long>,
    callback_row<PropertyHalf>,
    callback_row<float>,
    callback_row<double>,
    callback_row<signed char>,     // bool
    callback_row<unsigned short>,  // choice
};
static_assert(std::size(callback_rows) == ResourceProperty::TYPE_CHOICE + 1);
static_assert(std::size(callback_rows[0].by_type) == PolyMeshProperty::TYPE_CONSTANT + 1);

}  // namespace

PropertyCallbacks get_property_callbacks(PolyMeshProperty::Type const& type,
                                         ResourceProperty::Type const& value_type) {
    unsigned int const row = static_cast<unsigned int>(value_type);
    unsigned int const column = static_cast<unsigned int>(type);
    if (row >= std::size(callback_rows) || column >= std::size(callback_rows[0].by_type)) {
        return {nullptr, nullptr};
    }
    return callback_rows[row].by_type[column];
}
