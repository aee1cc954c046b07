#include <platform/qz_lwo/lwo_report.h>

#include <algorithm>
#include <iterator>

namespace {

constexpr unsigned int refusal_level = 2;
constexpr unsigned int warning_level = 4;
constexpr unsigned int step_count = 200;  // of the progress bar
constexpr std::size_t quote_size = 60;

constexpr char const* warning_texts[] = {
    "bytes after the end of the form, ignored",
    "the byte of padding after the last chunk is missing",
    "polygon of fewer than 3 corners, dropped",
    "map value for a point that its polygon does not have, dropped",
    "map of an unexpected dimension, dropped",
    "map given twice, the later values win",
    "map value is not finite, taken as zero",
};
static_assert(std::size(warning_texts) == LwoReport::WARNING_COUNT);

char shown(char const& byte) {
    return static_cast<unsigned char>(byte) < 32 || byte == 127 ? '?' : byte;
}

void append_place(CoreString& text, unsigned int const& chunk_id,
                  unsigned long long const& chunk_offset, unsigned long long const& offset) {
    text.append(", chunk ");
    for (int shift = 24; shift >= 0; shift -= 8) {
        text.append(shown(static_cast<char>(chunk_id >> shift)));
    }
    text.append(" at byte ").append(chunk_offset).append(", byte ").append(offset);
}

void log(unsigned int const& level, CoreString const& path, CoreString const& place,
         std::string_view const& text) {
    CoreLogStream stream;
    stream << "Lwo.load: File '" << path << "'" << place << ": " << text << ".\n";
    CoreLogHandler::get_main().log(level, stream);
}

}  // namespace

bool LwoReport::refuse(std::string_view const& reason) const {
    if (CoreLogHandler::get_main().is_admitted(refusal_level)) {
        log(refusal_level, m_path, CoreString(), reason);
    }
    return false;
}

bool LwoReport::refuse(LwoChunk const& chunk, unsigned long long const& offset,
                       std::string_view const& reason) const {
    if (CoreLogHandler::get_main().is_admitted(refusal_level)) {
        CoreString place;
        append_place(place, chunk.id, chunk.offset, offset);
        log(refusal_level, m_path, place, reason);
    }
    return false;
}

bool LwoReport::refuse_index(LwoChunk const& chunk, unsigned long long const& offset,
                             char const* noun, unsigned int const& index,
                             unsigned int const& count) const {
    CoreString reason(noun);
    reason.append(" ").append(index).append(" is out of range, there are ").append(count);
    return refuse(chunk, offset, reason.get_view());
}

bool LwoReport::refuse_end(LwoChunk const& chunk, LwoByteReader const& data,
                           char const* noun) const {
    CoreString reason("the data end inside ");
    reason.append(noun);
    return refuse(chunk, data.get_offset(), reason.get_view());
}

void LwoReport::warn(Warning const& warning, LwoChunk const& chunk,
                     unsigned long long const& offset) {
    Places& places = m_warnings[warning];
    if (places.count++ == 0) {
        places.first_chunk_id = chunk.id;
        places.first_chunk_offset = chunk.offset;
        places.first_offset = offset;
    }
}

void LwoReport::log_warnings() const {
    if (!CoreLogHandler::get_main().is_admitted(warning_level)) {
        return;
    }
    for (unsigned int i = 0; i < WARNING_COUNT; ++i) {
        Places const& places = m_warnings[i];
        if (places.count == 0) {
            continue;
        }
        CoreString place;
        append_place(place, places.first_chunk_id, places.first_chunk_offset, places.first_offset);
        CoreString text(warning_texts[i]);
        text.append(" (").append(places.count).append(" in the file)");
        log(warning_level, m_path, place, text.get_view());
    }
}

bool LwoReport::advance(unsigned long long const& bytes) {
    if (!m_progress) {
        return true;
    }
    m_done += bytes;
    if (m_progress->is_stop_requested()) {
        return refuse("stopped on request");
    }
    double const fraction =
        m_work == 0 ? 0.0 : static_cast<double>(m_done) / static_cast<double>(m_work);
    unsigned int const steps =
        static_cast<unsigned int>(std::min(fraction, 1.0) * static_cast<double>(step_count));
    if (steps > m_told_steps) {
        m_told_steps = steps;
        m_progress->set_value(fraction);
    }
    return true;
}

CoreString lwo_quote(std::string_view const& text) {
    CoreString quoted("'");
    for (char const& byte : text.substr(0, quote_size)) {
        quoted.append(shown(byte));
    }
    quoted.append(text.size() > quote_size ? "...'" : "'");
    return quoted;
}
