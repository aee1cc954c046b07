#pragma once

// qz_lwo: LightWave objects.

#include <platform/qz_lwo/lwo.h>
