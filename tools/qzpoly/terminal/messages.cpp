#include <tools/qzpoly/terminal/messages.h>

#include <tools/qzpoly/terminal/terminal.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr unsigned int refusal_level = 2;
constexpr unsigned int warning_level = 4;

void show(char const* kind, std::string_view const& text) {
    clear_progress_line();
    bool const is_colored = has_colors(stderr);
    std::fprintf(stderr, "%s%s:%s %s\n",
                 is_colored ? (std::string_view(kind) == "warning" ? "\033[1;33m" : "\033[1;31m")
                            : "",
                 kind, is_colored ? "\033[0m" : "", make_printable(text).c_str());
}

// The bytes of the character that `text` begins with; 0 if it begins with none that can be shown.
std::size_t get_printable_size(std::string_view const& text) {
    auto const get_byte = [&](std::size_t const& i) { return static_cast<unsigned char>(text[i]); };
    unsigned int const first = get_byte(0);
    if (first < 0x80) {
        return first >= 0x20 && first != 0x7F ? 1 : 0;
    }
    std::size_t const size = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (first >= 0xF5 || text.size() < size) {
        return 0;
    }
    unsigned int code = first & (0x7Fu >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if ((get_byte(i) & 0xC0u) != 0x80u) {
            return 0;
        }
        code = code << 6 | (get_byte(i) & 0x3Fu);
    }
    return code >= 0xA0 ? size : 0;  // below are control characters
}

std::string_view without_line_end(std::string_view const& text) {
    return text.substr(0, text.find_last_not_of('\n') + 1);
}

}  // namespace

std::string make_printable(std::string_view const& text) {
    std::string printable;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t const size = get_printable_size(text.substr(at));
        if (size == 0) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned char>(text[at]));
            printable += escape;
        }
        printable += text.substr(at, size);
        at += std::max<std::size_t>(size, 1);
    }
    return printable;
}

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
        if (messages.m_refusal_count++ == 0) {
            messages.m_reason = text;
        }
    }
}

void ToolMessages::warn(std::string_view const& text) {
    bool const is_about_file = m_file.empty() || text.find(m_file) != std::string_view::npos;
    std::string const whole = is_about_file ? std::string(text) : make_text(m_file, ": ", text);
    if (std::find(m_warnings.begin(), m_warnings.end(), whole) == m_warnings.end()) {
        m_warnings.push_back(whole);
        show("warning", whole);
    }
}

int ToolMessages::fail(std::string_view const& text) {
    if (!is_interrupted()) {
        show("error", m_reason.empty() ? text : make_text(text, ": ", m_reason));
    }
    forget_reason();
    return tool_failure;
}

int ToolMessages::tell_interrupt() {
    show("qzpoly", "interrupted");
    return tool_interrupted;
}

void ToolMessages::begin_file(std::string const& file) {
    m_file = file;
    forget_reason();
}

void ToolMessages::warn_of_refusals() {
    if (m_refusal_count > 0) {
        warn(m_refusal_count == 1 ? m_reason
                                  : make_text(m_reason, ", and ", m_refusal_count - 1, " more"));
        forget_reason();
    }
}

void ToolMessages::forget_reason() {
    m_reason.clear();
    m_refusal_count = 0;
}
