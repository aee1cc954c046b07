#pragma once

#include <tools/qzpoly/models/dump_writer.h>

#include <poly/mesh/poly_mesh.h>

#include <vector>

// How a dumped mesh was built, and what is computed for the dump.
struct ToolDumpRequest {
    bool check_quads = true;
    std::vector<double> smoothing_angles;  // in degrees; a smoothed view for each
};

// Writes every array of a mesh, stored and computed, as one JSON object: what another program needs
// to check them all.
void dump_mesh(PolyMesh const& mesh, ToolDumpRequest const& request, DumpWriter& writer);
