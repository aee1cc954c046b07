#pragma once

#include <platform/qz_app_base.h>
#include <platform/qz_core.h>
#include <platform/qz_lwo/lwo_chunks.h>

#include <string_view>

// What a load tells its caller: messages, how far it is, and that it stops when it is asked to.
// Operations that return bool return false for "leave, the message is logged".
class LwoReport {
  public:
    enum Warning {
        BYTES_AFTER_FORM,
        PADDING_MISSING,
        SMALL_POLYGON,
        POINT_NOT_IN_POLYGON,
        MAP_DIMENSION,
        MAP_TWICE,
        NOT_FINITE,
        WARNING_COUNT,
    };

    // `path` is kept by reference; `progress` may be null.
    LwoReport(CoreString const& path, AppProgressBar* progress)
        : m_path(path), m_progress(progress) {}

    // Logs the one message of a load that fails. `offset`: of the fault, in the file.
    bool refuse(std::string_view const& reason) const;
    bool refuse(LwoChunk const& chunk, unsigned long long const& offset,
                std::string_view const& reason) const;
    // `index` of what `noun` names is not below `count`.
    bool refuse_index(LwoChunk const& chunk, unsigned long long const& offset, char const* noun,
                      unsigned int const& index, unsigned int const& count) const;
    // The data end inside what `noun` names.
    bool refuse_end(LwoChunk const& chunk, LwoByteReader const& data, char const* noun) const;

    // Counts what is odd; `log_warnings` logs one message per kind, with the first place.
    void warn(Warning const& warning, LwoChunk const& chunk, unsigned long long const& offset);
    void log_warnings() const;

    // Reading the file takes `file_size` units of work, and so does making the mesh of it.
    void set_file_size(unsigned long long const& file_size) { m_work = 2 * file_size; }
    bool is_stopped() const { return m_progress && m_progress->is_stop_requested(); }
    // `bytes` more are done; false when a stop was requested.
    bool advance(unsigned long long const& bytes);

  private:
    struct Places {
        unsigned long long count = 0;
        unsigned int first_chunk_id = 0;
        unsigned long long first_chunk_offset = 0;
        unsigned long long first_offset = 0;
    };

    CoreString const& m_path;
    AppProgressBar* m_progress;
    unsigned long long m_work = 0;
    unsigned long long m_done = 0;
    unsigned int m_told_steps = 0;
    Places m_warnings[WARNING_COUNT];
};

// Tells the report every now and then how far `data` has been read. Data that stay where they are
// add nothing, but a stop request is heard.
class LwoProgress {
  public:
    // Both are kept by reference.
    LwoProgress(LwoReport& report, LwoByteReader const& data)
        : m_report(report), m_data(data), m_told_offset(data.get_offset()) {}

    // Call once per entry; false when a stop was requested.
    bool step() { return (++m_count & 0xFFFu) != 0 || tell(); }
    // Call at the end of the data.
    bool tell() {
        unsigned long long const told_offset = m_told_offset;
        m_told_offset = m_data.get_offset();
        return m_report.advance(m_told_offset - told_offset);
    }

  private:
    LwoReport& m_report;
    LwoByteReader const& m_data;
    unsigned long long m_told_offset;
    unsigned int m_count = 0;
};

// Text of a file as messages show it: in quotes, cut to 60 bytes, without control characters.
CoreString lwo_quote(std::string_view const& text);
