#include <platform/qz_core/core_base_object.h>

CoreBaseObject::~CoreBaseObject() = default;

bool CoreBaseObject::is_kindof(CoreClassInfo const& info) const {
    return get_class_info().is_kindof(info);
}

unsigned long long CoreBaseObject::get_memory_size() const { return 0; }

CoreClassInfo const& CoreBaseObject::get_class_info() const { return class_info(); }

CoreClassInfo const& CoreBaseObject::class_info() {
    static CoreClassInfo const& info =
        CoreClassInfo::new_class("CoreBaseObject", core_destroy<CoreBaseObject>, nullptr, nullptr);
    return info;
}
