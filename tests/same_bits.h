#pragma once

#include <cstring>

// Tells zeros of two signs apart, and finds a NaN equal to itself. For types without padding.
template <typename T>
bool have_same_bits(T const& a, T const& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;  // NOLINT(bugprone-*): bits count
}
