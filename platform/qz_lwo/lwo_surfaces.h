#pragma once

#include <platform/qz_lwo/lwo_contents.h>
#include <platform/qz_lwo/lwo_mesh.h>
#include <platform/qz_lwo/lwo_polygons.h>
#include <platform/qz_lwo/lwo_report.h>

// Reads a chunk PTAG, which gives polygons of the last list their surfaces. Tags of other types
// (parts, smoothing groups, colors) are skipped.
bool lwo_read_surface_tags(LwoChunk const& chunk, LwoContents const& contents,
                           LwoPolygons& polygons, LwoReport& report);

// Makes a group of each name of a surface, in the order in which the polygons of the mesh use them.
// Polygons without a surface, or with one whose name is empty, belong to "default".
bool lwo_build_groups(LwoContents const& contents, LwoPolygons const& polygons, LwoMesh& mesh,
                      LwoReport& report);
