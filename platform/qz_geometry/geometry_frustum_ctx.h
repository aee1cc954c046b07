#pragma once

#include <platform/qz_gmath.h>

// The side of a plane that its normal points to, the plane included: n . p + offset >= 0.
struct GeometryFrustumPlane {
    GMathVec3<double> normal{0, 0, 0};
    double offset = 0.0;

    bool is_inside(GMathVec3<double> const& p) const {
        return ((normal.x * p.x + normal.y * p.y) + normal.z * p.z) + offset >= 0.0;
    }
};

// A view frustum, and what is found in it. Plain data, one per thread.
struct GeometryFrustumCtx {
    enum Mode : unsigned int {
        MODE_OVERLAP = 0,      // counts primitives that may overlap it
        MODE_CONTAINMENT = 1,  // counts primitives that lie within it
        MODE_MARK = 2,         // marks the vertices of every primitive asked about
        MODE_MARK_MORE = 3,    // the same
    };

    GeometryFrustumPlane side_planes[4];
    unsigned int side_plane_count = 0;  // at most 4
    GeometryFrustumPlane front_plane;
    GeometryFrustumPlane back_plane;
    Mode mode = MODE_OVERLAP;
    unsigned int accepted_count = 0;
    bool is_rejected = false;               // some primitive asked about; never cleared
    unsigned char* vertex_marks = nullptr;  // a byte per vertex, for the marking modes; not owned
};
