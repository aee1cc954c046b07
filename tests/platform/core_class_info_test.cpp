#include <platform/qz_core.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

struct Animal : CoreBaseObject {
    static inline int destroyed = 0;
    ~Animal() override { ++destroyed; }
    static CoreClassInfo const& class_info() {
        static CoreClassInfo const& info = CoreClassInfo::new_class(
            "TestAnimal", core_destroy<Animal>, &CoreBaseObject::class_info(),
            [](CoreClassInfo&) { ++initialised; });
        return info;
    }
    CoreClassInfo const& get_class_info() const override { return class_info(); }
    static inline int initialised = 0;
};

}  // namespace

TEST(CoreClassInfo, RegistersEachNameOnce) {
    std::vector<std::thread> threads;
    std::vector<CoreClassInfo const*> infos(8);
    for (CoreClassInfo const*& info : infos) {
        threads.emplace_back([&info] { info = &Animal::class_info(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (CoreClassInfo const* info : infos) {
        EXPECT_EQ(info, CoreClassInfo::get_class("TestAnimal"));
    }
    EXPECT_EQ(Animal::initialised, 1);
    EXPECT_EQ(&CoreClassInfo::new_class("TestAnimal", nullptr, nullptr, nullptr), infos[0]);
    EXPECT_EQ(infos[0]->get_parent(), &CoreBaseObject::class_info());
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
        Animal::destroyed = 0;
        EXPECT_TRUE(info.destroy(row.object, row.is_array));
        EXPECT_EQ(Animal::destroyed, row.destroyed);
    }
    EXPECT_FALSE(
        CoreClassInfo::new_class("TestNoEnd", nullptr, nullptr, nullptr).destroy(nullptr, false));
}
