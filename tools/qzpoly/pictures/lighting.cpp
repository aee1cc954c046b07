#include <tools/qzpoly/pictures/lighting.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr double pi = std::numbers::pi;
constexpr double golden_angle = pi * (3.0 - 2.23606797749979);  // of spiral points on a sphere
constexpr double key_radius = 0.11;  // of the key light at distance 1: softness of its shadow
constexpr double everywhere = std::numeric_limits<double>::max();
constexpr double relative_offset = 2e-5;  // of shadow rays, to the size of the geometry

constexpr ToolColor key_light(0.90f, 0.86f, 0.80f);
constexpr ToolColor sky_above(0.40f, 0.43f, 0.48f);
constexpr ToolColor sky_at_horizon(0.44f, 0.44f, 0.44f);
constexpr ToolColor ground_light(0.20f, 0.19f, 0.17f);
constexpr ToolColor light_from_everywhere(0.07f, 0.07f, 0.075f);
constexpr float viewer_light = 0.13f;

// The order in which the pixels of a square take their turns: neighbours are far apart in it.
constexpr unsigned int pixel_count = 16;
constexpr unsigned int pixel_order[4][4] = {
    {0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};

float luminance(ToolColor const& c) { return 0.2126f * c.x + 0.7152f * c.y + 0.0722f * c.z; }

}  // namespace

ToolLighting::ToolLighting(ToolCamera const& camera, unsigned int const& samples_per_pixel,
                           unsigned int const& occlusion_rays, double const& size)
    : m_vertical(camera.vertical),
      m_to_viewer(-camera.forward),
      m_offset(size * relative_offset),
      m_occlusion_reach(size),
      m_samples_per_pixel(samples_per_pixel),
      m_occlusion_rays(occlusion_rays) {
    GMathVec3<double> const to_viewer = gmath_cross(camera.right, m_vertical);
    GMathVec3<double> const key =
        gmath_unit(camera.right * -0.62 + m_vertical * 0.88 + to_viewer * 0.92);
    GMathVec3<double> const across = gmath_unit(gmath_cross(key, camera.right));
    GMathVec3<double> const along = gmath_cross(across, key);
    // A sample keeps to its ring of the key light and its bands of the sky; the pixels of a square
    // turn them, two by two by quarter turns, so that every four pixels see all sides.
    m_key.resize(samples_per_pixel * pixel_count);
    m_sky.resize(m_key.size() * s_sky_rays);
    for (unsigned int i = 0; i < m_key.size(); ++i) {
        unsigned int const sample = i / pixel_count;
        double const turn = (i % pixel_count + 0.5) / pixel_count;
        double const radius = key_radius * std::sqrt((sample + turn) / samples_per_pixel);
        double const key_angle = golden_angle * sample + 2 * pi * turn;
        m_key[i] = gmath_unit(key + across * (radius * std::cos(key_angle)) +
                              along * (radius * std::sin(key_angle)));
        for (unsigned int ray = 0; ray < s_sky_rays; ++ray) {
            unsigned int const band = ray * samples_per_pixel + sample;
            double const height = (band + turn) / (samples_per_pixel * s_sky_rays);
            double const reach = std::sqrt(1 - height * height);
            double const angle = golden_angle * band + 2 * pi * turn;
            m_sky[i * s_sky_rays + ray] = camera.right * (reach * std::cos(angle)) +
                                          to_viewer * (reach * std::sin(angle)) +
                                          m_vertical * height;
        }
    }
}

unsigned int ToolLighting::get_key_number(Place const& place) {
    return place.sample * pixel_count + pixel_order[place.y % 4][place.x % 4];
}

unsigned int ToolLighting::get_sky_number(Place const& place) {
    return get_key_number(place) * s_sky_rays;
}

bool ToolLighting::is_lit(ToolHitSearch const& search, CtxEval const& ctx,
                          GMathVec3<double> const& start, GMathVec3<double> const& direction,
                          double const& time, double const& reach) const {
    GeometryRay ray;
    ray.ray = GMathBasicRay(start, direction);
    ray.maximum_distance = reach;
    ray.time = time;
    return !search.is_blocked(ctx, ray);
}

ToolColor ToolLighting::get_sky(GMathVec3<double> const& direction) const {
    float const height = static_cast<float>(gmath_dot(direction, m_vertical));
    return sky_at_horizon * (1.0f - height) + sky_above * height;
}

