#pragma once

#include <platform/qz_gmath/gmath_vec.h>

// A ray in 64-bit floats. The direction need not have unit length: distances along the ray are in
// units of its length.
class GMathBasicRay {
  public:
    GMathBasicRay() : m_origin(0, 0, 0), m_direction(0, 0, 1) {}
    GMathBasicRay(GMathVec3<double> const& origin, GMathVec3<double> const& direction)
        : m_origin(origin), m_direction(direction) {}

    GMathVec3<double> const& get_origin() const { return m_origin; }
    GMathVec3<double> const& get_direction() const { return m_direction; }

  private:
    GMathVec3<double> m_origin;
    GMathVec3<double> m_direction;
};
