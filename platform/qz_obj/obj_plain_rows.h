#pragma once

#include <platform/qz_obj/obj_builder.h>
#include <platform/qz_obj/obj_text.h>

// The rows of numbers among the plain lines; see obj_plain_lines.h.
enum class ObjRow { POINT, UV, NORMAL };

// Reads lines of one keyword from `begin` on, as long as they are plain, and counts them.
template <ObjRow row>
char const* obj_read_plain_rows(ObjText const& text, char const* begin, ObjBuilder& builder,
                                unsigned long long& line);
