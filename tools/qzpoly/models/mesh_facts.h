#pragma once

#include <poly/mesh/poly_mesh.h>

#include <map>
#include <string>
#include <vector>

// What a mesh is made of.
struct ToolGroupFacts {
    std::string name;
    unsigned int polygon_count = 0;
    GMathBbox3<double> bbox;  // inverted for a group without valid corners
};

struct ToolMapFacts {
    char const* kind;
    std::string name;
    unsigned int value_count = 0;
    bool is_by_vertex = false;  // one value per vertex; else an index per corner
};

struct ToolMeshFacts {
    unsigned int vertex_count = 0;
    unsigned int polygon_count = 0;
    std::map<unsigned int, unsigned int> polygons_by_corners;
    unsigned int primitive_count = 0;
    unsigned int triangle_count = 0;
    unsigned int quad_count = 0;
    unsigned int degenerate_count = 0;  // triangles of polygons that could only be cut into a fan
    unsigned int crease_count = 0;
    std::vector<ToolGroupFacts> groups;
    std::vector<ToolMapFacts> maps;
    GMathBbox3<double> bbox;
    double area = 0;  // of all primitives, at rest; may be no number
    std::string key;  // 32 hexadecimal digits, in storage order
};

ToolMeshFacts find_facts(PolyMesh const& mesh);
