#include <platform/qz_event.h>

namespace {
unsigned int counted_events = 0;
}

bool event_debug_collisions(std::string_view const&, EventIdentifier const&) {
    ++counted_events;
    return true;
}

unsigned int get_counted_events() { return counted_events; }
