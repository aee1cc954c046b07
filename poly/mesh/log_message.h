#pragma once

#include <platform/qz_core.h>

// The levels that this library logs at.
enum LogLevel : unsigned int {
    LOG_REFUSAL = 2,      // or invalid data
    LOG_INFORMATION = 3,  // that was asked for
    LOG_WARNING = 4,
};

// Logs `parts` one after the other; nothing is built when the level is not wanted.
template <typename... Parts>
void log_message(LogLevel const& level, Parts const&... parts) {
    CoreLogHandler& handler = CoreLogHandler::get_main();
    if (handler.is_admitted(level)) {
        CoreLogStream stream;
        handler.log(level, (stream << ... << parts));
    }
}
