#pragma once

// qz_sys: locks, and files opened by UTF-8 names.

#include <platform/qz_sys/sys_file.h>
#include <platform/qz_sys/sys_filesystem.h>
#include <platform/qz_sys/sys_thread_lock.h>
