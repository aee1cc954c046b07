#pragma once

#include <platform/qz_obj/obj_builder.h>
#include <platform/qz_obj/obj_text.h>

#include <string_view>

// Reads statements word by word, so that a line may be of any length and cross any number of
// blocks; whole plain lines are left to the fast reader.
class ObjParser {
  public:
    ObjParser(ObjBuilder& builder, ObjReport& report) : m_builder(builder), m_report(report) {}

    // Reads a text and returns where the bytes begin that must stay in front of the next one. Ends
    // early when the file is refused, which the report tells.
    char const* read(ObjText const& text);

  private:
    enum Mode {
        LINE,       // before the keyword
        ROW,        // the numbers of v, vt, vn
        FACE,       // the corners of f
        CREASE,     // the words of t and ec
        NAME,       // of usemtl: all up to the line end
        STATEMENT,  // any other statement, to be skipped
        TEXT,       // the rest of a line, to be skipped as it stands
    };
    enum Row { POINT, UV, NORMAL };
    enum Found { WORD, END, CUT };

    bool step();
    bool is_marked(char const* at) const;
    Found find_word(std::string_view& word);
    void begin_statement();
    void dispatch(std::string_view const& keyword);
    void end_statement();
    void end_line(char const* at);

    void add_number(std::string_view const& word);
    void end_row();
    void end_point();
    void end_uv();
    void end_normal();
    void add_corner(std::string_view const& word);
    unsigned int resolve(std::string_view const& text, unsigned int const& count,
                         ObjForward& forward) const;
    unsigned int get_map_index(std::string_view const& text, ObjMap& map);
    void read_name();
    void skip_statement();
    void skip_text();

    ObjBuilder& m_builder;
    ObjReport& m_report;
    ObjText m_text{};
    char const* m_at = nullptr;
    Mode m_mode = LINE;
    bool m_is_after_backslash = false;  // with nothing but blanks since
    Row m_row = POINT;
    unsigned int m_number_count = 0;
    float m_numbers[7] = {};
    CoreString m_name;  // what earlier blocks hold of it
};
