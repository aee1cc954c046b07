#pragma once

#include <platform/qz_core.h>

#include <string>

// Collects the messages of the main handler at a threshold, as "level message", until it goes.
class LogCapture {
  public:
    explicit LogCapture(unsigned int const& level) : m_old_level(get_log().get_level()) {
        get_log().set_level(level);
        get_log().set_sink(collect, this);
    }
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;
    ~LogCapture() {
        get_log().set_sink(nullptr, nullptr);
        get_log().set_level(m_old_level);
    }

    // What came since the last call.
    std::string take() { return std::exchange(m_text, {}); }

  private:
    static CoreLogHandler& get_log() { return CoreLogHandler::get_main(); }
    static void collect(void* user, unsigned int const& level, CoreString const& message) {
        std::string& text = static_cast<LogCapture*>(user)->m_text;
        text.append(std::to_string(level)).append(" ").append(message.get_view());
    }

    unsigned int m_old_level;
    std::string m_text;
};
