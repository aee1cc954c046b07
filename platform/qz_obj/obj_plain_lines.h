#pragma once

#include <platform/qz_obj/obj_builder.h>
#include <platform/qz_obj/obj_text.h>

// Reads the lines that make up nearly all of a file, as long as they come in their plain forms: v,
// vt, vn and f with numbers, indices and blanks alone, indices of values that were read before, and
// faces whose corners all have the form of the last corner. Returns where the first other line
// begins, or one that the text does not hold to its end; `line` counts the lines. The statement
// reader would read the same from them.
//
// `builder` has room for the faces of the text.
char const* obj_read_plain_lines(ObjText const& text, char const* begin, ObjBuilder& builder,
                                 unsigned long long& line);
