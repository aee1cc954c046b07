#pragma once

#include <tools/qzpoly/pictures/camera.h>
#include <tools/qzpoly/pictures/hit_search.h>
#include <tools/qzpoly/pictures/image.h>

#include <vector>

// The light on a geometry: a soft key light over the viewer's shoulder, a sky all around, light
// thrown back by the ground, and a little from everywhere and from the viewer. Key and sky cast
// shadows. Light directions follow from the pixel and the sample alone: the pixels of a square of
// 4 x 4 take different ones, each sample of a pixel too, so that shadows are soft without noise.
class ToolLighting {
  public:
    // One sample of a pixel.
    struct Place {
        unsigned int x;
        unsigned int y;
        unsigned int sample;
    };

    // `occlusion_rays`: for a sample; 0: key and sky, else how open a place is, alone, is its
    // light. `size`: the geometry's, which tells how far shadow rays start off the surface, and
    // what is near enough to close a place.
    ToolLighting(ToolCamera const& camera, unsigned int const& samples_per_pixel,
                 unsigned int const& occlusion_rays, double const& size);

    // The light that a white surface at `position` throws to the viewer. `normal` and `flat_normal`
    // (of shading, and of the surface itself) are unit vectors facing the viewer; `time` is that of
    // the shadow rays.
    ToolColor compute(ToolHitSearch const& search, CtxEval const& ctx,
                      GMathVec3<double> const& position, GMathVec3<double> const& normal,
                      GMathVec3<double> const& flat_normal, double const& time,
                      Place const& place) const;

    // What share of the light reaches the ground at `position`.
    float compute_ground_share(ToolHitSearch const& search, CtxEval const& ctx,
                               GMathVec3<double> const& position, double const& time,
                               Place const& place) const;

  private:
    static constexpr unsigned int s_sky_rays = 3;  // per sample

    // The entry of `m_key`, and the first of `m_sky`.
    static unsigned int get_key_number(Place const& place);
    static unsigned int get_sky_number(Place const& place);
    // The share of rays around a normal that meet nothing near, most of them steep.
    float compute_openness(ToolHitSearch const& search, CtxEval const& ctx,
                           GMathVec3<double> const& start, GMathVec3<double> const& normal,
                           GMathVec3<double> const& flat_normal, double const& time,
                           Place const& place) const;
    bool is_lit(ToolHitSearch const& search, CtxEval const& ctx, GMathVec3<double> const& start,
                GMathVec3<double> const& direction, double const& time, double const& reach) const;
    ToolColor get_sky(GMathVec3<double> const& direction) const;

    GMathVec3<double> m_vertical;
    GMathVec3<double> m_to_viewer;
    std::vector<GMathVec3<double>> m_key;  // to points of the key light
    std::vector<GMathVec3<double>> m_sky;  // over the upper hemisphere
    double m_offset;
    double m_occlusion_reach;
    unsigned int m_samples_per_pixel;
    unsigned int m_occlusion_rays;
};
