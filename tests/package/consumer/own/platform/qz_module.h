#pragma once

#include <platform/qz_core.h>

// What modules announce to an application that ignores it.
class ModuleGeometry {
  public:
    static constexpr bool is_own = true;
    static void register_properties(CoreBasicArray<CoreString> const& names);
};
