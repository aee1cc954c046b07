#include <platform/qz_obj/obj_report.h>

#include <algorithm>

namespace {

constexpr std::size_t longest_quote = 40;

constexpr std::string_view warning_texts[] = {
    "faces of fewer than 3 corners were dropped",
    "corners name a texture point or normal that is not there and go without",
    "numbers are followed by other characters, which were skipped",
    "texture points or normals have too few numbers; missing ones are 0",
    "texture points or normals are not finite and were set to 0",
    "crease tags are malformed and were dropped",
    "creases name points that are not there and were dropped",
};
static_assert(std::size(warning_texts) == ObjReport::WARNING_COUNT);

CoreString get_message(CoreString const& path, unsigned long long const& line,
                       std::string_view const& reason) {
    CoreString text("Obj.load: '");
    text.append(path).append("'");
    if (line != 0) {
        text.append(" line ").append(line);
    }
    text.append(": ").append(reason).append(".\n");
    return text;
}

void log_text(unsigned int const& level, CoreString const& text) {
    CoreLogHandler& handler = CoreLogHandler::get_main();
    if (handler.is_admitted(level)) {
        CoreLogStream stream;
        stream << text;
        handler.log(level, stream);
    }
}

}  // namespace

bool ObjReport::refuse_at(unsigned long long const& at_line, std::string_view const& reason) {
    if (!is_refused()) {
        m_refusal_line = at_line;
        m_refusal = CoreString(reason);
    }
    return false;
}

bool ObjReport::refuse_word(std::string_view const& reason, std::string_view const& word) {
    CoreString text(reason);
    text.append(": '");
    for (char const byte : word.substr(0, longest_quote)) {
        text.append(byte < ' ' || byte > '~' ? '?' : byte);
    }
    text.append(word.size() > longest_quote ? "...'" : "'");
    return refuse(text.get_view());
}

void ObjReport::warn_at(Warning const& kind, unsigned long long const& at_line,
                        unsigned long long const& count) {
    Entry& entry = m_warnings[kind];
    entry.first_line = entry.count == 0 ? at_line : std::min(entry.first_line, at_line);
    entry.count += count;
}

void ObjReport::log_refusal(CoreString const& path) const {
    log_text(2, get_message(path, m_refusal_line, m_refusal.get_view()));
}

void ObjReport::log_warnings(CoreString const& path, CoreArray<CoreString>& warnings) const {
    for (unsigned int kind = 0; kind < WARNING_COUNT; ++kind) {
        Entry const& entry = m_warnings[kind];
        if (entry.count != 0) {
            CoreString reason;
            reason.append(entry.count).append(" ").append(warning_texts[kind]);
            CoreString const text = get_message(path, entry.first_line, reason.get_view());
            log_text(4, text);
            warnings.append(CoreString(text.get_view().substr(0, text.get_length() - 1)));
        }
    }
}
