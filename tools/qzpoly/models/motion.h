#pragma once

#include <tools/qzpoly/models/extent.h>
#include <tools/qzpoly/models/mesh_source.h>
#include <tools/qzpoly/terminal/messages.h>

#include <poly/mesh/poly_mesh.h>

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

// How a mesh moves while the shutter is open, as the command line tells it.
struct ToolMotionOptions {
    std::vector<std::string> frames;     // files of the mesh at several times
    std::vector<double> times;           // one per frame; empty: 0, 1, 2, ...
    bool is_spinning = false;            // by the usual angle
    std::optional<double> spin_degrees;  // about the vertical axis, per unit of time
    std::vector<double> velocity;        // of all vertices
    std::vector<double> shutter;         // opens, closes

    bool has_velocities() const { return is_spinning || spin_degrees || !velocity.empty(); }
};

// To be added behind the options of a mesh that is optional.
void add_motion_options(CLI::App& command, ToolMotionOptions& options);

// Loads the mesh, the first frame if there are frames, and lets it move. `shutter_times` are the
// evenly spaced times at which it is to be bounded, none when it stands still. False after the
// reason has been shown. `vertical` is the unit axis of spinning.
bool load_moving_mesh(ToolMeshOptions const& mesh_options, ToolMotionOptions const& options,
                      GMathVec3<double> const& vertical, ToolMessages& messages, ToolMesh& mesh,
                      std::vector<double>& shutter_times);

// The shutter of a picture that is bounded at these times.
CtxShader make_shader_ctx(std::vector<double> const& shutter_times);
