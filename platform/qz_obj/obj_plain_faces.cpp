#include <platform/qz_obj/obj_plain_faces.h>

#include <algorithm>
#include <bit>

namespace {

// The indices of a line, one after another.
struct IndexCursor {
    ObjMarks const& marks;
    char const* at;
    std::uint64_t non_digits;

    // Reads an index of up to 8 digits that counts from 1, or backwards from the `value_count`
    // values so far, as one that counts from 0. Those that are not there come out as `value_count`
    // or more.
    bool read(unsigned int& index, unsigned int const& value_count) {
        if (non_digits == 0) [[unlikely]] {
            non_digits = marks.get_non_digits(at);
        }
        unsigned int const length = static_cast<unsigned int>(std::countr_zero(non_digits));
        if (length - 1 > 7) [[unlikely]] {
            return *at == '-' && read_relative(index, value_count);
        }
        index = obj_join_digits(at, length) - 1;
        skip(length);
        return true;
    }

    bool read_relative(unsigned int& index, unsigned int const& value_count) {
        unsigned int const length =
            static_cast<unsigned int>(std::countr_zero(marks.get_non_digits(at + 1)));
        if (length - 1 > 7) {
            return false;
        }
        index = value_count - obj_join_digits(at + 1, length);
        skip(length + 1);
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
        non_digits = marks.get_non_digits(to);
    }
};

// One kind of index, while faces are read: where the next ones go, and whether those of a face fit.
// Indices of a map whose state is SAME are written too, but over each other, and compared.
template <bool is_there>
struct IndexColumn {
    unsigned int* end;
    unsigned int value_count;
    unsigned int highest = 0;
    unsigned int difference = 0;  // of the bits of points
    unsigned int watched_bits;    // of difference: all or none

    bool read(IndexCursor& cursor, unsigned int const& number, unsigned int const& point) {
        unsigned int index;
        if (!cursor.read(index, value_count)) [[unlikely]] {
            return false;
        }
        end[number] = index;
        highest = std::max(highest, index);
        difference |= index ^ point;
        return true;
    }
    bool is_fitting() const {
        return !is_there || ((highest < value_count) & ((difference & watched_bits) == 0));
    }
};

template <bool is_there>
IndexColumn<is_there> make_column(ObjMap& map) {
    return {.end = map.get_indices().get_end(),
            .value_count = map.values.get_count(),
            .watched_bits = map.get_state() == ObjMap::SAME ? ~0u : 0u};
}

// Only the statement reader changes the state of a map.
template <bool is_there>
bool is_readable(ObjMap const& map) {
    return map.get_state() != (is_there ? ObjMap::ABSENT : ObjMap::SAME);
}

template <bool is_there>
void commit(ObjMap& map, unsigned int const& corner_count) {
    if (map.get_state() == ObjMap::LISTED) {
        if constexpr (!is_there) {
            std::fill_n(map.get_indices().get_end(), corner_count, ObjMap::no_index);
        }
        map.get_indices().commit(corner_count);
    }
}

// Reads the corners of a face, and stops at its line end. False: the line is not plain.
template <bool has_uv, bool has_normal>
bool read_corners(IndexCursor& cursor, unsigned int const& point_count, unsigned int* points,
                  unsigned int& highest_point, unsigned int& corner_count, IndexColumn<has_uv>& uvs,
                  IndexColumn<has_normal>& normals) {
    unsigned int highest = 0;
    unsigned int count = 0;
    for (;; ++count) {
        unsigned int point;
        if (!cursor.read(point, point_count)) [[unlikely]] {
            // More blanks, or one at the end of the line.
            if (!obj_is_blank(cursor.at) && !obj_is_line_end(cursor.at)) {
                return false;
            }
            cursor.move_to(obj_skip_blanks(cursor.at));
            if (obj_is_line_end(cursor.at)) {
                break;
            }
            if (!cursor.read(point, point_count)) {
                return false;
            }
        }
        points[count] = point;
        highest = std::max(highest, point);
        if constexpr (has_uv || has_normal) {
            if (!cursor.read_slash()) [[unlikely]] {
                return false;
            }
        }
        if constexpr (has_uv) {
            if (!uvs.read(cursor, count, point)) [[unlikely]] {
                return false;
            }
        }
        if constexpr (has_normal) {
            if (!cursor.read_slash() || !normals.read(cursor, count, point)) [[unlikely]] {
                return false;
            }
        }
        if (*cursor.at != ' ') {
            if (obj_is_line_end(cursor.at)) {
                ++count;
                break;
            }
            if (!obj_is_blank(cursor.at)) [[unlikely]] {
                return false;
            }
        }
        cursor.skip(1);
    }
    corner_count = count;
    highest_point = highest;
    return true;
}

template <bool has_uv, bool has_normal>
char const* read_faces(ObjText const& text, char const* begin, ObjBuilder& builder,
                       unsigned long long& line) {
    if (!is_readable<has_uv>(builder.uvs) || !is_readable<has_normal>(builder.normals)) {
        return begin;
    }
    char const* const end = text.end;
    char const* at = begin;
    unsigned int const point_count = builder.positions.get_count();
    unsigned int* const first_corner = builder.corners.get_end();
    unsigned int* corner = first_corner;
    unsigned int* const first_count = builder.counts.get_end();
    unsigned int* count = first_count;
    auto uvs = make_column<has_uv>(builder.uvs);
    auto normals = make_column<has_normal>(builder.normals);
    while (obj_is_keyword<1>(at, "f")) {
        char const* const first = obj_skip_blanks(at + 2);
        IndexCursor cursor{*text.marks, first, text.marks->get_non_digits(first)};
        unsigned int highest;
        unsigned int corner_count;
        if (!read_corners(cursor, point_count, corner, highest, corner_count, uvs, normals) ||
            cursor.at >= end || corner_count < 3 || highest >= point_count || !uvs.is_fitting() ||
            !normals.is_fitting()) [[unlikely]] {
            break;
        }
        at = obj_skip_line_end(cursor.at);
        corner += corner_count;
        uvs.end += corner_count & ~uvs.watched_bits;
        normals.end += corner_count & ~normals.watched_bits;
        *count++ = corner_count;
    }
    unsigned int const corner_count = static_cast<unsigned int>(corner - first_corner);
    unsigned int const face_count = static_cast<unsigned int>(count - first_count);
    builder.corners.commit(corner_count);
    builder.counts.commit(face_count);
    commit<has_uv>(builder.uvs, corner_count);
    commit<has_normal>(builder.normals, corner_count);
    line += face_count;
    return at;
}

}  // namespace

char const* obj_read_plain_faces(ObjText const& text, char const* begin, ObjBuilder& builder,
                                 unsigned long long& line) {
    switch (builder.form) {
    case ObjForm::POINTS:
        return read_faces<false, false>(text, begin, builder, line);
    case ObjForm::UVS:
        return read_faces<true, false>(text, begin, builder, line);
    case ObjForm::NORMALS:
        return read_faces<false, true>(text, begin, builder, line);
    case ObjForm::UVS_AND_NORMALS:
        return read_faces<true, true>(text, begin, builder, line);
    }
    return begin;
}
