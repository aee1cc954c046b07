#pragma once

#include <platform/qz_core.h>

#include <string>

// Collects what the library says on this thread as long as it lives: the reason of a refusal, for
// the exception that tells it, and warnings. Refusals that nobody collects go to stderr.
class PythonMessages {
  public:
    PythonMessages();
    ~PythonMessages();
    PythonMessages(PythonMessages const&) = delete;
    PythonMessages& operator=(PythonMessages const&) = delete;

    // Lines, without the last line's end; `otherwise` when nothing was said.
    std::string get_text(char const* otherwise) const;

    // Takes the log over; called once.
    static void install();

  private:
    static void sink(void* user, unsigned int const& level, CoreString const& message);

    std::string m_text;
    PythonMessages* m_outer;
};
