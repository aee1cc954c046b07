#pragma once

// qz_module: what modules announce to the application.

#include <platform/qz_module/module_geometry.h>
