#pragma once

#include <platform/qz_obj/obj_builder.h>
#include <platform/qz_obj/obj_text.h>

// The faces among the plain lines; see obj_plain_lines.h. Reads lines from `begin` on, as long as
// they are plain, and counts them.
char const* obj_read_plain_faces(ObjText const& text, char const* begin, ObjBuilder& builder,
                                 unsigned long long& line);
