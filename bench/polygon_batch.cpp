#include <bench/polygon_batch.h>

#include <cmath>
#include <numbers>
#include <random>

namespace {

using Point = GMathVec2<double>;

Point at_angle(double const& angle, double const& radius) {
    return {radius * std::cos(angle), radius * std::sin(angle)};
}

// Corner i of n.
Point get_corner(std::string const& shape, unsigned int const& i, unsigned int const& n,
                 std::mt19937& random) {
    double const turn = 2 * std::numbers::pi * i / n;
    unsigned int const half = n / 2;
    if (shape == "convex") {
        return at_angle(turn, 1);
    }
    if (shape == "star") {
        return at_angle(turn, 1 + i % 2);
    }
    if (shape == "comb") {  // a back, and teeth from its end to its start
        return i < 2 ? Point(i * n, 0) : Point(n - i, i % 2 != 0 ? 9 : 1);
    }
    if (shape == "spiral") {  // outwards, and back beside itself
        double const angle = 40.0 * (i < half ? i : n - 1 - i) / n;
        return at_angle(angle, (i < half ? 1.0 : 0.6) + angle / 6.2);
    }
    if (shape == "crescent") {  // its inner arc is nearer to the outer one than ears are deep
        double const step = 3.0 / half;
        return i < half ? at_angle(i * step, 1)
                        : at_angle((half - 1.4 - (i - half)) * step, 0.5 + 0.5 * std::cos(step));
    }
    return at_angle(turn, 0.5 + 0.5 * static_cast<double>(random()) * 0x1p-32);
}

}  // namespace

PolygonBatch make_polygon_batch(std::string const& shape, unsigned int const& corner_count,
                                unsigned int const& polygon_count) {
    PolygonBatch batch;
    std::mt19937 random(3);
    for (unsigned int k = 0; k < polygon_count; ++k) {
        auto& flat = batch.flat.emplace_back();
        auto& positions = batch.positions.emplace_back();
        double const angle = 2 * std::numbers::pi * k / polygon_count;
        for (unsigned int i = 0; i < corner_count; ++i) {
            Point const p = get_corner(shape, i, corner_count, random);
            double const x = p.x * std::cos(angle) - p.y * std::sin(angle);
            double const y = p.x * std::sin(angle) + p.y * std::cos(angle);
            flat.emplace_back(static_cast<float>(x), static_cast<float>(y));
            positions.emplace_back(GMathVec3<double>(0.6 * x - 0.8 * y, 0.7 * x, 0.7 * y));
        }
    }
    for (unsigned int i = 0; i < corner_count; ++i) {
        batch.indices.push_back(i);
    }
    return batch;
}
