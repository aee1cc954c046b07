#include <platform/qz_core.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

constexpr unsigned int absent = 0xFFFFFFFFu;

// The largest value of each width, with 0 left for absent entries.
unsigned int get_limit(unsigned int const& width) {
    return static_cast<unsigned int>((1ull << width) - 2);
}

// `count` values up to the limit, about a tenth of them absent, one of them the limit.
std::vector<unsigned int> get_values(unsigned int const& width, unsigned int const& count) {
    std::mt19937 random(width * 100 + count);
    std::vector<unsigned int> values(count);
    for (unsigned int& value : values) {
        value = random() % 10 == 0
                    ? absent
                    : static_cast<unsigned int>(random() % (get_limit(width) + 1ull));
    }
    values[random() % count] = get_limit(width);
    return values;
}

std::vector<unsigned int> unpack(CoreIndexArray const& packed) {
    CoreArray<unsigned int> values;
    packed.get_array(values);
    return {values.begin(), values.end()};
}

}  // namespace

TEST(CoreIndexArray, KeepsValuesAtEveryWidth) {
    for (unsigned int width = 1; width <= 32; ++width) {
        for (unsigned int const count : {1u, 2u, 31u, 64u, 100u}) {
            SCOPED_TRACE(testing::Message() << "width " << width << ", count " << count);
            std::vector<unsigned int> const values = get_values(width, count);
            CoreIndexArray packed;
            packed.copy_from(CoreBasicArray<unsigned int>(values.data(), count));
            EXPECT_EQ(packed.get_bit_count(), width);
            EXPECT_EQ(packed.get_largest_value(), get_limit(width));
            EXPECT_EQ(packed.get_memory_size(), 28 + (count * width + 7) / 8 + 7);
            EXPECT_EQ(unpack(packed), values);

            // Written one by one, from the back and over other values.
            CoreIndexArray written;
            written.init(count, get_limit(width));
            EXPECT_EQ(written.get_bit_count(), width);
            EXPECT_EQ(unpack(written), std::vector<unsigned int>(count, absent));
            for (unsigned int i = count; i-- > 0;) {
                written.set(i, get_limit(width));
                written.set_absent(i);
                written.set(i, values[i]);
            }
            EXPECT_EQ(unpack(written), values);

            CoreIndexArray copy(packed);
            copy.set_absent(0);
            EXPECT_EQ(unpack(packed), values);
            packed = std::move(copy);
            EXPECT_EQ(packed[0], absent);
            std::vector<unsigned int> part(count - count / 2);
            packed.get_indices(count / 2, count - count / 2, part.data());
            EXPECT_TRUE(std::equal(part.begin(), part.end(), values.begin() + count / 2) ||
                        count == 1);
        }
    }
}

TEST(CoreIndexArray, HoldsNothingAndOnlyAbsentEntries) {
    CoreIndexArray packed;
    EXPECT_EQ(packed.get_largest_value(), 0u);
    packed.init(0, absent);
    EXPECT_EQ(packed.get_memory_size(), 16u);
    EXPECT_TRUE(packed.is_empty());
    EXPECT_TRUE(unpack(packed).empty());
    packed.init(3, absent);  // the largest value asks for all bits
    EXPECT_EQ(packed.get_bit_count(), 32u);
    unsigned int const values[] = {absent, absent};
    packed.copy_from(CoreBasicArray<unsigned int>(values, 2));
    EXPECT_EQ(packed.get_bit_count(), 1u);
    EXPECT_EQ(packed[1], absent);
    packed.copy_from(CoreBasicArray<unsigned int>());
    EXPECT_EQ(packed.get_memory_size(), 16u);
}
