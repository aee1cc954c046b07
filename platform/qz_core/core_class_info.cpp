#include <platform/qz_core/core_class_info.h>

#include <map>
#include <memory>
#include <mutex>

namespace {

struct Registry {
    std::mutex mutex;
    std::map<CoreString, std::unique_ptr<CoreClassInfo>> classes;
};

// Never destroyed: class records are asked for until the very end of the process.
Registry& get_registry() {
    static Registry* const registry = new Registry;
    return *registry;
}

}  // namespace

CoreClassInfo const& CoreClassInfo::new_class(CoreString const& name, Destructor const& destructor,
                                              CoreClassInfo const* parent,
                                              Initialiser const& initialiser) {
    Registry& registry = get_registry();
    std::lock_guard<std::mutex> const guard(registry.mutex);
    std::unique_ptr<CoreClassInfo>& slot = registry.classes[name];
    if (!slot) {
        auto info = std::make_unique<CoreClassInfo>();
        info->m_name = name;
        info->m_destructor = destructor;
        info->m_parent = parent;
        if (initialiser) {
            initialiser(*info);
        }
        slot = std::move(info);
    }
    return *slot;
}

CoreClassInfo const* CoreClassInfo::get_class(CoreString const& name) {
    Registry& registry = get_registry();
    std::lock_guard<std::mutex> const guard(registry.mutex);
    auto const found = registry.classes.find(name);
    return found == registry.classes.end() ? nullptr : found->second.get();
}

bool CoreClassInfo::is_kindof(CoreClassInfo const& other) const {
    for (CoreClassInfo const* info = this; info; info = info->m_parent) {
        if (info == &other) {
            return true;
        }
    }
    return false;
}

bool CoreClassInfo::destroy(void* object, bool const& is_array) const {
    return m_destructor && m_destructor(object, is_array);
}

// The address sanitizer keeps others from that word.
[[gnu::no_sanitize_address]] unsigned long long core_get_element_count(void const* array) {
    return static_cast<unsigned long long const*>(array)[-1];
}
