#include <python/messages.h>

#include <cstdio>

namespace {
thread_local PythonMessages* current_messages = nullptr;
}

PythonMessages::PythonMessages() : m_outer(current_messages) { current_messages = this; }
PythonMessages::~PythonMessages() { current_messages = m_outer; }

std::string PythonMessages::get_text(char const* otherwise) const {
    std::string const text = m_text.empty() ? otherwise : m_text;
    return text.substr(0, text.find_last_not_of('\n') + 1);
}

void PythonMessages::install() {
    CoreLogHandler::get_main().set_sink(&sink, nullptr);
    CoreLogHandler::get_main().set_level(4);
}

void PythonMessages::sink(void*, unsigned int const& level, CoreString const& message) {
    if (current_messages != nullptr) {
        current_messages->m_text.append(message.get_view());
        if (!message.get_view().ends_with('\n')) {
            current_messages->m_text += '\n';
        }
    } else if (level <= 2) {
        std::fwrite(message.get_data(), 1, message.get_length(), stderr);
    }
}
