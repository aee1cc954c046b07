#pragma once

#include <platform/qz_gmath.h>

// What a geometry tells of one of its places. The vectors are kept as given; the normalised forms
// are computed when they are asked for. A part that was not given reads as zero.
class GeometrySample {
  public:
    enum Kind { KIND_NONE, KIND_POINT, KIND_SURFACE };

    GeometrySample() { clear(); }

    void clear() { *this = GeometrySample(KIND_NONE); }

    // A place on a surface: position, first derivatives by s and t, and the normal's derivatives.
    // Without `set_smoothing` the surface shades by its geometric normal.
    void init_surface(GMathVec3<float> const& position, GMathVec3<float> const& position_ds,
                      GMathVec3<float> const& position_dt, GMathVec3<float> const& normal_ds,
                      GMathVec3<float> const& normal_dt) {
        *this = GeometrySample(KIND_SURFACE);
        m_position = position;
        m_position_ds = position_ds;
        m_position_dt = position_dt;
        m_normal_ds = normal_ds;
        m_normal_dt = normal_dt;
        m_smooth_position = position;
    }
    // The position and normal to shade with, the normal of any length, and its derivatives.
    void set_smoothing(GMathVec3<float> const& position, GMathVec3<float> const& normal,
                       GMathVec3<float> const& normal_ds, GMathVec3<float> const& normal_dt) {
        m_smooth_position = position;
        m_normal = normal;
        m_normal_ds = normal_ds;
        m_normal_dt = normal_dt;
        m_has_smoothing = true;
    }
    // Where the place is one time step later.
    void set_geometric_position_dt(GMathVec3<float> const& position) {
        m_later_position = position;
        m_has_motion = true;
    }
    // A point without a surface.
    void init_point(GMathVec3<float> const& position) {
        *this = GeometrySample(KIND_POINT);
        m_position = position;
        m_smooth_position = position;
    }
    // A point with a normal; `is_two_sided` lets it face either way.
    void init_point(GMathVec3<float> const& position, GMathVec3<float> const& normal,
                    bool const& is_two_sided) {
        init_point(position);
        m_normal = normal;
        m_has_smoothing = true;
        m_is_two_sided = is_two_sided;
    }

    Kind const& get_kind() const { return m_kind; }
    GMathVec3<float> const& get_position() const { return m_position; }
    GMathVec3<float> const& get_position_ds() const { return m_position_ds; }
    GMathVec3<float> const& get_position_dt() const { return m_position_dt; }
    GMathVec3<float> const& get_smooth_position() const { return m_smooth_position; }
    GMathVec3<float> const& get_normal() const { return m_normal; }
    GMathVec3<float> const& get_normal_ds() const { return m_normal_ds; }
    GMathVec3<float> const& get_normal_dt() const { return m_normal_dt; }
    GMathVec3<float> const& get_geometric_position_dt() const { return m_later_position; }
    bool const& has_smoothing() const { return m_has_smoothing; }
    bool const& has_motion() const { return m_has_motion; }
    bool const& is_two_sided() const { return m_is_two_sided; }

    // The unit vector of ds x dt: the side that corners run around counter-clockwise. Zero for a
    // point and where the surface is degenerate.
    GMathVec3<float> get_geometric_normal() const {
        return gmath_unit(gmath_cross(m_position_ds, m_position_dt));
    }
    // The given normal as a unit vector; the geometric one when none was given or it is zero.
    GMathVec3<float> get_shading_normal() const {
        GMathVec3<float> const zero(0, 0, 0);
        return m_has_smoothing && !(m_normal == zero) ? gmath_unit(m_normal)
                                                      : get_geometric_normal();
    }
    // How far the place moves in one time step; zero without motion.
    GMathVec3<float> get_motion_vector() const {
        return m_has_motion ? m_later_position - m_position : GMathVec3<float>(0, 0, 0);
    }

  private:
    explicit GeometrySample(Kind const& kind) : m_kind(kind) {}

    GMathVec3<float> m_position{0, 0, 0};
    GMathVec3<float> m_position_ds{0, 0, 0};
    GMathVec3<float> m_position_dt{0, 0, 0};
    GMathVec3<float> m_smooth_position{0, 0, 0};
    GMathVec3<float> m_normal{0, 0, 0};
    GMathVec3<float> m_normal_ds{0, 0, 0};
    GMathVec3<float> m_normal_dt{0, 0, 0};
    GMathVec3<float> m_later_position{0, 0, 0};
    Kind m_kind;
    bool m_has_smoothing = false;
    bool m_has_motion = false;
    bool m_is_two_sided = false;
};
