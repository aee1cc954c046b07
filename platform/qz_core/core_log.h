#pragma once

#include <platform/qz_core/core_string.h>
#include <platform/qz_core/export.h>

#include <atomic>
#include <mutex>

// Builds one message by appending parts, in the forms that CoreString::append writes.
class CoreLogStream {
  public:
    template <typename T>
    CoreLogStream& operator<<(T const& part) {
        m_text.append(part);
        return *this;
    }

    CoreString const& get_text() const { return m_text; }

  private:
    CoreString m_text;
};

// Takes messages of a level up to its threshold and hands them to a sink, one at a time, whatever
// number of threads log. Levels: 1 error, 2 refusal or invalid data, 3 information, 4 warning in
// detail; the threshold is 3 at start. A sink must not log itself.
class QZ_CORE_EXPORT CoreLogHandler {
  public:
    using Sink = void (*)(void* user, unsigned int const& level, CoreString const& message);

    CoreLogHandler();

    // The process-wide handler.
    static CoreLogHandler& get_main();

    unsigned int get_level() const { return m_level.load(std::memory_order_relaxed); }
    void set_level(unsigned int const& level) { m_level.store(level, std::memory_order_relaxed); }
    // Messages of `level` are wanted: asked before a message is built.
    bool is_admitted(unsigned int const& level) const { return level <= get_level(); }

    // A null sink writes to stderr, as at start. `user` is handed to every call of the sink and
    // must stay valid until another sink is set.
    void set_sink(Sink const& sink, void* user);

    void log(unsigned int const& level, CoreLogStream const& stream);

  private:
    std::atomic<unsigned int> m_level{3};
    std::mutex m_mutex;
    Sink m_sink;
    void* m_user = nullptr;
};
