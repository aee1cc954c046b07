#include <tools/qzpoly/pictures/renderer.h>

#include <tools/qzpoly/models/blocks.h>
#include <tools/qzpoly/pictures/ground.h>
#include <tools/qzpoly/pictures/lighting.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr unsigned int tile_size = 16;

// Where in its pixel a sample lies: the plastic-number sequence, which fills a square evenly.
double get_offset(unsigned int const& sample, double const& step) {
    double const value = 0.5 + sample * step;
    return value - std::floor(value);
}

// A number in [0, 1) by pixel, so that neighbours look at different times.
double get_pixel_phase(unsigned int const& x, unsigned int const& y) {
    unsigned int h = x * 0x9E3779B1u ^ y * 0x85EBCA77u;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
    h = (h ^ (h >> 12)) * 0x297A2D39u;
    return (h >> 8) * (1.0 / 16777216.0);
}

// Lets bright light run out towards white.
float soften(float const& value) {
    constexpr float knee = 0.7f;
    constexpr float rest = 1.0f - knee;
    return value < knee ? value : knee + rest * (1.0f - std::exp((knee - value) / rest));
}

ToolColor get_background(double const& height) {
    float const f = static_cast<float>(height);
    return from_display(0.93f - 0.13f * f, 0.93f - 0.10f * f, 0.93f - 0.07f * f);
}

// Everything that the threads share; they only read it, but for the tiles.
class Renderer {
  public:
    Renderer(GeometryObject const& geometry, ToolExtent const& extent, ToolHitSearch const* search,
             ToolCamera const& camera, ToolRenderSettings const& settings)
        : m_geometry(geometry),
          m_search(search),
          m_camera(camera),
          m_settings(settings),
          m_ground(extent, camera),
          m_lighting(camera, settings.samples_per_pixel, settings.occlusion_rays,
                     m_ground.get_size()) {}

    void draw_pixel(CtxEval const& ctx, unsigned int const& x, unsigned int const& y,
                    ToolImage& image) const {
        ToolColor sum(0, 0, 0);
        for (unsigned int sample = 0; sample < m_settings.samples_per_pixel; ++sample) {
            sum += trace(ctx, x, y, sample);
        }
        image.set_pixel(x, y, sum / static_cast<float>(m_settings.samples_per_pixel));
    }

  private:
    ToolColor trace(CtxEval const& ctx, unsigned int const& x, unsigned int const& y,
                    unsigned int const& sample) const {
        double const px = x + get_offset(sample, 0.7548776662466927);
        double const py = y + get_offset(sample, 0.5698402909980532);
        GeometryRay ray;
        ray.ray = m_camera.make_ray(px, py);
        ray.time = get_time(x, y, sample);
        GeometryHit hit;
        if (m_search != nullptr && m_search->find_nearest(ctx, ray, hit)) {
            return shade(ctx, ray, hit, px, py, {x, y, sample});
        }
        ToolColor const background =
            m_settings.background.value_or(get_background(1 - py / m_camera.height));
        return background * get_ground_share(ctx, ray, {x, y, sample});
    }

    double get_time(unsigned int const& x, unsigned int const& y,
                    unsigned int const& sample) const {
        double const place = (sample + get_pixel_phase(x, y)) / m_settings.samples_per_pixel;
        return m_settings.shutter_open +
               (m_settings.shutter_close - m_settings.shutter_open) * place;
    }

    float get_ground_share(CtxEval const& ctx, GeometryRay const& ray,
                           ToolLighting::Place const& place) const {
        GMathVec3<double> position;
        float strength = 0;
        if (m_search == nullptr || !m_settings.shade_mode->is_lit ||
            !m_ground.find(ray.ray, position, strength)) {
            return 1;
        }
        float const share =
            m_lighting.compute_ground_share(*m_search, ctx, position, ray.time, place);
        return 1 + (share - 1) * strength;
    }

    ToolColor shade(CtxEval const& ctx, GeometryRay const& ray, GeometryHit const& hit,
                    double const& px, double const& py, ToolLighting::Place const& place) const {
        GeometryFragment fragment;
        fragment.primitive_index = hit.primitive_index;
        fragment.s = hit.s;
        fragment.t = hit.t;
        fragment.time = ray.time;
        GeometrySample surface;
        m_geometry.compute_fragment_sample(ctx, fragment, surface);

        GMathVec3<double> const to_viewer = -ray.ray.get_direction();
        GMathVec3<double> flat(surface.get_geometric_normal());
        GMathVec3<double> normal(surface.get_shading_normal());
        bool const is_front = gmath_dot(flat, to_viewer) >= 0;
        if (!is_front) {
            flat = -flat;
            normal = -normal;
        }
        // Normals that are zero or no numbers, as those of broken surfaces.
        flat = gmath_length(flat) > 0.5 ? flat : to_viewer;
        normal = gmath_length(normal) > 0.5 ? normal : flat;

        ToolColor color = m_settings.shade_mode->get_color(
            {m_geometry, ctx, fragment, normal, is_front, m_settings.appearance});
        if (m_settings.shade_mode->is_lit) {
            ToolColor const light =
                m_lighting.compute(*m_search, ctx, get_shadow_start(surface, flat, is_front),
                                   normal, flat, ray.time, place);
            color = {soften(color.x * light.x), soften(color.y * light.y),
                     soften(color.z * light.z)};
        }
        for (ToolEdgeLayer const& layer : m_settings.edge_layers) {
            draw_edges(m_geometry, layer, ctx, fragment, m_camera, px, py, color);
        }
        return color;
    }

    // The smooth surface bulges over the flat one, so shadows from it do not show the primitives.
    static GMathVec3<double> get_shadow_start(GeometrySample const& surface,
                                              GMathVec3<double> const& flat, bool const& is_front) {
        GMathVec3<double> const position(surface.get_position());
        GMathVec3<double> const smooth(surface.get_smooth_position());
        double const bulge = gmath_dot(smooth - position, flat);
        return is_front && bulge > 0 ? position + flat * bulge : position;
    }

    GeometryObject const& m_geometry;
    ToolHitSearch const* m_search;
    ToolCamera const& m_camera;
    ToolRenderSettings const& m_settings;
    ToolGround m_ground;
    ToolLighting m_lighting;
};

}  // namespace

bool render(GeometryObject const& geometry, ToolExtent const& extent, ToolHitSearch const* search,
            CtxEval const& ctx, ToolCamera const& camera, ToolRenderSettings const& settings,
            AppProgressBar& progress, ToolImage& image) {
    image = ToolImage(camera.width, camera.height);
    Renderer const renderer(geometry, extent, search, camera, settings);
    unsigned int const columns = (camera.width + tile_size - 1) / tile_size;
    unsigned int const rows = (camera.height + tile_size - 1) / tile_size;
    return work_in_blocks(
        columns * rows, settings.thread_count, progress, [&](unsigned int const& tile) {
            CtxEval const tile_ctx(ctx.get_shader_ctx());
            unsigned int const left = tile % columns * tile_size;
            unsigned int const top = tile / columns * tile_size;
            for (unsigned int y = top; y < std::min(top + tile_size, camera.height); ++y) {
                for (unsigned int x = left; x < std::min(left + tile_size, camera.width); ++x) {
                    renderer.draw_pixel(tile_ctx, x, y, image);
                }
            }
        });
}
