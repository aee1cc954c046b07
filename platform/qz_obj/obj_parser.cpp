#include <platform/qz_obj/obj_parser.h>

#include <platform/qz_obj/obj_number.h>
#include <platform/qz_obj/obj_plain_lines.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

constexpr std::size_t longest_keyword = 6;
constexpr unsigned int longest_name = 1u << 31;
// No position, texture point or normal can have this number or one above.
constexpr unsigned int no_index = ObjMap::no_index;

constexpr std::string_view nul_reason = "a NUL byte; this is no text of single bytes";
constexpr std::string_view count_reason = "more points, corners or values than 32 bits can number";

std::string_view trim(std::string_view const& text) {
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && obj_is_blank(&text[begin])) {
        ++begin;
    }
    while (begin < end && obj_is_blank(&text[end - 1])) {
        --end;
    }
    return text.substr(begin, end - begin);
}

// Where the line ends, or a NUL stands, from `at` on.
char const* find_line_end(char const* at) {
    while (*at != '\n' && *at != '\r' && *at != '\0') {
        ++at;
    }
    return at;
}

}  // namespace

char const* ObjParser::read(ObjText const& text) {
    m_text = text;
    m_at = text.begin;
    while (m_at < m_text.end && !m_report.is_refused() && step()) {
    }
    if (m_text.is_last && !m_report.is_refused()) {
        end_statement();  // only a continuation that nothing follows leaves one open
        --m_report.line;  // the line end that was added
    }
    m_builder.groups.assign(m_builder.counts.get_count());
    return m_at;
}

// False: what begins at m_at needs bytes of the next text.
bool ObjParser::step() {
    switch (m_mode) {
    case LINE:
        if (!m_is_after_backslash &&
            m_builder.make_room_for_faces(static_cast<std::size_t>(m_text.end - m_at))) {
            m_at = obj_read_plain_lines(m_text, m_at, m_builder, m_report.line);
        }
        if (m_at < m_text.end) {
            begin_statement();
        }
        return m_mode != LINE;
    case ROW:
    case FACE:
    case CREASE:
        break;
    case NAME:
        read_name();
        return true;
    case STATEMENT:
        skip_statement();
        return true;
    case TEXT:
        skip_text();
        return true;
    }
    std::string_view word;
    Found const found = find_word(word);
    if (found == END) {
        end_statement();
        m_mode = TEXT;
    } else if (found == WORD) {
        if (m_mode == ROW) {
            add_number(word);
        } else if (m_mode == FACE) {
            add_corner(word);
        } else if (!m_builder.creases.add_word(word)) {
            end_statement();
            m_mode = STATEMENT;
        }
    }
    return found != CUT;
}

// Behind the # at `at` stands a letter of INF, IND, NAN, QNAN or SNAN, or what the next text tells.
bool ObjParser::is_marked(char const* at) const {
    return at + 1 >= m_text.end || std::string_view("INQS").find(at[1]) != std::string_view::npos;
}

// Finds the next word of a statement and steps over it. END: the line or the text ends at m_at, or
// a comment begins there. CUT: the word that begins at m_at reaches past the text; or the file is
// refused.
ObjParser::Found ObjParser::find_word(std::string_view& word) {
    for (;; ++m_at) {
        if (m_at >= m_text.end) {
            return CUT;
        }
        ObjByte const byte = obj_get_byte(m_at);
        if (byte == ObjByte::LINE_END && m_is_after_backslash) {
            m_at = obj_skip_line_end(m_at) - 1;
            ++m_report.line;
            m_is_after_backslash = false;
        } else if (byte == ObjByte::LINE_END) {
            return END;
        } else if (byte == ObjByte::NUL) {
            m_report.refuse(nul_reason);
            return CUT;
        } else if (byte == ObjByte::BACKSLASH && !m_is_after_backslash) {
            m_is_after_backslash = true;
        } else if (byte != ObjByte::BLANK) {
            break;
        }
    }
    if (m_is_after_backslash) {
        m_report.refuse("a backslash inside a line");
        return CUT;
    }
    if (*m_at == '#') {
        return END;
    }
    char const* end = m_at;
    // 1.#INF is a number; any other # begins a comment.
    while (obj_get_byte(end) == ObjByte::WORD ||
           (*end == '#' && end[-1] == '.' && is_marked(end))) {
        ++end;
    }
    if (end >= m_text.end) {
        return CUT;
    }
    word = {m_at, static_cast<std::size_t>(end - m_at)};
    m_at = end;
    return WORD;
}

