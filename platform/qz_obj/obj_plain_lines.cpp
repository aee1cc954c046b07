#include <platform/qz_obj/obj_plain_lines.h>

#include <platform/qz_obj/obj_number.h>
#include <platform/qz_obj/obj_plain_number.h>

#include <algorithm>
#include <bit>

namespace {

constexpr unsigned int most_numbers = 7;  // x y z, r g b and alpha

unsigned int get_keyword(char const* at) {
    return static_cast<unsigned char>(at[0]) | static_cast<unsigned char>(at[1]) << 8;
}

constexpr unsigned int make_keyword(char const& first, char const& second) {
    return static_cast<unsigned int>(first) | static_cast<unsigned int>(second) << 8;
}

char const* skip_blanks(char const* at) {
    while (obj_is_blank(at)) {
        ++at;
    }
    return at;
}

// Numbers with exponents, many digits or a plus; not nan and inf, which some rows do not keep.
bool read_rare_number(std::string_view const& word, float& value) {
    bool const is_signed = word[0] == '-' || word[0] == '+';
    char const first = word.size() > 1 && is_signed ? word[1] : word[0];
    return ((first >= '0' && first <= '9') || first == '.') &&
           obj_parse_number(word, value) == ObjNumber::WHOLE && value - value == 0.0f;
}

class PlainLines {
  public:
    PlainLines(ObjText const& text, ObjBuilder& builder)
        : m_marks(*text.marks), m_end(text.end), m_builder(builder) {}

    // Reads the line of a statement and returns where the next one begins; null when the line is
    // not plain, and then nothing is changed.
    char const* read_line(char const* at) {
        switch (get_keyword(at)) {
        case make_keyword('v', ' '):
            return read_point(at + 2);
        case make_keyword('f', ' '):
            return read_face(at + 2);
        case make_keyword('v', 't'):
            return obj_is_blank(at + 2) ? read_uv(at + 3) : nullptr;
        case make_keyword('v', 'n'):
            return obj_is_blank(at + 2) ? read_normal(at + 3) : nullptr;
        }
        return nullptr;
    }

  private:
    // Where the line behind the line end at `at` begins; null when the text ends before.
    char const* end_line(char const* at) const {
        return at < m_end ? obj_skip_line_end(at) : nullptr;
    }

    char const* read_row(char const* at, float* numbers, unsigned int& number_count) const;
    char const* read_point(char const* at);
    char const* read_uv(char const* at);
    char const* read_normal(char const* at);

    char const* read_face(char const* at);
    template <bool has_uv, bool has_normal>
    char const* read_corners(char const* at);

    ObjMarks const& m_marks;
    char const* m_end;
    ObjBuilder& m_builder;
};

// Reads numbers up to the line end and returns where that is; null when there is anything else.
char const* PlainLines::read_row(char const* at, float* numbers, unsigned int& number_count) const {
    unsigned int count = 0;
    std::uint64_t ends = 0;
    std::uint64_t non_digits = 0;
    for (;;) {
        if (ends == 0) {
            ends = m_marks.get_word_ends(at);
            non_digits = m_marks.get_non_digits(at);
        }
        unsigned int const length = static_cast<unsigned int>(std::countr_zero(ends));
        if (length - 1 > 50 || count == most_numbers) [[unlikely]] {
            // More blanks, a blank at the end of the line, or a word that no row should have.
            if (!obj_is_blank(at) && !obj_is_line_end(at)) {
                return nullptr;
            }
            at = skip_blanks(at);
            if (obj_is_line_end(at)) {
                break;
            }
            ends = 0;
            continue;
        }
        if (!obj_read_plain_number(at, length, non_digits, numbers[count])) [[unlikely]] {
            if (!read_rare_number({at, length}, numbers[count])) {
                return nullptr;
            }
        }
        ++count;
        at += length;
        if (obj_is_line_end(at)) {
            break;
        }
        if (!obj_is_blank(at)) [[unlikely]] {
            return nullptr;
        }
        ++at;
        ends >>= length + 1;
        non_digits >>= length + 1;
    }
    number_count = count;
    return at;
}

char const* PlainLines::read_point(char const* at) {
    float numbers[most_numbers];
    unsigned int count = 0;
    char const* next = read_row(at, numbers, count);
    if (!next || count < 3 || !(next = end_line(next)) ||
        !m_builder.add_point({numbers[0], numbers[1], numbers[2]})) [[unlikely]] {
        return nullptr;
    }
    if (count >= 6) {
        m_builder.set_color(numbers + 3, count > 6 ? numbers[6] : 1.0f);
    }
    return next;
}

char const* PlainLines::read_uv(char const* at) {
    float numbers[most_numbers];
    unsigned int count = 0;
    char const* next = read_row(at, numbers, count);
    if (!next || count < 2 || count > 3 || !(next = end_line(next)) ||
        !m_builder.add_uv({numbers[0], numbers[1], count > 2 ? numbers[2] : 0.0f})) [[unlikely]] {
        return nullptr;
    }
    return next;
}

char const* PlainLines::read_normal(char const* at) {
    float numbers[most_numbers];
    unsigned int count = 0;
    char const* next = read_row(at, numbers, count);
    if (!next || count != 3 || !(next = end_line(next)) ||
        !m_builder.add_normal({numbers[0], numbers[1], numbers[2]})) [[unlikely]] {
        return nullptr;
    }
    return next;
}

char const* PlainLines::read_face(char const* at) {
    switch (m_builder.form) {
    case ObjForm::POINTS:
        return read_corners<false, false>(at);
    case ObjForm::UVS:
        return read_corners<true, false>(at);
    case ObjForm::NORMALS:
        return read_corners<false, true>(at);
    case ObjForm::UVS_AND_NORMALS:
        return read_corners<true, true>(at);
    }
    return nullptr;
}

// Whether indices fit the state of a map: none of them is ahead of its values, and all of them are
// as the state says. The statement reader changes the state.
template <bool has_index>
bool is_fitting(ObjMap const& map, unsigned int const& highest, unsigned int const& difference) {
    if constexpr (has_index) {
        return highest < map.values.get_count() &&
               (map.get_state() == ObjMap::LISTED ||
                (map.get_state() == ObjMap::SAME && difference == 0));
    }
    return map.get_state() != ObjMap::SAME;
}

template <bool has_index>
void commit_indices(ObjMap& map, unsigned int const& count) {
    if (map.get_state() == ObjMap::LISTED) {
        if constexpr (!has_index) {
            std::fill_n(map.get_indices().get_end(), count, ObjMap::no_index);
        }
        map.get_indices().commit(count);
    }
}

// The indices of a line, one after another.
struct IndexCursor {
    ObjMarks const& marks;
    char const* at;
    std::uint64_t non_digits = 0;

