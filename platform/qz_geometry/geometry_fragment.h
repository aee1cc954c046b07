#pragma once

// A place on a geometry: a point of a primitive, or one of the points (for properties: the items)
// themselves, at a time. An index of 0xFFFFFFFF names nothing. Of two valid ones samples take the
// primitive, and properties by vertex the item.
struct GeometryFragment {
    unsigned int point_index = 0xFFFFFFFFu;
    unsigned int primitive_index = 0xFFFFFFFFu;
    double s = 0.0;  // parameters on the primitive, in [0, 1]
    double t = 0.0;
    double time = 0.0;
    double time_step = 0.0;  // how much later the motion vector looks; 0: no motion is wanted
};
