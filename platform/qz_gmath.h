#pragma once

// qz_gmath: vectors, boxes, matrices, time samplings, rays, packed normals and lanes.

#include <platform/qz_gmath/gmath_basic_ray.h>
#include <platform/qz_gmath/gmath_bbox3.h>
#include <platform/qz_gmath/gmath_half_float_converter.h>
#include <platform/qz_gmath/gmath_lanes.h>
#include <platform/qz_gmath/gmath_matrix.h>
#include <platform/qz_gmath/gmath_scalar.h>
#include <platform/qz_gmath/gmath_short_normal.h>
#include <platform/qz_gmath/gmath_time_sampling.h>
#include <platform/qz_gmath/gmath_vec.h>
