#include <platform/qz_core.h>

#include <gtest/gtest.h>

namespace {

struct Animal : CoreBaseObject {
    static inline int s_destroyed = 0;
    ~Animal() override { ++s_destroyed; }
    static CoreClassInfo const& class_info() {
        static CoreClassInfo const& info = CoreClassInfo::new_class(
            "TestAnimal", core_destroy<Animal>, &CoreBaseObject::class_info(), nullptr);
        return info;
    }
    CoreClassInfo const& get_class_info() const override { return class_info(); }
};

}  // namespace

TEST(CoreClassInfo, RegistersEachNameOnce) {
    CoreClassInfo const& info = Animal::class_info();
    EXPECT_EQ(CoreClassInfo::get_class("TestAnimal"), &info);
    EXPECT_EQ(&CoreClassInfo::new_class("TestAnimal", nullptr, nullptr, nullptr), &info);
    EXPECT_EQ(info.get_parent(), &CoreBaseObject::class_info());
    EXPECT_EQ(CoreClassInfo::get_class("TestNobody"), nullptr);

    Animal const animal;
    EXPECT_TRUE(animal.is_kindof(CoreBaseObject::class_info()));
    EXPECT_FALSE(CoreBaseObject::class_info().is_kindof(Animal::class_info()));
}

TEST(CoreClassInfo, DestroysObjectsAndArrays) {
    CoreClassInfo const& info = Animal::class_info();
    struct Row {
        void* object;
        bool is_array;
        int destroyed;
    };
    Row const rows[] = {
        {nullptr, false, 0},      {nullptr, true, 0},       {new Animal, false, 1},
        {new Animal[3], true, 3}, {new Animal[0], true, 0},
    };
    for (Row const& row : rows) {
        Animal::s_destroyed = 0;
        EXPECT_TRUE(info.destroy(row.object, row.is_array));
        EXPECT_EQ(Animal::s_destroyed, row.destroyed);
    }
}
