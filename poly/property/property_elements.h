#pragma once

#include <platform/qz_geometry.h>
#include <platform/qz_gmath.h>

#include <type_traits>

// How elements of properties are converted, and subtracted.

// An element of ResourceProperty::TYPE_HALF.
struct PropertyHalf {
    unsigned short bits;
};

// What sums of elements are formed in.
template <typename Element>
using PropertyReal = std::conditional_t<std::is_same_v<Element, double>, double, float>;

// The element as a float or double, to nearest.
template <typename Real, typename Element>
Real get_property_real(Element const& element) {
    if constexpr (std::is_same_v<Element, PropertyHalf>) {
        return GMathHalfFloatConverter::s_conv_htof[element.bits];
    } else if constexpr (std::is_same_v<Element, unsigned long long>) {
        // Deliberate: rounded twice, as a signed number and when 2^64 is added.
        Real const reading = static_cast<Real>(static_cast<long long>(element));
        return reading < 0 ? reading + static_cast<Real>(0x1p64) : reading;
    } else {
        return static_cast<Real>(element);
    }
}

// The element as an output, long long or double. Integers of 64 bits keep their bits as such, and
// fractions are cut off.
template <typename Output, typename Element>
Output get_property_output(Element const& element) {
    if constexpr (std::is_same_v<Output, double>) {
        return get_property_real<double>(element);
    } else if constexpr (std::is_integral_v<Element>) {
        return static_cast<long long>(element);
    } else {
        return geometry_truncate(get_property_real<double>(element));
    }
}

// a - b: halves as floats, short integers as ints. Integers of 32 and 64 bits wrap around and keep
// their type, so differences of unsigned ones are never negative.
template <typename Element>
auto get_property_difference(Element const& a, Element const& b) {
    if constexpr (std::is_same_v<Element, PropertyHalf>) {
        return get_property_real<float>(a) - get_property_real<float>(b);
    } else if constexpr (std::is_integral_v<Element> && sizeof(Element) >= sizeof(int)) {
        using Unsigned = std::make_unsigned_t<Element>;
        return static_cast<Element>(static_cast<Unsigned>(a) - static_cast<Unsigned>(b));
    } else {
        return a - b;
    }
}
