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
// warnings are shown at once; the reasons of its refusals are kept until somebody reports a
// failure.
class ToolMessages {
  public:
    // Takes the main log handler over, and gives it back at the end.
    ToolMessages();
    ~ToolMessages();
    ToolMessages(ToolMessages const&) = delete;
    ToolMessages& operator=(ToolMessages const&) = delete;

    // Shows "warning: ...", a text that was shown before only once.
    void warn(std::string_view const& text);
    // Shows "error: ..." with the library's reason, if it gave one since the last failure, in its
    // place or behind it. Returns `tool_failure`, or `tool_interrupted` after an interrupt.
    int fail(std::string_view const& text);
    // What the library has refused so far is no reason of failures to come.
    void forget_reason() { m_reason.clear(); }

    std::vector<std::string> const& get_warnings() const { return m_warnings; }

  private:
    static void take_message(void* user, unsigned int const& level, CoreString const& message);

    std::vector<std::string> m_warnings;
    std::string m_reason;
    unsigned int m_former_level;
};
