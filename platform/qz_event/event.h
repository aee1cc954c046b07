#pragma once

#include <platform/qz_event/export.h>

#include <string_view>

using EventIdentifier = unsigned int;

// The identifier of an event: the 32-bit FNV-1a hash of its name, the public algorithm of Fowler,
// Noll and Vo.
constexpr EventIdentifier event_identifier(std::string_view const& name) {
    EventIdentifier hash = 2166136261u;
    for (char const character : name) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 16777619u;
    }
    return hash;
}

// Remembers that `name` has `identifier`. When another name has it already, that is logged at level
// 2 with both names, and the result is false. Thread-safe; repeating a name is fine.
QZ_EVENT_EXPORT bool event_debug_collisions(std::string_view const& name,
                                            EventIdentifier const& identifier);

// Defines the event `symbol` in a header, and checks its identifier at load.
#define QZ_DEFINE_EVENT(symbol, name)                                                              \
    inline constexpr EventIdentifier symbol = event_identifier(name);                              \
    inline bool const symbol##_is_unique = event_debug_collisions(name, symbol)
