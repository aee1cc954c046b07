#pragma once

#include <poly/topology/scratch_block.h>

#include <bit>
#include <cassert>
#include <cstdint>

// A set of corner numbers. Above its bits lie levels of words in which each bit tells whether the
// word below it has members, so that a search steps over any empty stretch at once.
class OpenCorners {
  public:
    // Bytes that the constructor takes from its scratch block.
    static std::size_t get_scratch_size(std::size_t const& count) {
        std::size_t size = 0;
        std::size_t word_count = count;
        do {
            word_count = get_word_count(word_count);
            size += ScratchBlock::get_size<std::uint64_t>(word_count);
        } while (word_count > 1);
        return size;
    }

    // All corners below `count`, which is at least 1. `scratch` outlives this.
    OpenCorners(unsigned int const& count, ScratchBlock& scratch) {
        std::size_t member_count = count;
        do {
            assert(m_level_count < max_level_count);
            std::size_t const word_count = get_word_count(member_count);
            std::uint64_t* const words = scratch.take<std::uint64_t>(word_count);
            for (std::size_t k = 0; k < word_count; ++k) {
                words[k] = ~0ull;
            }
            words[word_count - 1] >>= (word_bits - member_count % word_bits) % word_bits;
            m_levels[m_level_count++] = words;
            member_count = word_count;
        } while (member_count > 1);
    }

    void add(unsigned int const& corner) {
        unsigned int i = corner;
        for (unsigned int level = 0; level < m_level_count; ++level, i /= word_bits) {
            std::uint64_t& word = m_levels[level][i / word_bits];
            bool const was_empty = word == 0;
            word |= get_bit(i);
            if (!was_empty) {
                return;
            }
        }
    }

    void remove(unsigned int const& corner) {
        unsigned int i = corner;
        for (unsigned int level = 0; level < m_level_count; ++level, i /= word_bits) {
            std::uint64_t& word = m_levels[level][i / word_bits];
            word &= ~get_bit(i);
            if (word != 0) {
                return;
            }
        }
    }

    // Moves `at`, below the count, on to the next member, itself included, going round; false for
    // the empty set.
    bool find_from(unsigned int& at) const {
        std::uint64_t const bits = m_levels[0][at / word_bits] & (~0ull << (at % word_bits));
        if (bits != 0) {
            at = at / word_bits * word_bits + static_cast<unsigned int>(std::countr_zero(bits));
            return true;
        }
        if (m_levels[m_level_count - 1][0] == 0) {
            return false;
        }
        find_beyond(at);
        return true;
    }

  private:
    static constexpr unsigned int word_bits = 64;
    static constexpr unsigned int max_level_count = 6;  // enough for 2^36 corners

    static constexpr std::size_t get_word_count(std::size_t const& count) {
        return (count + word_bits - 1) / word_bits;
    }
    static constexpr std::uint64_t get_bit(unsigned int const& i) {
        return 1ull << (i % word_bits);
    }

    // The first member after the word of `at`, going round; the set is not empty.
    void find_beyond(unsigned int& at) const {
        unsigned int level = 0;
        unsigned int i = at;
        std::uint64_t bits = 0;
        while (bits == 0 && level + 1 < m_level_count) {
            ++level;
            i /= word_bits;
            // The bits above that of the word below, which may be the last one.
            bits = m_levels[level][i / word_bits] & (~1ull << (i % word_bits));
        }
        if (bits == 0) {
            bits = m_levels[level][0];
            i = 0;
        }
        for (;;) {
            i = i / word_bits * word_bits + static_cast<unsigned int>(std::countr_zero(bits));
            if (level == 0) {
                at = i;
                return;
            }
            bits = m_levels[--level][i];
            i *= word_bits;
        }
    }

    std::uint64_t* m_levels[max_level_count] = {};
    unsigned int m_level_count = 0;
};
