#pragma once

#include <bit>
#include <cstdint>

// A set of corner numbers below 64 * word_count. Operations work on whole sets, so that a set stays
// in registers: a word written alone and read back with its neighbour would stall.
template <unsigned int word_count>
struct CornerSet {
    std::uint64_t words[word_count] = {};

    static CornerSet make_first(unsigned int const& count) {
        CornerSet set;
        for (unsigned int k = 0; k < word_count; ++k) {
            unsigned int const begin = 64 * k;
            if (count > begin) {
                set.words[k] = count - begin >= 64 ? ~0ull : (1ull << (count - begin)) - 1ull;
            }
        }
        return set;
    }

    static CornerSet make_single(unsigned int const& corner) {
        CornerSet set;
        if constexpr (word_count == 1) {
            set.words[0] = 1ull << corner;
            return set;
        }
        for (unsigned int k = 0; k < word_count; ++k) {
            set.words[k] = corner / 64 == k ? 1ull << (corner % 64) : 0ull;
        }
        return set;
    }

    CornerSet operator|(CornerSet const& b) const {
        CornerSet set;
        for (unsigned int k = 0; k < word_count; ++k) {
            set.words[k] = words[k] | b.words[k];
        }
        return set;
    }

    CornerSet operator&(CornerSet const& b) const {
        CornerSet set;
        for (unsigned int k = 0; k < word_count; ++k) {
            set.words[k] = words[k] & b.words[k];
        }
        return set;
    }

    CornerSet without(CornerSet const& b) const {
        CornerSet set;
        for (unsigned int k = 0; k < word_count; ++k) {
            set.words[k] = words[k] & ~b.words[k];
        }
        return set;
    }

    bool is_empty() const {
        std::uint64_t members = 0;
        for (std::uint64_t const word : words) {
            members |= word;
        }
        return members == 0;
    }

    // Moves `at` on to the next member, itself included, going round; false for the empty set.
    bool find_from(unsigned int& at) const {
        unsigned int word = at / 64;
        std::uint64_t bits = words[word] & (~0ull << (at % 64));
        for (unsigned int k = 0; bits == 0; ++k) {
            if (k == word_count) {
                return false;
            }
            word = word + 1 == word_count ? 0 : word + 1;
            bits = words[word];
        }
        at = 64 * word + static_cast<unsigned int>(std::countr_zero(bits));
        return true;
    }
};
