#include <bench/camera_rays.h>

#include <algorithm>
#include <random>

namespace {

using Vec = GMathVec3<double>;

class Camera {
  public:
    explicit Camera(BenchMesh const& mesh) {
        Vec low(mesh.positions[0]), high(mesh.positions[0]);
        for (GMathVec3<float> const& p : mesh.positions) {
            for (unsigned int axis = 0; axis < 3; ++axis) {
                low[axis] = std::min(low[axis], static_cast<double>(p[axis]));
                high[axis] = std::max(high[axis], static_cast<double>(p[axis]));
            }
        }
        m_centre = (low + high) * 0.5;
        double const radius = gmath_length(high - low) * 0.5;
        Vec const back = gmath_unit(Vec(0.3, 0.4, 1));
        m_right = gmath_cross(Vec(0, 1, 0), back);
        m_right = gmath_unit(m_right) * radius;
        m_up = gmath_cross(back, gmath_unit(m_right)) * radius;
        m_eye = m_centre + back * (3 * radius);
    }

    // Through a place in a picture of so many pixels.
    GeometryRay get_ray(double const& x, double const& y, unsigned int const& size) const {
        Vec const target = m_centre + m_right * (2 * x / size - 1) + m_up * (2 * y / size - 1);
        GeometryRay ray;
        ray.ray = GMathBasicRay(m_eye, gmath_unit(target - m_eye));
        return ray;
    }

  private:
    Vec m_centre, m_right, m_up, m_eye;
};

}  // namespace

std::vector<GeometryRay> make_camera_rays(BenchMesh const& mesh, unsigned int const& size) {
    Camera const camera(mesh);
    std::vector<GeometryRay> rays;
    for (unsigned int i = 0; i < size * size; ++i) {  // in tiles of 4 x 2
        unsigned int const tile = i / 8, tiles = size / 4;
        unsigned int const column = tile % tiles * 4 + i % 4, line = tile / tiles * 2 + i % 8 / 4;
        rays.push_back(camera.get_ray(column + 0.5, line + 0.5, size));
    }
    return rays;
}

std::vector<GeometryRay> make_sample_rays(BenchMesh const& mesh) {
    constexpr unsigned int picture_size = 1024, size = 64, first = (picture_size - size) / 2;
    Camera const camera(mesh);
    std::mt19937 random(5);
    auto const get_number = [&] { return static_cast<double>(random()) * 0x1p-32; };
    std::vector<GeometryRay> rays;
    for (unsigned int i = 0; i < 8 * size * size; ++i) {
        unsigned int const column = first + i / 8 % size, line = first + i / 8 / size;
        double const x = column + get_number();
        rays.push_back(camera.get_ray(x, line + get_number(), picture_size));
    }
    return rays;
}
