#include <platform/qz_event/event.h>

#include <platform/qz_core.h>

#include <map>
#include <mutex>
#include <string>

namespace {

struct Registry {
    std::mutex mutex;
    std::map<EventIdentifier, std::string> names;
};

// Never destroyed: libraries may define events as long as the process lives.
Registry& get_registry() {
    static Registry* const registry = new Registry;
    return *registry;
}

}  // namespace

bool event_debug_collisions(std::string_view const& name, EventIdentifier const& identifier) {
    Registry& registry = get_registry();
    std::lock_guard<std::mutex> const guard(registry.mutex);
    std::string const& holder = registry.names.try_emplace(identifier, name).first->second;
    if (holder == name) {
        return true;
    }
    CoreLogHandler& log = CoreLogHandler::get_main();
    if (log.is_admitted(2)) {
        CoreLogStream stream;
        stream << "event_debug_collisions: '" << std::string_view(holder) << "' and '" << name
               << "' have one identifier.\n";
        log.log(2, stream);
    }
    return false;
}
