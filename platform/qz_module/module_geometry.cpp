#include <platform/qz_module/module_geometry.h>

#include <mutex>
#include <set>

namespace {

struct Registry {
    std::mutex mutex;
    std::set<CoreString> names;
};

// Never destroyed: names are asked for until the very end of the process.
Registry& get_registry() {
    static Registry* const registry = new Registry;
    return *registry;
}

}  // namespace

void ModuleGeometry::register_properties(CoreBasicArray<CoreString> const& names) {
    Registry& registry = get_registry();
    std::lock_guard<std::mutex> const guard(registry.mutex);
    registry.names.insert(names.begin(), names.end());
}

bool ModuleGeometry::is_property_registered(CoreString const& name) {
    Registry& registry = get_registry();
    std::lock_guard<std::mutex> const guard(registry.mutex);
    return registry.names.count(name) != 0;
}
