#pragma once

#include <platform/qz_app_base.h>

// Asks and feeds a progress bar, or none. A stop, once seen, holds: what was left half done because
// of it is never handed over.
class ObjProgress {
  public:
    explicit ObjProgress(AppProgressBar* bar) : m_bar(bar) {}

    // Long loops ask after this many elements, well under a millisecond of work.
    static constexpr unsigned int elements_between_looks = 1u << 18;

    bool is_stopped() {
        m_is_stopped = m_is_stopped || (m_bar && m_bar->is_stop_requested());
        return m_is_stopped;
    }

    // `done` of `total` bytes are read: told some 200 times, and never when the total is 0.
    void update(unsigned long long const& done, unsigned long long const& total) {
        double const fraction =
            total == 0 ? 0.0 : static_cast<double>(done) / static_cast<double>(total);
        if (m_bar && (fraction >= m_next_fraction || fraction >= 1.0)) {
            m_bar->set_value(fraction);
            m_next_fraction = fraction + 1.0 / 200.0;
        }
    }

  private:
    AppProgressBar* m_bar;
    double m_next_fraction = 1.0 / 200.0;
    bool m_is_stopped = false;
};
