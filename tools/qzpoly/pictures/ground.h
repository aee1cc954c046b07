#pragma once

#include <tools/qzpoly/models/extent.h>
#include <tools/qzpoly/pictures/camera.h>

// The plane that a geometry stands on. It is not seen itself: the shadow on it darkens the
// background.
class ToolGround {
  public:
    ToolGround(ToolExtent const& extent, ToolCamera const& camera);

    // The geometry's: half the diagonal of its box.
    double const& get_size() const { return m_size; }

    // Where a ray meets the ground, and how strongly shadows show there: 1 near the geometry down
    // to 0 far away. False where they do not show at all.
    bool find(GMathBasicRay const& ray, GMathVec3<double>& position, float& strength) const;

  private:
    GMathVec3<double> m_vertical;
    GMathVec3<double> m_center;  // of the geometry's box, on the ground
    double m_size;
    bool m_is_seen;  // from above
};
