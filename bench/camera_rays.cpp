#include <bench/camera_rays.h>

#include <algorithm>

std::vector<GeometryRay> make_camera_rays(BenchMesh const& mesh, unsigned int const& size) {
    using Vec = GMathVec3<double>;
    Vec low(mesh.positions[0]), high(mesh.positions[0]);
    for (GMathVec3<float> const& p : mesh.positions) {
        for (unsigned int axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], static_cast<double>(p[axis]));
            high[axis] = std::max(high[axis], static_cast<double>(p[axis]));
        }
    }
    Vec const centre = (low + high) * 0.5;
    double const radius = gmath_length(high - low) * 0.5;
    Vec const back = gmath_unit(Vec(0.3, 0.4, 1));
    Vec const right = gmath_unit(gmath_cross(Vec(0, 1, 0), back));
    Vec const up = gmath_cross(back, right);
    Vec const eye = centre + back * (3 * radius);
    std::vector<GeometryRay> rays;
    for (unsigned int i = 0; i < size * size; ++i) {  // in tiles of 4 x 2
        unsigned int const tile = i / 8, tiles = size / 4;
        unsigned int const column = tile % tiles * 4 + i % 4, line = tile / tiles * 2 + i % 8 / 4;
        double const x = column + 0.5, y = line + 0.5;
        Vec const target =
            centre + right * ((2 * x / size - 1) * radius) + up * ((2 * y / size - 1) * radius);
        GeometryRay ray;
        ray.ray = GMathBasicRay(eye, gmath_unit(target - eye));
        rays.push_back(ray);
    }
    return rays;
}
