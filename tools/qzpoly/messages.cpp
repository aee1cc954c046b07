#include <tools/qzpoly/messages.h>

#include <tools/qzpoly/terminal.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr unsigned int refusal_level = 2;
constexpr unsigned int warning_level = 4;

void show(char const* kind, std::string_view const& text) {
    clear_progress_line();
    std::fprintf(stderr, "%s: %.*s\n", kind, static_cast<int>(text.size()), text.data());
}

std::string_view without_line_end(std::string_view const& text) {
    return text.substr(0, text.find_last_not_of('\n') + 1);
}

}  // namespace

ToolMessages::ToolMessages() : m_former_level(CoreLogHandler::get_main().get_level()) {
    CoreLogHandler::get_main().set_level(warning_level);
    CoreLogHandler::get_main().set_sink(&ToolMessages::take_message, this);
}

ToolMessages::~ToolMessages() {
    CoreLogHandler::get_main().set_sink(nullptr, nullptr);
    CoreLogHandler::get_main().set_level(m_former_level);
}

void ToolMessages::take_message(void* user, unsigned int const& level, CoreString const& message) {
    ToolMessages& messages = *static_cast<ToolMessages*>(user);
    std::string_view const text = without_line_end(message.get_view());
    if (level == warning_level) {
        messages.warn(text);
    } else if (level <= refusal_level) {
        messages.m_reason += messages.m_reason.empty() ? "" : "; ";
        messages.m_reason += text;
    }
}

void ToolMessages::warn(std::string_view const& text) {
    if (std::find(m_warnings.begin(), m_warnings.end(), text) == m_warnings.end()) {
        m_warnings.emplace_back(text);
        show("warning", text);
    }
}

int ToolMessages::fail(std::string_view const& text) {
    if (is_interrupted()) {
        show("qzpoly", "interrupted");
        return tool_interrupted;
    }
    show("error", m_reason.empty() ? text : make_text(text, ": ", m_reason));
    m_reason.clear();
    return tool_failure;
}
