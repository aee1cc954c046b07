#pragma once

// qz_app_base: reporting the progress of long operations.

#include <platform/qz_app_base/app_progress_bar.h>
