#pragma once

#include <platform/qz_core.h>

#include <string>
#include <string_view>
#include <vector>

// Exit statuses of the program.
constexpr int tool_success = 0;
constexpr int tool_failure = 1;
constexpr int tool_wrong_usage = 2;
constexpr int tool_interrupted = 130;  // 128 + SIGINT, as shells report it

// Joins parts in the forms that CoreString::append writes: numbers short, and the same in any
// locale.
template <typename... Parts>
std::string make_text(Parts const&... parts) {
    CoreString text;
    (text.append(parts), ...);
    return std::string(text.get_view());
}

// Text as it may be shown on a terminal: all that is no character of UTF-8, and every control
// character, as \xXX by byte.
std::string make_printable(std::string_view const& text);

// What the library says while this object lives, and what the program says on stderr. The library's
// warnings are shown at once; the reason of its refusals is kept until somebody reports a failure.
class ToolMessages {
  public:
    // Takes the main log handler over, and gives it back at the end.
    ToolMessages();
    ~ToolMessages();
    ToolMessages(ToolMessages const&) = delete;
    ToolMessages& operator=(ToolMessages const&) = delete;

    // Shows "warning: ...", a text that was shown before only once.
    void warn(std::string_view const& text);
    // Shows "error: ..." with the library's reason behind it, if it gave one since the last
    // failure: the first, since others follow from it; nothing after an interrupt, which is reason
    // enough. Returns `tool_failure`.
    int fail(std::string_view const& text);
    // Shows that there was an interrupt; returns `tool_interrupted`.
    static int tell_interrupt();
    // Shows as a warning what the library has refused in work that it has done all the same.
    void warn_of_refusals();
    // Warnings to come name this file, one of several; what the library has refused so far is no
    // reason of failures to come.
    void begin_file(std::string const& file);

    std::vector<std::string> const& get_warnings() const { return m_warnings; }

  private:
    void forget_reason();
    static void take_message(void* user, unsigned int const& level, CoreString const& message);

    std::vector<std::string> m_warnings;
    std::string m_reason;
    std::string m_file;
    unsigned int m_refusal_count = 0;
    unsigned int m_former_level;
};
