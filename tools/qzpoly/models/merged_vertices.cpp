#include <tools/qzpoly/models/merged_vertices.h>

#include <tools/qzpoly/models/radix_order.h>

#include <bit>
#include <numeric>

std::vector<unsigned int> merge_vertices(CoreBasicArray<GMathVec3<float>> const& positions) {
    std::vector<unsigned int> order(positions.get_count());
    std::iota(order.begin(), order.end(), 0u);
    // Adding 0 makes one zero of both.
    auto const get_bits = [&](unsigned int const& vertex, unsigned int const& axis) {
        return std::bit_cast<unsigned int>(positions[vertex][axis] + 0.0f);
    };
    for (unsigned int axis = 3; axis-- > 0;) {
        order_by_key(order, [&](unsigned int const& vertex) { return get_bits(vertex, axis); });
    }
    auto const are_together = [&](unsigned int const& a, unsigned int const& b) {
        return get_bits(a, 0) == get_bits(b, 0) && get_bits(a, 1) == get_bits(b, 1) &&
               get_bits(a, 2) == get_bits(b, 2);
    };
    std::vector<unsigned int> merged(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        bool const is_repeated = i != 0 && are_together(order[i - 1], order[i]);
        merged[order[i]] = is_repeated ? merged[order[i - 1]] : order[i];
    }
    return merged;
}
