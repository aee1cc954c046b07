#include <platform/qz_core/core_hash.h>

#include <bit>
#include <cstring>

static_assert(std::endian::native == std::endian::little, "keys are hashed in storage order");

namespace {

constexpr unsigned long long factor_1 = 0x87c37b91114253d5ull;
constexpr unsigned long long factor_2 = 0x4cf5ad432745937full;

unsigned long long load(unsigned char const* bytes) {
    unsigned long long word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

unsigned long long scramble_1(unsigned long long const& word) {
    return std::rotl(word * factor_1, 31) * factor_2;
}

unsigned long long scramble_2(unsigned long long const& word) {
    return std::rotl(word * factor_2, 33) * factor_1;
}

unsigned long long finish(unsigned long long word) {
    word ^= word >> 33;
    word *= 0xff51afd7ed558ccdull;
    word ^= word >> 33;
    word *= 0xc4ceb9fe1a85ec53ull;
    return word ^ (word >> 33);
}

// The way of one input to its key.
class Chain {
  public:
    Chain(CoreHashInput const& input, unsigned int const& seed)
        : m_bytes(static_cast<unsigned char const*>(input.data)),
          m_size(input.size),
          m_blocks_left(input.size / 16),
          m_h1(seed),
          m_h2(seed) {}

    bool is_mixed() const { return m_blocks_left == 0; }

    // All blocks that are left.
    void mix_all() {
        Chain chain = *this;
        while (chain.m_blocks_left != 0) {
            chain.mix_block();
        }
        *this = chain;
    }

    // Two chains in turns, until one of them has no blocks left. A chain waits for its own products
    // alone, so that two take hardly longer than one.
    static void mix_both(Chain& a, Chain& b) {
        Chain chain_a = a;
        Chain chain_b = b;
        while (chain_a.m_blocks_left != 0 && chain_b.m_blocks_left != 0) {
            chain_a.mix_block();
            chain_b.mix_block();
        }
        a = chain_a;
        b = chain_b;
    }

    // After all blocks.
    Core128BitHashKey finish_key() {
        unsigned long long const rest = m_size % 16;
        if (rest != 0) {
            unsigned char tail[16] = {};
            std::memcpy(tail, m_bytes, static_cast<std::size_t>(rest));
            m_h2 ^= scramble_2(load(tail + 8));  // zero bytes beyond the tail scramble to zero
            m_h1 ^= scramble_1(load(tail));
        }
        m_h1 ^= m_size;
        m_h2 ^= m_size;
        m_h1 += m_h2;
        m_h2 += m_h1;
        m_h1 = finish(m_h1);
        m_h2 = finish(m_h2);
        m_h1 += m_h2;
        m_h2 += m_h1;
        return {{m_h1, m_h2}};
    }

  private:
    void mix_block() {
        m_h1 ^= scramble_1(load(m_bytes));
        m_h1 = (std::rotl(m_h1, 27) + m_h2) * 5 + 0x52dce729;
        m_h2 ^= scramble_2(load(m_bytes + 8));
        m_h2 = (std::rotl(m_h2, 31) + m_h1) * 5 + 0x38495ab5;
        m_bytes += 16;
        --m_blocks_left;
    }

    unsigned char const* m_bytes;
    unsigned long long m_size;
    unsigned long long m_blocks_left;
    unsigned long long m_h1;
    unsigned long long m_h2;
};

}  // namespace

void CoreHash::generate_murmur3(void const* data, unsigned long long const& size,
                                Core128BitHashKey& key, unsigned int const& seed) {
    CoreHashInput const input = {data, size};
    generate_murmur3(&input, 1, &key, seed);
}

void CoreHash::generate_murmur3(CoreHashInput const* inputs, unsigned int const& count,
                                Core128BitHashKey* keys, unsigned int const& seed) {
    if (count == 0) {
        return;
    }
    // Two chains go on until one of them ends; the next input takes its place.
    unsigned int longer = 0;
    Chain chain(inputs[0], seed);
    for (unsigned int i = 1; i < count; ++i) {
        Chain other(inputs[i], seed);
        Chain::mix_both(chain, other);
        if (other.is_mixed()) {
            keys[i] = other.finish_key();
        } else {
            keys[longer] = chain.finish_key();
            chain = other;
            longer = i;
        }
    }
    chain.mix_all();
    keys[longer] = chain.finish_key();
}
