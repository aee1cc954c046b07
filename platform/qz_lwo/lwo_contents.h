#pragma once

#include <platform/qz_core.h>
#include <platform/qz_lwo/lwo_form.h>
#include <platform/qz_lwo/lwo_report.h>

// What is known of an object before its data are read.
struct LwoContents {
    // Names of surfaces by number, each followed by a NUL. They lie in the bytes of the file.
    CoreArray<char const*> names;
    unsigned int point_count = 0;
    // Polygons and corners together are no more than this.
    unsigned int index_limit = 0;
};

// Checks that all chunks lie within the form, that the item is there and has points.
bool lwo_read_contents(LwoForm const& form, CoreString const& item_name, LwoContents& contents,
                       LwoReport& report);
