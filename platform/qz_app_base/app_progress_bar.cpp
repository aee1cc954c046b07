#include <platform/qz_app_base/app_progress_bar.h>

#include <algorithm>

namespace {

constexpr unsigned int report_count = 256;  // calls of the callback, start and finish aside
constexpr unsigned int no_step = 0xFFFFFFFFu;

}  // namespace

void AppProgressBar::set_callback(Callback const& callback, void* user) {
    m_callback = callback;
    m_user = user;
}

CoreString const& AppProgressBar::get_label() const {
    return m_tasks.is_empty() ? m_whole.label : m_tasks[m_tasks.get_count() - 1].label;
}

void AppProgressBar::start() {
    m_tasks.clear();
    m_whole = Task();
    m_value = 0.0;
    m_reported_value = 0.0;
    m_next_step = no_step;
    m_is_stop_requested.store(false, std::memory_order_relaxed);
    call_back();
}

void AppProgressBar::finish() {
    m_tasks.clear();
    m_value = 1.0;
    m_next_step = no_step;
    call_back();
}

void AppProgressBar::begin_task(CoreString const& label, float const& weight,
                                bool const& is_quiet) {
    Task& parent = get_current_task();
    Task task;
    task.label = is_quiet ? parent.label : label;
    task.begin = parent.next_begin;
    task.size = parent.size * static_cast<double>(weight);
    task.next_begin = task.begin;
    parent.next_begin = std::min(task.begin + task.size, parent.begin + parent.size);
    m_tasks.append(task);
    m_next_step = no_step;
}

void AppProgressBar::end_task() {
    if (m_tasks.is_empty()) {
        return;
    }
    Task const& task = get_current_task();
    double const end = task.begin + task.size;
    m_tasks.resize(m_tasks.get_count() - 1);
    m_next_step = get_current_task().step_count == 0 ? no_step : 0;  // the outer steps go on
    raise_value(end);
}

void AppProgressBar::set_step_count(unsigned int const& count) {
    get_current_task().step_count = count;
    m_next_step = count == 0 ? no_step : 0;
}

void AppProgressBar::set_value(double const& fraction) {
    Task const& task = get_current_task();
    raise_value(task.begin + task.size * std::clamp(fraction, 0.0, 1.0));
}

AppProgressBar::Task& AppProgressBar::get_current_task() {
    return m_tasks.is_empty() ? m_whole : m_tasks[m_tasks.get_count() - 1];
}

void AppProgressBar::report_step(unsigned int const& done) {
    unsigned int const steps = done;
    unsigned int const count = get_current_task().step_count;
    if (count == 0) {
        return;
    }
    set_value(static_cast<double>(steps) / static_cast<double>(count));
    m_next_step = steps + std::min(std::max(1u, count / report_count), no_step - steps);
}

void AppProgressBar::raise_value(double const& value) {
    m_value = std::max(m_value, std::min(value, 1.0));
    if (m_value - m_reported_value >= 1.0 / report_count) {
        call_back();
    }
}

void AppProgressBar::call_back() {
    m_reported_value = m_value;
    if (m_callback && !m_callback(m_user, *this)) {
        request_stop();
    }
}
