#pragma once

#include <platform/qz_app_base.h>

// A task of a progress bar that ends with its scope; without a bar, nothing.
class ProgressTask {
  public:
    ProgressTask(AppProgressBar* progress, char const* label, float const& weight)
        : m_progress(progress) {
        if (m_progress) {
            m_progress->begin_task(label, weight, false);
        }
    }
    ProgressTask(ProgressTask const&) = delete;
    ProgressTask& operator=(ProgressTask const&) = delete;
    ~ProgressTask() {
        if (m_progress) {
            m_progress->end_task();
        }
    }

  private:
    AppProgressBar* m_progress;
};

// The steps of the innermost task.
inline void set_step_count(AppProgressBar* progress, unsigned int const& count) {
    if (progress) {
        progress->set_step_count(count);
    }
}
inline void step(AppProgressBar* progress, unsigned int const& done) {
    if (progress) {
        progress->step(done);
    }
}
// One step after the other, from `first` done on until `done`.
inline void step_through(AppProgressBar* progress, unsigned int const& first,
                         unsigned int const& done) {
    for (unsigned int i = first; progress && i < done; ++i) {
        progress->step(i + 1);
    }
}
