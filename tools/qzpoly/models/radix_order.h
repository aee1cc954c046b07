#pragma once

#include <array>
#include <utility>
#include <vector>

// Sorts `order`, numbers of items, by the 32-bit keys that get_key(number) gives; equal ones stay
// in their order. Takes linear time, whatever the keys. Sort by the last key first.
template <typename GetKey>
void order_by_key(std::vector<unsigned int>& order, GetKey const& get_key) {
    constexpr unsigned int digit_bits = 11;
    constexpr unsigned int digit_count = 1u << digit_bits;
    std::vector<unsigned int> sorted(order.size());
    for (unsigned int shift = 0; shift < 32; shift += digit_bits) {
        auto const get_digit = [&](unsigned int const& item) {
            return get_key(item) >> shift & (digit_count - 1);
        };
        std::array<unsigned int, digit_count> places{};
        for (unsigned int const& item : order) {
            ++places[get_digit(item)];
        }
        unsigned int place = 0;
        for (unsigned int& count : places) {
            place += std::exchange(count, place);
        }
        for (unsigned int const& item : order) {
            sorted[places[get_digit(item)]++] = item;
        }
        order.swap(sorted);
    }
}
