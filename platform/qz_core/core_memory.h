#pragma once

#include <platform/qz_core/export.h>

#include <cstddef>

// The heap behind every array and string; sizes are in bytes. A size above zero never gives null:
// a process that is out of memory says so on stderr and aborts, since no caller of an array could
// go on. Zero gives null, and frees what is reallocated. `core_release` takes null too.
QZ_CORE_EXPORT void* core_allocate(std::size_t const& size);
// The same, all bytes 0; large blocks take no memory before they are written.
QZ_CORE_EXPORT void* core_allocate_zeros(std::size_t const& size);
QZ_CORE_EXPORT void* core_reallocate(void* block, std::size_t const& size);
QZ_CORE_EXPORT void core_release(void* block);
