#pragma once

// qz_geometry: the interface that a renderer sees, and the records that pass through it.

#include <platform/qz_geometry/geometry_compressed_vertices.h>
#include <platform/qz_geometry/geometry_descriptor.h>
#include <platform/qz_geometry/geometry_fragment.h>
#include <platform/qz_geometry/geometry_frustum_ctx.h>
#include <platform/qz_geometry/geometry_maps.h>
#include <platform/qz_geometry/geometry_object.h>
#include <platform/qz_geometry/geometry_point_cloud.h>
#include <platform/qz_geometry/geometry_position_array.h>
#include <platform/qz_geometry/geometry_property.h>
#include <platform/qz_geometry/geometry_raytrace_ctx.h>
#include <platform/qz_geometry/geometry_sample.h>
