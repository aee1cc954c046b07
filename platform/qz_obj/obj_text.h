#pragma once

#include <platform/qz_obj/obj_marks.h>

// A part of a file: bytes from `begin` to `end`, and behind them ObjMarks::margin bytes that may be
// read, the first of them a line end. The bytes are marked. A CR LF is never cut in two.
struct ObjText {
    char const* begin;
    char const* end;
    bool is_last;  // the file ends here, and a line end was added to it
    ObjMarks const* marks;
};