void ObjParser::begin_statement() {
    std::string_view keyword;
    switch (find_word(keyword)) {
    case END:
        m_mode = TEXT;
        break;
    case WORD:
        dispatch(keyword);
        break;
    case CUT:
        if (static_cast<std::size_t>(m_text.end - m_at) > longest_keyword) {
            m_mode = STATEMENT;
        }
        break;
    }
}

void ObjParser::dispatch(std::string_view const& keyword) {
    if (keyword == "v" || keyword == "vt" || keyword == "vn") {
        m_mode = ROW;
        m_row = keyword == "v" ? POINT : keyword == "vt" ? UV : NORMAL;
        m_number_count = 0;
    } else if (keyword == "f") {
        m_mode = FACE;
        m_builder.begin_face();
    } else if (keyword == "usemtl") {
        m_mode = NAME;
    } else if (keyword == "t") {
        m_mode = CREASE;
        m_builder.creases.begin_tag();
    } else if (keyword == "ec") {
        m_mode = CREASE;
        m_builder.creases.begin_edge();
    } else if (keyword == "g" || keyword == "o" || keyword == "mtllib" ||
               keyword.find('#') != std::string_view::npos) {
        // Of names and paths, where a backslash continues nothing; or a comment, as behind a
        // keyword that is too long to be read as a word.
        m_mode = TEXT;
    } else {
        m_mode = STATEMENT;
    }
}

void ObjParser::end_statement() {
    if (m_mode == ROW) {
        end_row();
    } else if (m_mode == FACE) {
        if (!m_builder.end_face(m_report)) {
            m_report.refuse(count_reason);
        }
    } else if (m_mode == CREASE) {
        m_builder.creases.end_statement(m_report);
    }
}

void ObjParser::end_line(char const* at) {
    m_at = obj_skip_line_end(at);
    ++m_report.line;
    m_mode = LINE;
}

void ObjParser::add_number(std::string_view const& word) {
    unsigned int const most = m_row == POINT ? 7 : 3;
    if (m_number_count == most) {
        end_row();
        m_mode = STATEMENT;
        return;
    }
    switch (obj_parse_number(word, m_numbers[m_number_count])) {
    case ObjNumber::WHOLE:
        break;
    case ObjNumber::WITH_JUNK:
        m_report.warn(ObjReport::NUMBER_JUNK);
        break;
    case ObjNumber::WITH_COMMA:
        m_report.refuse_word("a comma in a number", word);
        break;
    case ObjNumber::NONE:
        m_report.refuse_word("not a number", word);
        break;
    }
    ++m_number_count;
}

void ObjParser::end_row() {
    if (m_row == POINT) {
        end_point();
        return;
    }
    if (m_number_count < (m_row == UV ? 1u : 3u)) {
        m_report.warn(ObjReport::SHORT_VALUE);
    }
    std::fill(m_numbers + m_number_count, m_numbers + 3, 0.0f);
    if (m_row == UV) {
        end_uv();
    } else {
        end_normal();
    }
}

void ObjParser::end_point() {
    if (m_number_count < 3) {
        m_report.refuse("a point of fewer than 3 numbers");
    } else if (!m_builder.add_point({m_numbers[0], m_numbers[1], m_numbers[2]})) {
        m_report.refuse(count_reason);
    } else if (m_number_count >= 6) {
        m_builder.set_color(m_numbers + 3, m_number_count > 6 ? m_numbers[6] : 1.0f);
    }
}

void ObjParser::end_uv() {
    bool is_finite = true;
    for (unsigned int i = 0; i < 3; ++i) {
        is_finite = is_finite && std::isfinite(m_numbers[i]);
        m_numbers[i] = std::isfinite(m_numbers[i]) ? m_numbers[i] : 0.0f;
    }
    if (!is_finite) {
        m_report.warn(ObjReport::NOT_FINITE);
    }
    if (!m_builder.add_uv({m_numbers[0], m_numbers[1], m_numbers[2]})) {
        m_report.refuse(count_reason);
    }
}

