#pragma once

#include <platform/qz_core.h>

// What a loader found in a file beside the arrays that it hands over.
struct ResourceImportData {
    CoreArray<int> crease_indices;        // two vertices an edge
    CoreArray<float> crease_sharpnesses;  // one an edge, 0 or more
    CoreArray<CoreString> warnings;       // one text for each kind of thing that was mended
};
