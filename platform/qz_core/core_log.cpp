#include <platform/qz_core/core_log.h>

#include <cstdio>

namespace {

void write_to_stderr(void*, unsigned int const&, CoreString const& message) {
    std::fwrite(message.get_data(), 1, message.get_length(), stderr);
}

}  // namespace

CoreLogHandler::CoreLogHandler() : m_sink(write_to_stderr) {}

CoreLogHandler& CoreLogHandler::get_main() {
    static CoreLogHandler handler;
    return handler;
}

void CoreLogHandler::set_sink(Sink const& sink, void* user) {
    std::lock_guard<std::mutex> const guard(m_mutex);
    m_sink = sink ? sink : write_to_stderr;
    m_user = user;
}

void CoreLogHandler::log(unsigned int const& level, CoreLogStream const& stream) {
    if (!is_admitted(level)) {
        return;
    }
    std::lock_guard<std::mutex> const guard(m_mutex);
    m_sink(m_user, level, stream.get_text());
}
