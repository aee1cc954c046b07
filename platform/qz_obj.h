#pragma once

// qz_obj: reads polygon meshes from OBJ files.

#include <platform/qz_obj/obj.h>
