#include <platform/qz_obj/obj_plain_rows.h>

#include <platform/qz_obj/obj_number.h>
#include <platform/qz_obj/obj_plain_number.h>

#include <bit>

namespace {

constexpr unsigned int most_numbers = 7;  // x y z, r g b and alpha

template <ObjRow row>
constexpr std::string_view keyword = row == ObjRow::POINT ? "v"
                                     : row == ObjRow::UV  ? "vt"
                                                          : "vn";

// Any number that is wholly one; not nan and inf, which some rows do not keep.
bool read_rare_number(std::string_view const& word, float& value) {
    bool const is_signed = word[0] == '-' || word[0] == '+';
    char const first = word.size() > 1 && is_signed ? word[1] : word[0];
    return ((first >= '0' && first <= '9') || first == '.') &&
           obj_parse_number(word, value) == ObjNumber::WHOLE && value - value == 0.0f;
}

// Reads numbers from the blank at `at` up to the line end and returns where that is; null when
// there is anything else.
inline char const* read_numbers(ObjMarks const& marks, char const* at, float* numbers,
                                unsigned int& number_count) {
    unsigned int count = 0;
    ++at;
    std::uint64_t ends = marks.get_word_ends(at);
    std::uint64_t non_digits = marks.get_non_digits(at);
    for (;;) {
        if (ends == 0) [[unlikely]] {
            ends = marks.get_word_ends(at);
            non_digits = marks.get_non_digits(at);
            if (ends == 0) {
                return nullptr;  // a word of 57 bytes or more
            }
        }
        unsigned int const length = static_cast<unsigned int>(std::countr_zero(ends));
        if (count < most_numbers && obj_read_plain_number(at, length, non_digits, numbers[count]))
            [[likely]] {  // NOLINT(bugprone-branch-clone): the usual way is asked for first
            ++count;
        } else if (length == 0) {
            // More blanks, or one at the end of the line.
            at = obj_skip_blanks(at);
            if (obj_is_line_end(at)) {
                break;
            }
            if (static_cast<unsigned char>(*at) <= ' ') {
                return nullptr;
            }
            ends = 0;
            continue;
        } else if (count < most_numbers && length < 57 &&
                   (obj_read_long_number(at, length, non_digits, numbers[count]) ||
                    read_rare_number({at, length}, numbers[count]))) {
            ++count;
        } else {
            return nullptr;
        }
        at += length;
        if (*at != ' ') {
            if (obj_is_line_end(at)) {
                break;
            }
            if (!obj_is_blank(at)) {
                return nullptr;
            }
        }
        ++at;
        ends >>= length + 1;
        non_digits >>= length + 1;
    }
    number_count = count;
    return at;
}

template <ObjRow row>
ObjList<GMathVec3<float>>& get_list(ObjBuilder& builder) {
    return row == ObjRow::POINT ? builder.positions
           : row == ObjRow::UV  ? builder.uvs.values
                                : builder.normals.values;
}

// Takes in the row that was read behind the end of its list. False: it is not plain.
template <ObjRow row>
bool commit_row(ObjBuilder& builder, float* numbers, unsigned int const& count) {
    constexpr unsigned int fewest = row == ObjRow::UV ? 2 : 3;
    constexpr unsigned int most = row == ObjRow::POINT ? most_numbers : 3;
    if (count < fewest || count > most) [[unlikely]] {
        return false;
    }
    if (row == ObjRow::UV && count == 2) {
        numbers[2] = 0.0f;
    }
    get_list<row>(builder).commit(1);
    if (row == ObjRow::POINT && count >= 6) {
        builder.set_color(numbers + 3, count > 6 ? numbers[6] : 1.0f);
    }
    return true;
}

}  // namespace

template <ObjRow row>
char const* obj_read_plain_rows(ObjText const& text, char const* begin, ObjBuilder& builder,
                                unsigned long long& line) {
    constexpr unsigned int elements_of_a_row = 3;  // hold the most numbers that are read
    static_assert(3 * elements_of_a_row >= most_numbers);
    ObjMarks const& marks = *text.marks;
    char const* const end = text.end;
    ObjList<GMathVec3<float>>& list = get_list<row>(builder);
    char const* at = begin;
    unsigned long long count = 0;
    while (obj_is_keyword<keyword<row>.size()>(at, keyword<row>.data()) &&
           builder.make_room(list, elements_of_a_row)) {
        float* const numbers = &list.get_end()->x;
        unsigned int number_count = 0;
        char const* const line_end =
            read_numbers(marks, at + keyword<row>.size(), numbers, number_count);
        if (!line_end || line_end >= end || !commit_row<row>(builder, numbers, number_count))
            [[unlikely]] {
            break;
        }
        at = obj_skip_line_end(line_end);
        ++count;
    }
    line += count;
    return at;
}

template char const* obj_read_plain_rows<ObjRow::POINT>(ObjText const&, char const*, ObjBuilder&,
                                                        unsigned long long&);
template char const* obj_read_plain_rows<ObjRow::UV>(ObjText const&, char const*, ObjBuilder&,
                                                     unsigned long long&);
template char const* obj_read_plain_rows<ObjRow::NORMAL>(ObjText const&, char const*, ObjBuilder&,
                                                         unsigned long long&);
