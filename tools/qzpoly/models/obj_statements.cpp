#include <tools/qzpoly/models/obj_statements.h>

#include <tools/qzpoly/models/input_file.h>

namespace {

constexpr std::string_view blanks = " \t\v\f";

std::string_view trim(std::string_view const& text) {
    std::size_t const begin = text.find_first_not_of(blanks);
    return begin == std::string_view::npos
               ? std::string_view()
               : text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

// Names and paths go to the end of their line.
bool has_name(std::string_view const& keyword) {
    return keyword == "g" || keyword == "o" || keyword == "usemtl" || keyword == "mtllib";
}

}  // namespace

std::string_view ToolObjStatements::take_line() {
    std::size_t const end = std::min(m_text.find_first_of("\r\n", m_at), m_text.size());
    std::string_view const line = m_text.substr(m_at, end - m_at);
    m_at = end + (m_text.substr(end, 2) == "\r\n" ? 2 : 1);
    ++m_line;
    return line;
}

bool ToolObjStatements::count_words(std::string_view const& line, unsigned int& count) {
    for (std::size_t at = line.find_first_not_of(blanks); at < line.size();
         at = line.find_first_not_of(blanks, at)) {
        if (line[at] == '#') {
            return false;
        }
        std::size_t const end = std::min(line.find_first_of(blanks, at), line.size());
        bool const is_continued =
            line[end - 1] == '\\' && line.find_first_not_of(blanks, end) == std::string_view::npos;
        if (is_continued) {
            count += end - at > 1 ? 1 : 0;
            return true;
        }
        ++count;
        at = end;
    }
    return false;
}

bool ToolObjStatements::find_next(ToolObjStatement& statement) {
    while (m_at < m_text.size()) {
        std::string_view line = take_line();
        std::string_view const text = trim(line);
        if (text.empty() || text[0] == '#' || text[0] == '\\') {
            continue;
        }
        std::size_t const end = std::min(text.find_first_of(blanks), text.size());
        statement = {text.substr(0, end), trim(text.substr(end)), 0, m_line};
        line = statement.rest;
        while (!has_name(statement.keyword) && count_words(line, statement.word_count) &&
               m_at < m_text.size()) {
            line = take_line();
        }
        return true;
    }
    return false;
}

ToolObjLines find_obj_lines(std::string const& path, unsigned int const& polygon_count,
                            unsigned int const& vertex_count) {
    std::string text;
    ToolObjLines lines;
    if (!read_input_file(path, tool_no_size_limit, text).empty()) {
        return lines;
    }
    ToolObjStatements statements(text);
    ToolObjStatement statement;
    while (statements.find_next(statement)) {
        if (statement.keyword == "v") {
            lines.of_vertices.push_back(statement.line);
        } else if (statement.keyword == "f" && statement.word_count >= 3) {
            lines.of_polygons.push_back(statement.line);
        }
    }
    bool const is_same =
        lines.of_polygons.size() == polygon_count && lines.of_vertices.size() == vertex_count;
    return is_same ? lines : ToolObjLines();
}
