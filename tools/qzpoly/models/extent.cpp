#include <tools/qzpoly/models/extent.h>

#include <cmath>

namespace {

bool is_within_limits(GMathVec3<double> const& p) {
    // Written so that a NaN fails.
    return std::abs(p.x) <= tool_largest_coordinate && std::abs(p.y) <= tool_largest_coordinate &&
           std::abs(p.z) <= tool_largest_coordinate;
}

void add_box(GMathBbox3<double> const& box, ToolExtent& extent) {
    extent.primitive_boxes.push_back(box);
    extent.bbox.extend(box.minimum);
    extent.bbox.extend(box.maximum);
}

// The half of a primitive that holds (s, t); the derivatives span the parallelogram of that half.
void add_area(GeometryObject const& geometry, CtxEval const& ctx, unsigned int const& primitive,
              double const& s, double const& t, ToolExtent& extent) {
    GeometryFragment fragment;
    fragment.primitive_index = primitive;
    fragment.s = s;
    fragment.t = t;
    GeometrySample sample;
    geometry.compute_fragment_sample(ctx, fragment, sample);
    GMathVec3<double> const vector = gmath_cross(GMathVec3<double>(sample.get_position_ds()),
                                                 GMathVec3<double>(sample.get_position_dt())) *
                                     0.5;
    double const area = gmath_length(vector);
    if (std::isfinite(area)) {
        extent.area_vector += vector;
        extent.area += area;
    }
}

}  // namespace

bool is_drawable(GMathBbox3<double> const& box) {
    return is_within_limits(box.minimum) && is_within_limits(box.maximum);
}

ToolExtent compute_extent(GeometryObject const& geometry, CtxEval const& ctx,
                          std::vector<double> const& times) {
    ToolExtent extent;
    unsigned int const count = geometry.get_primitive_count();
    extent.primitive_boxes.reserve(count);
    for (unsigned int primitive = 0; primitive < count; ++primitive) {
        GMathBbox3<double> box;
        if (times.empty()) {
            geometry.compute_primitive_bbox(ctx, primitive, box);
            if (is_drawable(box)) {
                add_box(box, extent);
            }
        }
        for (double const& time : times) {
            geometry.compute_primitive_bbox_at(ctx, primitive, time, box);
            if (is_drawable(box)) {
                add_box(box, extent);
            }
        }
        add_area(geometry, ctx, primitive, 0.25, 0.5, extent);
        if (geometry.get_primitive_edge_count(primitive) == 4) {
            add_area(geometry, ctx, primitive, 0.5, 0.25, extent);
        }
    }
    return extent;
}
