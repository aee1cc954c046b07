#pragma once

#include <tools/qzpoly/models/extent.h>
#include <tools/qzpoly/terminal/messages.h>

#include <platform/qz_geometry.h>

#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

// What the command line says of the camera; empty vectors: choose by the geometry.
struct ToolCameraOptions {
    std::vector<double> eye;
    std::string view;  // its name; empty: a little above and beside what the model shows
    std::vector<double> target;
    std::vector<double> up{0, 1, 0};
    double turn_degrees = 0;  // of a chosen eye, about the vertical
    double fov_degrees = 30;  // of the picture's height
    std::vector<unsigned int> size{1024, 768};
};

// A pinhole camera. `right`, `up` and `forward` are unit vectors at right angles.
struct ToolCamera {
    GMathVec3<double> eye;
    GMathVec3<double> right;
    GMathVec3<double> up;
    GMathVec3<double> forward;
    GMathVec3<double> vertical;  // unit: away from the ground
    double half_width;           // of the picture at distance 1
    double half_height;
    unsigned int width;  // pixels
    unsigned int height;

    // The ray through a point of the picture: (0, 0) is its upper left corner, in pixels.
    GMathBasicRay make_ray(double const& x, double const& y) const;
    // Where a point lies in the picture; `depth` along `forward`. Of use where depth is above 0.
    void project(GMathVec3<double> const& point, double& x, double& y, double& depth) const;
};

void add_camera_options(CLI::App& command, ToolCameraOptions& options);

// Looks at the whole of `extent` from where the options say; without an eye, from the view that
// they name. False after the reason has been shown.
bool make_camera(ToolCameraOptions const& options, ToolExtent const& extent, ToolMessages& messages,
                 ToolCamera& camera);

// The views of one turn around the geometry in even steps, all from the same distance, from where
// all of it is seen in each.
bool make_turning_cameras(ToolCameraOptions const& options, ToolExtent const& extent,
                          unsigned int const& count, ToolMessages& messages,
                          std::vector<ToolCamera>& cameras);
