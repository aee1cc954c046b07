#pragma once

#include <platform/qz_lwo/export.h>
#include <platform/qz_lwo/lwo_mesh.h>
#include <platform/qz_lwo/lwo_report.h>

#include <cstddef>

// Reads a whole file that is in memory already, as Lwo::load does. `mesh` must be empty; it holds
// parts of the object when the result is false.
bool lwo_read_object(unsigned char const* bytes, std::size_t const& size,
                     CoreString const& item_name, LwoMesh& mesh, LwoReport& report);

// The same on its own: messages name the file `path`, which is not opened; `progress` may be null.
QZ_LWO_EXPORT bool lwo_load_from_memory(unsigned char const* bytes, std::size_t const& size,
                                        CoreString const& path, CoreString const& item_name,
                                        LwoMesh& mesh, AppProgressBar* progress);
