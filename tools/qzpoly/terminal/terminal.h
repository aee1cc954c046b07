#pragma once

#include <platform/qz_app_base.h>

#include <cstdio>

// The progress bar of one operation, drawn on the last line of stderr when that is a terminal. It
// exists and is stopped by Ctrl-C whether it is drawn or not. One at a time.
class ToolProgress {
  public:
    explicit ToolProgress(char const* label);
    ~ToolProgress();
    ToolProgress(ToolProgress const&) = delete;
    ToolProgress& operator=(ToolProgress const&) = delete;

    AppProgressBar& get_bar() { return m_bar; }

  private:
    AppProgressBar m_bar;
};

// From now on, the first Ctrl-C asks the operation to stop whose progress bar there is, and ends
// the program where there is none; the second one kills.
void catch_interrupts();
bool is_interrupted();
// From now on, the first Ctrl-C is only noted: the result is being written.
void begin_writing();

// Whether text on this stream may be colored: it is a terminal that can, and nobody objects.
bool has_colors(std::FILE* stream);

// Wipes what a progress bar has drawn, before something else is written to stderr.
void clear_progress_line();
