#include <tools/qzpoly/terminal/terminal.h>

#include <tools/qzpoly/terminal/messages.h>

#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

std::atomic<bool> s_is_interrupted{false};
std::atomic<bool> s_is_writing{false};
std::atomic<AppProgressBar*> s_current_bar{nullptr};
int s_drawn_width = 0;

void handle_interrupt(int) {
    s_is_interrupted.store(true);
    if (AppProgressBar* const bar = s_current_bar.load()) {
        bar->request_stop();
    } else if (!s_is_writing.load()) {
        constexpr std::string_view message = "qzpoly: interrupted\n";
        [[maybe_unused]] ssize_t const count = write(STDERR_FILENO, message.data(), message.size());
        _exit(tool_interrupted);
    }
}

void draw(AppProgressBar const& bar) {
    constexpr int width = 40;
    int const filled = static_cast<int>(bar.get_value() * width + 0.5);
    char cells[width + 1];
    for (int i = 0; i < width; ++i) {
        cells[i] = i < filled ? '#' : '.';
    }
    cells[width] = '\0';
    s_drawn_width = std::fprintf(stderr, "\r%-10s [%s] %3d %%", bar.get_name().get_data(), cells,
                                 static_cast<int>(bar.get_value() * 100.0));
    std::fflush(stderr);
}

bool report_progress(void* user, AppProgressBar const& bar) {
    if (user != nullptr) {
        draw(bar);
    }
    return !is_interrupted();
}

}  // namespace

ToolProgress::ToolProgress(char const* label) : m_bar(label) {
    m_bar.set_callback(&report_progress, isatty(STDERR_FILENO) != 0 ? this : nullptr);
    s_current_bar.store(&m_bar);
}

ToolProgress::~ToolProgress() {
    s_current_bar.store(nullptr);
    clear_progress_line();
}

void catch_interrupts() {
    struct sigaction action = {};
    action.sa_handler = &handle_interrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
}

bool is_interrupted() { return s_is_interrupted.load(std::memory_order_relaxed); }

void begin_writing() { s_is_writing.store(true); }

// https://no-color.org: set to anything but nothing, it turns colors off.
bool has_colors(std::FILE* stream) {
    char const* const refusal = std::getenv("NO_COLOR");
    char const* const terminal = std::getenv("TERM");
    return (refusal == nullptr || *refusal == '\0') && terminal != nullptr &&
           std::string_view(terminal) != "dumb" && isatty(fileno(stream)) != 0;
}

void clear_progress_line() {
    if (s_drawn_width > 0) {
        std::fprintf(stderr, "\r%*s\r", s_drawn_width - 1, "");
        s_drawn_width = 0;
    }
}
