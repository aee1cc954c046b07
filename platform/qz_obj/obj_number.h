#pragma once

#include <string_view>

enum class ObjNumber {
    WHOLE,       // the whole word is a number
    WITH_JUNK,   // it begins with one
    WITH_COMMA,  // it begins with one, and a comma follows
    NONE,
};

// Reads the number that `word` begins with, correctly rounded whatever its length, and the same in
// every locale: decimal with an optional sign, point and exponent; inf, infinity and nan in any
// case; 1.#INF, 1.#IND and their like as some C libraries print them. Magnitudes too large for a
// float give infinity. `value` is set but for NONE.
ObjNumber obj_parse_number(std::string_view const& word, float& value);
