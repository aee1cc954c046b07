#include <platform/qz_obj/obj_plain_lines.h>

#include <platform/qz_obj/obj_plain_faces.h>
#include <platform/qz_obj/obj_plain_rows.h>

char const* obj_read_plain_lines(ObjText const& text, char const* begin, ObjBuilder& builder,
                                 unsigned long long& line) {
    char const* at = begin;
    for (;;) {
        char const* const run = at;
        if (at[0] == 'f') {
            at = obj_read_plain_faces(text, at, builder, line);
        } else if (at[0] == 'v' && at[1] == 't') {
            at = obj_read_plain_rows<ObjRow::UV>(text, at, builder, line);
        } else if (at[0] == 'v' && at[1] == 'n') {
            at = obj_read_plain_rows<ObjRow::NORMAL>(text, at, builder, line);
        } else if (at[0] == 'v') {
            at = obj_read_plain_rows<ObjRow::POINT>(text, at, builder, line);
        }
        if (at == run) {
            return at;
        }
    }
}
