#pragma once

#include <string_view>

// Events of an application that only counts them.

using EventIdentifier = unsigned int;

constexpr EventIdentifier event_identifier(std::string_view const& name) {
    return static_cast<EventIdentifier>(name.size());
}

bool event_debug_collisions(std::string_view const& name, EventIdentifier const& identifier);

unsigned int get_counted_events();

#define QZ_DEFINE_EVENT(symbol, name)                                                              \
    inline constexpr EventIdentifier symbol = event_identifier(name);                              \
    inline bool const symbol##_is_unique = event_debug_collisions(name, symbol)
