#pragma once

#include <string>
#include <string_view>
#include <vector>

// One statement of an OBJ file. Views are into the text.
struct ToolObjStatement {
    std::string_view keyword;
    std::string_view rest;    // of its first line, without blanks around it
    unsigned int word_count;  // behind the keyword, over all its lines
    unsigned long long line;  // the first is 1
};

// Steps through the statements of an OBJ file, by the rules of the library's reader.
class ToolObjStatements {
  public:
    explicit ToolObjStatements(std::string_view const& text) : m_text(text) {}

    // False at the end.
    bool find_next(ToolObjStatement& statement);

  private:
    std::string_view take_line();
    // Counts the words of a line up to a comment. True when the next line continues it.
    bool count_words(std::string_view const& line, unsigned int& count);

    std::string_view m_text;
    std::size_t m_at = 0;
    unsigned long long m_line = 0;
};

// The lines of all polygons and vertices of an OBJ file; empty when the file cannot be read again
// or does not have as many.
struct ToolObjLines {
    std::vector<unsigned long long> of_polygons;
    std::vector<unsigned long long> of_vertices;
};
ToolObjLines find_obj_lines(std::string const& path, unsigned int const& polygon_count,
                            unsigned int const& vertex_count);
