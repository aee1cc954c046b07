#pragma once

#include <platform/qz_geometry.h>

// An application without LightWave objects: no file is one.
class Lwo {
  public:
    static bool is_valid(CoreString const&) { return false; }
    template <typename... Arguments>
    static bool load(Arguments const&...) {
        return false;
    }
};
