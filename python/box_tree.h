#pragma once

#include <platform/qz_geometry.h>

#include <vector>

// A tree of boxes over the primitives of a geometry, at rest or at a time, which finds the nearest
// hit of a ray. Boxes that are no numbers are left out. The geometry must outlive the tree
// unchanged. Any number of threads may search at once.
class PythonBoxTree {
  public:
    // `time` null: at rest.
    PythonBoxTree(GeometryObject const& geometry, double const* time);

    // The nearest hit; of equally near ones that of the lowest primitive.
    GeometryHit find_nearest(GeometryRay const& ray,
                             GeometryRaytraceCtx::TestMode const& test_mode) const;

  private:
    struct Node {
        GMathBbox3<double> box = GMathBbox3<double>::get_inverted();
        unsigned int first = 0;  // of m_primitives
        unsigned int last = 0;   // one past
        unsigned int right = 0;  // the other child is the next node; 0: a leaf
    };

    unsigned int build(unsigned int const& first, unsigned int const& last);
    void test(Node const& leaf, GeometryRay const& ray,
              GeometryRaytraceCtx::TestMode const& test_mode, GeometryHit& nearest) const;

    GeometryObject const& m_geometry;
    bool m_is_moving;
    std::vector<GMathBbox3<double>> m_boxes;  // of all primitives
    std::vector<unsigned int> m_primitives;   // in the order of the leaves
    std::vector<Node> m_nodes;
};
