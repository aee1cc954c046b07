#pragma once

#include <platform/qz_core/export.h>

#include <cstddef>

// The heap behind every array and string of the platform. `core_allocate` never returns null for a
// size above zero: a process that is out of memory says so on stderr and aborts, since no caller of
// an array could go on. A size of zero gives null. Release with `core_release` (or `free`).
QZ_CORE_EXPORT void* core_allocate(std::size_t const& size);
// The same, all bytes 0; large blocks take no memory before they are written.
QZ_CORE_EXPORT void* core_allocate_zeros(std::size_t const& size);
QZ_CORE_EXPORT void* core_reallocate(void* block, std::size_t const& size);
QZ_CORE_EXPORT void core_release(void* block);
