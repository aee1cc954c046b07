#include <poly/property/property_callbacks.h>

#include <poly/mesh/primitive_corners.h>
#include <poly/property/property_elements.h>
#include <poly/render/surface_weights.h>

#include <algorithm>
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

// The numbers of the items at the corners of one triangle of a primitive.
inline IndexTriple get_corner_items(PolyMeshProperty const& property,
                                    PolyMeshTopology const& topology,
                                    PrimitivePlace const& primitive,
                                    SurfaceTriangle const& triangle) {
    IndexTriple const ids = get_surface_corner_ids(topology, primitive, triangle);
    return property.has_indices() ? look_up(property.get_indices(), ids)
                                  : look_up(topology.polygon_vertex_indices, ids);
}

// Items of one element each, which lie one after the other.
inline bool has_single_elements(ResourceProperty const& block) {
    return !block.has_offsets() && block.get_item_length(0) == 1;
}

// At most `max_count` components; one, if all items have a `single` element.
template <typename Element, typename Output, bool single>
inline unsigned int
interpolate_items(PolyMeshProperty const& property, ResourceProperty const& block,
                  GeometryFragment const& fragment, Output* values, Output* d_ds, Output* d_dt,
                  Output* d_extra, unsigned int const& max_count) {
    PolyMeshTopology const& topology = property.get_mesh().get_topology();
    if (fragment.primitive_index >= topology.primitive_infos.get_count()) {
        return 0;
    }
    PrimitivePlace const place = find_primitive(topology, fragment.primitive_index);
    SurfaceWeights const weights =
        compute_property_weights(place.is_quad(), fragment.s, fragment.t);
    IndexTriple const items = get_corner_items(property, topology, place, *weights.triangle);
    unsigned int const item_count = block.get_item_count();
    if (items.a >= item_count || items.b >= item_count || items.c >= item_count) {
        return 0;
    }
    Element const* corners[3];
    unsigned int count = 1;
    if constexpr (single) {
        Element const* const first = get_elements<Element>(block, 0);
        corners[0] = first + items.a;
        corners[1] = first + items.b;
        corners[2] = first + items.c;
    } else {
        corners[0] = get_elements<Element>(block, items.a);
        corners[1] = get_elements<Element>(block, items.b);
        corners[2] = get_elements<Element>(block, items.c);
        count = std::min({max_count, block.get_item_length(items.a), block.get_item_length(items.b),
                          block.get_item_length(items.c)});
    }
    Element const* const s_start = corners[weights.triangle->s_start];
    Element const* const t_start = corners[weights.triangle->t_start];
    give(values, count, [&](unsigned int const& k) {
        using Real = PropertyReal<Element>;
        return get_property_output<Output>(weights.interpolate(
            get_property_real<Real>(corners[0][k]), get_property_real<Real>(corners[1][k]),
            get_property_real<Real>(corners[2][k])));
    });
    give(d_ds, count, [&](unsigned int const& k) {
        return get_property_output<Output>(get_property_difference(corners[1][k], s_start[k]));
    });
    give(d_dt, count, [&](unsigned int const& k) {
        return get_property_output<Output>(get_property_difference(corners[2][k], t_start[k]));
    });
    give_zeros(d_extra, count);
    return count;
}

template <typename Element, typename Output>
[[gnu::noinline]] unsigned int
interpolate_many(PolyMeshProperty const& property, ResourceProperty const& block,
                 GeometryFragment const& fragment, Output* values, Output* d_ds, Output* d_dt,
                 Output* d_extra, unsigned int const& max_count) {
    return interpolate_items<Element, Output, false>(property, block, fragment, values, d_ds, d_dt,
                                                     d_extra, max_count);
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
    // Most properties are one number, for which loops and offsets cost more than the number does.
    if (has_single_elements(block) && max_count != 0) {
        return interpolate_items<Element, Output, true>(poly_property, block, fragment, values,
                                                        d_ds, d_dt, d_extra, max_count);
    }
    return interpolate_many<Element>(poly_property, block, fragment, values, d_ds, d_dt, d_extra,
                                     max_count);
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
