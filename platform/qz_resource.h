#pragma once

// qz_resource: objects that the application caches and stores, and blocks of typed values.

#include <platform/qz_resource/resource_data.h>
#include <platform/qz_resource/resource_import_data.h>
#include <platform/qz_resource/resource_property.h>
