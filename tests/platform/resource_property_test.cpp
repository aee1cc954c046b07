#include <platform/qz_resource.h>

#include <gtest/gtest.h>

namespace {

using Property = ResourceProperty;

// Where item `index` lies, in bytes from item 0.
long get_place(Property const& property, unsigned int const& index) {
    return static_cast<unsigned char const*>(property.get_item_values(index)) -
           static_cast<unsigned char const*>(property.get_item_values(0));
}

}  // namespace

TEST(ResourceProperty, LaysOutItemsOfOneLengthAndOfTheirOwn) {
    Property const fixed(Property::TYPE_FLOAT, 3, 2);
    unsigned int const offset_values[] = {0, 2, 2, 5};
    CoreBasicArray<unsigned int> const offsets(offset_values, 4);
    Property const varying(Property::TYPE_CHOICE, offsets);
    struct Row {
        Property const& property;
        unsigned int index;
        unsigned int length;
        long place;
    };
    Row const rows[] = {
        {fixed, 0, 3, 0},           {fixed, 1, 3, 12},   {fixed, 2, 0, 24},
        {fixed, 0xFFFFFFFF, 0, 24}, {varying, 0, 2, 0},  {varying, 1, 0, 4},
        {varying, 2, 3, 4},         {varying, 3, 0, 10}, {varying, 0xFFFFFFFF, 0, 10},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(row.property.get_item_length(row.index), row.length);
        EXPECT_EQ(get_place(row.property, row.index), row.place);
    }
    EXPECT_EQ(varying.get_item_count(), 3u);
    EXPECT_EQ(static_cast<float const*>(fixed.get_item_values(1))[2], 0.0f);
    EXPECT_EQ(fixed.get_memory_size(), sizeof(Property) + 28 + 24 + 16);
    EXPECT_EQ(varying.get_memory_size(), sizeof(Property) + 28 + 10 + 28 + 16);

    Property const empty(Property::TYPE_DOUBLE, CoreBasicArray<unsigned int>(offset_values, 1));
    EXPECT_EQ(empty.get_item_count(), 0u);
    EXPECT_EQ(empty.get_item_length(0), 0u);
}
