#include <platform/qz_core.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

// Counts its living instances, and shows when it was moved from or is read after its end.
struct Counted {
    static inline int s_alive = 0;
    int value = 7;

    Counted() { ++s_alive; }
    explicit Counted(int const& new_value) : value(new_value) { ++s_alive; }
    Counted(Counted const& other) : value(other.value) { ++s_alive; }
    Counted(Counted&& other) noexcept : value(std::exchange(other.value, -1)) { ++s_alive; }
    Counted& operator=(Counted const& other) = default;
    ~Counted() {
        value = -2;
        --s_alive;
    }
};

template <typename T>
std::vector<int> values_of(CoreArray<T> const& array) {
    std::vector<int> values;
    for (T const& element : array) {
        if constexpr (std::is_same_v<T, Counted>) {
            values.push_back(element.value);
        } else {
            values.push_back(element);
        }
    }
    return values;
}

template <typename T>
class CoreArrays : public testing::Test {};
using ElementTypes = testing::Types<int, Counted>;
TYPED_TEST_SUITE(CoreArrays, ElementTypes);

}  // namespace

TYPED_TEST(CoreArrays, GrowShrinkAndCopyWithoutLosingElements) {
    using Values = std::vector<int>;
    {
        CoreArray<TypeParam> array;
        EXPECT_EQ(array.get_memory_size(), 16u);
        for (int i = 0; i < 5; ++i) {
            array.append(TypeParam(i));
        }
        EXPECT_EQ(array.get_capacity(), 8u);
        while (array.get_count() < 20) {
            array.append(array[array.get_count() - 5]);  // its own element, across reallocations
        }
        EXPECT_EQ(values_of(array),
                  Values({0, 1, 2, 3, 4, 0, 1, 2, 3, 4, 0, 1, 2, 3, 4, 0, 1, 2, 3, 4}));
        array.resize(3);
        EXPECT_EQ(values_of(array), Values({0, 1, 2}));
        EXPECT_EQ(array.get_capacity(), 32u);

        CoreArray<TypeParam> copy(array);
        EXPECT_EQ(copy.get_memory_size(), 28 + 3 * sizeof(TypeParam));
        copy.copy_from(CoreBasicArray<TypeParam>(copy.get_data() + 1, 2));  // a view of itself
        EXPECT_EQ(values_of(copy), Values({1, 2}));
        CoreArray<TypeParam> const& same = copy;
        copy = same;
        EXPECT_EQ(values_of(copy), Values({1, 2}));
        copy.fill(copy[1]);
        EXPECT_EQ(values_of(copy), Values({2, 2}));
        copy = std::move(array);
        EXPECT_EQ(values_of(copy), Values({0, 1, 2}));
        copy.shrink_to_fit();
        EXPECT_EQ(copy.get_capacity(), 3u);
        copy.reset(copy.get_count());
        EXPECT_EQ(copy.get_count(), 3u);
        copy.clear();
        EXPECT_EQ(copy.get_memory_size(), 16u);
        EXPECT_EQ(copy.get_data(), nullptr);
    }
    EXPECT_EQ(Counted::s_alive, 0);
}

TEST(CoreArray, ConstructsNewElementsOfClasses) {
    CoreArray<Counted> array(2);
    array[0].value = 1;
    array.resize(1);
    array.resize(3);
    EXPECT_EQ(values_of(array), std::vector<int>({1, 7, 7}));
}
