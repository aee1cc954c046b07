#pragma once

// qz_core: strings, arrays, packed indices, hashing, logging and the class registry.

#include <platform/qz_core/core_array.h>
#include <platform/qz_core/core_base_object.h>
#include <platform/qz_core/core_class_info.h>
#include <platform/qz_core/core_hash.h>
#include <platform/qz_core/core_index_array.h>
#include <platform/qz_core/core_log.h>
#include <platform/qz_core/core_string.h>
