#pragma once

#include <platform/qz_core.h>

#include <string_view>

// Where the reader stands, and what it has to say: one refusal, and a warning for each kind of
// thing that was mended, with its first line and how often it came.
class ObjReport {
  public:
    enum Warning {
        SHORT_FACE,
        MAP_INDEX,
        NUMBER_JUNK,
        SHORT_VALUE,
        NOT_FINITE,
        CREASE_FORM,
        CREASE_RANGE,
        WARNING_COUNT,
    };

    unsigned long long line = 1;

    // The first refusal counts. Returns false.
    bool refuse(std::string_view const& reason) { return refuse_at(line, reason); }
    bool refuse_at(unsigned long long const& at_line, std::string_view const& reason);
    // Of the file as a whole: no line is told.
    bool refuse_file(std::string_view const& reason) { return refuse_at(0, reason); }
    // "reason: 'word'", the word cut to a bearable length and its odd bytes masked.
    bool refuse_word(std::string_view const& reason, std::string_view const& word);
    bool is_refused() const { return !m_refusal.is_empty(); }

    void warn(Warning const& kind) { warn_at(kind, line, 1); }
    void warn_at(Warning const& kind, unsigned long long const& at_line,
                 unsigned long long const& count);

    void log_refusal(CoreString const& path) const;
    // Appends the texts to `warnings` too.
    void log_warnings(CoreString const& path, CoreArray<CoreString>& warnings) const;

  private:
    struct Entry {
        unsigned long long first_line = 0;
        unsigned long long count = 0;
    };

    Entry m_warnings[WARNING_COUNT];
    unsigned long long m_refusal_line = 0;
    CoreString m_refusal;
};