    // Reads an index of up to 8 digits that counts from 1 as one that counts from 0; index 0
    // becomes the highest of all, which no value has.
    bool read(unsigned int& index) {
        if (non_digits == 0) {
            non_digits = marks.get_non_digits(at);
        }
        unsigned int const length = static_cast<unsigned int>(std::countr_zero(non_digits));
        if (length - 1 > 7) [[unlikely]] {
            return false;
        }
        index = obj_join_digits(at, length) - 1;
        skip(length);
        return true;
    }

    bool read_slash() {
        bool const is_slash = *at == '/';
        skip(1);
        return is_slash;
    }

    void skip(unsigned int const& count) {
        at += count;
        non_digits >>= count;
    }

    void move_to(char const* to) {
        at = to;
        non_digits = 0;
    }
};

template <bool has_uv, bool has_normal>
char const* PlainLines::read_corners(char const* at) {
    unsigned int* const corners = m_builder.corners.get_end();
    unsigned int* const uvs = m_builder.uvs.get_indices().get_end();
    unsigned int* const normals = m_builder.normals.get_indices().get_end();
    unsigned int highest = 0, highest_uv = 0, highest_normal = 0;
    unsigned int uv_difference = 0, normal_difference = 0;
    IndexCursor cursor{m_marks, skip_blanks(at)};
    unsigned int count = 0;
    do {
        unsigned int point;
        if (!cursor.read(point)) [[unlikely]] {
            return nullptr;
        }
        if constexpr (has_uv) {
            unsigned int uv;
            if (!cursor.read_slash() || !cursor.read(uv)) [[unlikely]] {
                return nullptr;
            }
            uvs[count] = uv;
            highest_uv = std::max(highest_uv, uv);
            uv_difference |= uv ^ point;
        }
        if constexpr (has_normal) {
            unsigned int normal;
            if (!cursor.read_slash() || (!has_uv && !cursor.read_slash()) || !cursor.read(normal))
                [[unlikely]] {
                return nullptr;
            }
            normals[count] = normal;
            highest_normal = std::max(highest_normal, normal);
            normal_difference |= normal ^ point;
        }
        corners[count++] = point;
        highest = std::max(highest, point);
        if (obj_is_line_end(cursor.at)) {
            break;
        }
        if (!obj_is_blank(cursor.at)) [[unlikely]] {
            return nullptr;
        }
        cursor.skip(1);
        if (static_cast<unsigned char>(*cursor.at) <= ' ') [[unlikely]] {
            cursor.move_to(skip_blanks(cursor.at));
        }
    } while (!obj_is_line_end(cursor.at));

    char const* const next = end_line(cursor.at);
    if (!next || count < 3 || highest >= m_builder.positions.get_count() ||
        !is_fitting<has_uv>(m_builder.uvs, highest_uv, uv_difference) ||
        !is_fitting<has_normal>(m_builder.normals, highest_normal, normal_difference))
        [[unlikely]] {
        return nullptr;
    }
    commit_indices<has_uv>(m_builder.uvs, count);
    commit_indices<has_normal>(m_builder.normals, count);
    m_builder.corners.commit(count);
    *m_builder.counts.get_end() = count;
    m_builder.counts.commit(1);
    return next;
}

}  // namespace

char const* obj_read_plain_lines(ObjText const& text, char const* begin, ObjBuilder& builder,
                                 unsigned long long& line) {
    PlainLines lines(text, builder);
    char const* at = begin;
    unsigned long long count = 0;
    while (char const* const next = lines.read_line(at)) {
        at = next;
        ++count;
    }
    line += count;
    return at;
}
