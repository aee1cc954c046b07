#pragma once

#include <platform/qz_app_base/export.h>
#include <platform/qz_core.h>

#include <atomic>

// Reports how far an operation has come: a value in [0, 1] that never goes back, made of nested
// weighted tasks, each of which counts steps. Used by one thread, but for `request_stop` and
// `is_stop_requested`, which any thread or a signal handler may call.
//
//     bar->begin_task("load", 0.5f, false);   // half of the enclosing task
//     bar->set_step_count(count);
//     for (unsigned int i = 0; i < count; ++i) { ...; bar->step(i + 1); }
//     bar->end_task();
class QZ_APP_BASE_EXPORT AppProgressBar {
  public:
    // Called when the value has grown by 1/256 or more since the last call, at `start` and at
    // `finish`; false asks the operation to stop.
    using Callback = bool (*)(void* user, AppProgressBar const& bar);

    explicit AppProgressBar(CoreString const& name) : m_name(name) {}
    AppProgressBar(AppProgressBar const&) = delete;
    AppProgressBar& operator=(AppProgressBar const&) = delete;

    // Null: nothing is called. `user` is handed to every call.
    void set_callback(Callback const& callback, void* user);

    CoreString const& get_name() const { return m_name; }
    // The label of the innermost task that shows one; empty outside of tasks.
    CoreString const& get_label() const;
    double const& get_value() const { return m_value; }

    void start();   // value 0, no task open, no stop requested
    void finish();  // value 1, no task open

    // Opens a task that makes up `weight` (0 to 1) of the enclosing one. `is_quiet` keeps the
    // enclosing task's label on show.
    void begin_task(CoreString const& label, float const& weight, bool const& is_quiet);
    // Closes the innermost task, with its whole weight done.
    void end_task();

    // Steps of the innermost task; 0 steps leave its value alone until `end_task`.
    void set_step_count(unsigned int const& count);
    // `done` steps of the innermost task are done. Cheap enough for the innermost loops.
    void step(unsigned int const& done) {
        if (done >= m_next_step) {
            report_step(done);
        }
    }
    // The innermost task is done to this fraction, 0 to 1.
    void set_value(double const& fraction);

    void request_stop() { m_is_stop_requested.store(true, std::memory_order_relaxed); }
    bool is_stop_requested() const { return m_is_stop_requested.load(std::memory_order_relaxed); }

  private:
    struct Task {
        CoreString label;
        double begin = 0.0;  // of the whole
        double size = 1.0;
        double next_begin = 0.0;  // where its next inner task begins
        unsigned int step_count = 0;
    };

    Task& get_current_task();
    void report_step(unsigned int const& done);
    void raise_value(double const& value);
    void call_back();

    CoreString m_name;
    CoreArray<Task> m_tasks;
    Task m_whole;
    Callback m_callback = nullptr;
    void* m_user = nullptr;
    double m_value = 0.0;
    double m_reported_value = 0.0;
    unsigned int m_next_step = 0xFFFFFFFFu;
    std::atomic<bool> m_is_stop_requested{false};
};
