#pragma once

#include <platform/qz_core.h>
#include <platform/qz_gmath.h>

// Maps as they are exchanged. Each has values, the number of the value that every polygon corner
// takes (0xFFFFFFFF: none), and a name. Without indices, there is one value per vertex.
template <typename T>
struct GeometryMap {
    CoreArray<T> values;
    CoreArray<unsigned int> indices;  // one per polygon corner, or empty
    CoreString name;
};

struct GeometryUvMap : GeometryMap<GMathVec3<float>> {};             // u, v, w
struct GeometryNormalMap : GeometryMap<GMathVec3<float>> {};         // of finite length above 0
struct GeometryColorMap : GeometryMap<GMathVec4<unsigned char>> {};  // red, green, blue, alpha