float ToolLighting::compute_openness(ToolHitSearch const& search, CtxEval const& ctx,
                                     GMathVec3<double> const& start,
                                     GMathVec3<double> const& normal,
                                     GMathVec3<double> const& flat_normal, double const& time,
                                     Place const& place) const {
    GMathVec3<double> const aside =
        std::fabs(normal.x) < 0.6 ? GMathVec3<double>(1, 0, 0) : GMathVec3<double>(0, 1, 0);
    GMathVec3<double> const across = gmath_unit(gmath_cross(normal, aside));
    GMathVec3<double> const along = gmath_cross(normal, across);
    double const turn = (pixel_order[place.y % 4][place.x % 4] + 0.5) / pixel_count;
    unsigned int const all = m_samples_per_pixel * m_occlusion_rays;
    unsigned int open_count = 0;
    for (unsigned int ray = 0; ray < m_occlusion_rays; ++ray) {
        // Even on the disk beneath the hemisphere: as many as their cosine says.
        unsigned int const ring = ray * m_samples_per_pixel + place.sample;
        double const square = (ring + turn) / all;
        double const radius = std::sqrt(square);
        double const angle = golden_angle * ring + 2 * pi * turn;
        GMathVec3<double> const direction = across * (radius * std::cos(angle)) +
                                            along * (radius * std::sin(angle)) +
                                            normal * std::sqrt(1 - square);
        open_count += gmath_dot(flat_normal, direction) > 0 &&
                              is_lit(search, ctx, start, direction, time, m_occlusion_reach)
                          ? 1
                          : 0;
    }
    return static_cast<float>(open_count) / static_cast<float>(m_occlusion_rays);
}

ToolColor ToolLighting::compute(ToolHitSearch const& search, CtxEval const& ctx,
                                GMathVec3<double> const& position, GMathVec3<double> const& normal,
                                GMathVec3<double> const& flat_normal, double const& time,
                                Place const& place) const {
    GMathVec3<double> const start = position + flat_normal * m_offset;
    if (m_occlusion_rays != 0) {
        return ToolColor(1, 1, 1) *
               compute_openness(search, ctx, start, normal, flat_normal, time, place);
    }
    auto const arrives = [&](GMathVec3<double> const& direction) {
        return gmath_dot(flat_normal, direction) > 0 &&
               is_lit(search, ctx, start, direction, time, everywhere);
    };
    float const height = static_cast<float>(gmath_dot(normal, m_vertical));
    float const towards = static_cast<float>(gmath_dot(normal, m_to_viewer));
    ToolColor light = light_from_everywhere + ground_light * (0.5f - 0.5f * height) +
                      ToolColor(1, 1, 1) * (viewer_light * std::max(towards, 0.0f));

    GMathVec3<double> const& key = m_key[get_key_number(place)];
    double const key_cosine = gmath_dot(normal, key);
    if (key_cosine > 0 && arrives(key)) {
        light += key_light * static_cast<float>(key_cosine);
    }
    unsigned int const first_sky = get_sky_number(place);
    for (unsigned int i = first_sky; i < first_sky + s_sky_rays; ++i) {
        double const cosine = gmath_dot(normal, m_sky[i]);
        if (cosine > 0 && arrives(m_sky[i])) {
            // An even sky is met with cosine 1/2 on average.
            light += get_sky(m_sky[i]) * static_cast<float>(2 * cosine / s_sky_rays);
        }
    }
    return light;
}

float ToolLighting::compute_ground_share(ToolHitSearch const& search, CtxEval const& ctx,
                                         GMathVec3<double> const& position, double const& time,
                                         Place const& place) const {
    GMathVec3<double> const start = position + m_vertical * m_offset;
    if (m_occlusion_rays != 0) {
        return compute_openness(search, ctx, start, m_vertical, m_vertical, time, place);
    }
    float all = luminance(light_from_everywhere);
    float arriving = all;
    auto const add = [&](GMathVec3<double> const& direction, ToolColor const& light,
                         double const& weight) {
        double const cosine = gmath_dot(direction, m_vertical);
        float const amount = luminance(light) * static_cast<float>(cosine * weight);
        all += amount;
        arriving += is_lit(search, ctx, start, direction, time, everywhere) ? amount : 0.0f;
    };
    add(m_key[get_key_number(place)], key_light, 1);
    unsigned int const first_sky = get_sky_number(place);
    for (unsigned int i = first_sky; i < first_sky + s_sky_rays; ++i) {
        add(m_sky[i], get_sky(m_sky[i]), 2.0 / s_sky_rays);
    }
    return arriving / all;
}
