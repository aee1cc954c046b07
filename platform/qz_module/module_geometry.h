#pragma once

#include <platform/qz_core.h>
#include <platform/qz_module/export.h>

class QZ_MODULE_EXPORT ModuleGeometry {
  public:
    // Makes property names known to the application; a name that is known already stays known once.
    // Thread-safe.
    static void register_properties(CoreBasicArray<CoreString> const& names);
    static bool is_property_registered(CoreString const& name);
};
