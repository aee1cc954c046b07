#pragma once

#include <tools/qzpoly/pictures/camera.h>

#include <platform/qz_geometry.h>

// Six planes around what a camera sees; their normals point inwards.
struct ToolFrustum {
    GeometryFrustumPlane sides[4];
    GeometryFrustumPlane front;
    GeometryFrustumPlane back;
};

// What of a geometry lies in a frustum, at rest. A primitive overlaps it unless all its corners lie
// outside of one plane, and is contained when none lies outside of any.
struct ToolVisibility {
    unsigned int overlapping_count = 0;
    unsigned int contained_count = 0;
    unsigned int vertex_count = 0;  // of those that belong to overlapping primitives

    friend bool operator==(ToolVisibility const& a, ToolVisibility const& b) = default;
};

// From distance `near` to `far`; a far distance of 0 takes the back away.
ToolFrustum make_frustum(ToolCamera const& camera, double const& near, double const& far);

// Asks the geometry.
ToolVisibility count_visible(GeometryObject const& geometry, CtxEval const& ctx,
                             ToolFrustum const& frustum);
// Counts by the positions of the geometry's points, without asking it about the frustum.
ToolVisibility count_visible_plainly(GeometryObject const& geometry, ToolFrustum const& frustum);
