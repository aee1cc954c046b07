#pragma once

#include <tools/qzpoly/check/mesh_faults.h>
#include <tools/qzpoly/pictures/camera.h>

// Draws a mesh in grey with its faults colored in, and tells their colors. False after the reason
// has been shown.
bool draw_faults(PolyMesh const& mesh, ToolFaults const& faults, ToolCameraOptions const& camera,
                 ToolMessages& messages, ToolImage& image);