void ObjParser::end_normal() {
    GMathVec3<float> normal(m_numbers[0], m_numbers[1], m_numbers[2]);
    if (!gmath_isfinite(normal)) {
        m_report.warn(ObjReport::NOT_FINITE);
        normal = {0.0f, 0.0f, 0.0f};
    }
    if (!m_builder.add_normal(normal)) {
        m_report.refuse(count_reason);
    }
}

// A corner is point, point/uv, point//normal or point/uv/normal; empty parts are none.
void ObjParser::add_corner(std::string_view const& word) {
    std::string_view parts[3];
    std::size_t begin = 0;
    for (unsigned int i = 0; begin <= word.size(); ++i) {
        if (i == 3) {
            m_report.refuse_word("a corner of more than 3 indices", word);
            return;
        }
        std::size_t const end = std::min(word.find('/', begin), word.size());
        parts[i] = word.substr(begin, end - begin);
        begin = end + 1;
    }
    unsigned int const point =
        resolve(parts[0], m_builder.positions.get_count(), m_builder.forward);
    if (point == no_index) {
        m_report.refuse_word("a corner without a point that is there", word);
    } else if (!m_builder.add_corner(point, get_map_index(parts[1], m_builder.uvs),
                                     get_map_index(parts[2], m_builder.normals))) {
        m_report.refuse(count_reason);
    }
}

// The index, from 0 on, that `text` names when there are `count` values so far; it may be ahead.
// no_index when it can never be there, or is no index.
unsigned int ObjParser::resolve(std::string_view const& text, unsigned int const& count,
                                ObjForward& forward) const {
    long long number = 0;
    char const* const end = text.data() + text.size();
    bool const has_plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    auto const result = std::from_chars(text.data() + (has_plus ? 1 : 0), end, number);
    if (result.ec != std::errc() || result.ptr != end || number == 0) {
        return no_index;
    }
    long long const index = number > 0 ? number - 1 : number + static_cast<long long>(count);
    if (index < 0 || index >= static_cast<long long>(no_index)) {
        return no_index;
    }
    unsigned int const found = static_cast<unsigned int>(index);
    if (found >= count) {
        forward.note(found, m_report.line);
    }
    return found;
}

unsigned int ObjParser::get_map_index(std::string_view const& text, ObjMap& map) {
    if (text.empty()) {
        return no_index;
    }
    unsigned int const index = resolve(text, map.values.get_count(), map.forward);
    if (index == no_index) {
        m_report.warn(ObjReport::MAP_INDEX);
    }
    return index;
}

void ObjParser::read_name() {
    char const* const end = find_line_end(m_at);
    std::string_view const part(m_at, static_cast<std::size_t>(end - m_at));
    bool const is_cut = end >= m_text.end;
    if (part.size() > longest_name - m_name.get_length()) {
        m_report.refuse("a name of more than 2 GB");
        return;
    }
    if (is_cut || !m_name.is_empty()) {
        m_name.append(part.substr(0, static_cast<std::size_t>(std::min(end, m_text.end) - m_at)));
    }
    m_at = std::min(end, m_text.end);
    if (is_cut) {
        return;
    }
    if (*end == '\0') {
        m_report.refuse(nul_reason);
        return;
    }
    m_builder.groups.assign(m_builder.counts.get_count());
    m_builder.groups.set_name(trim(m_name.is_empty() ? part : m_name.get_view()));
    m_name.clear();
    end_line(end);
}

void ObjParser::skip_statement() {
    for (; m_at < m_text.end; ++m_at) {
        ObjByte const byte = obj_get_byte(m_at);
        if (byte == ObjByte::LINE_END) {
            if (!m_is_after_backslash) {
                end_line(m_at);
                return;
            }
            m_at = obj_skip_line_end(m_at) - 1;
            ++m_report.line;
        } else if (byte == ObjByte::HASH) {
            m_is_after_backslash = false;
            m_mode = TEXT;
            return;
        } else if (byte == ObjByte::NUL) {
            m_report.refuse(nul_reason);
            return;
        }
        m_is_after_backslash =
            byte == ObjByte::BACKSLASH || (byte == ObjByte::BLANK && m_is_after_backslash);
    }
}

void ObjParser::skip_text() {
    char const* const end = find_line_end(m_at);
    m_at = std::min(end, m_text.end);
    if (end >= m_text.end) {
        return;
    }
    if (*end == '\0') {
        m_report.refuse(nul_reason);
    } else {
        end_line(end);
    }
}
