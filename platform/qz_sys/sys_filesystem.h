#pragma once

#include <platform/qz_core.h>
#include <platform/qz_sys/export.h>

class QZ_SYS_EXPORT SysFilesystem {
  public:
    // Something of this UTF-8 name is there: a file, a directory, a pipe. The empty name is never.
    static bool file_exists(CoreString const& path);
};
