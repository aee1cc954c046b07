#include <platform/qz_module.h>

void ModuleGeometry::register_properties(CoreBasicArray<CoreString> const&) {}
