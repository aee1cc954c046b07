#include <poly/topology/triangulate_polygon.h>

#include <tests/topology/plain_triangulation.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <string>

namespace {

using Position = GMathVec3<float>;
using Indices = std::vector<unsigned int>;

struct Polygon {
    std::vector<Position> positions;
    Indices indices;
};

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr unsigned int untouched = 0xABCDEF01u;

// The result; what is written must end where the returned count says.
Indices triangulate(Polygon const& polygon) {
    unsigned int const count = static_cast<unsigned int>(polygon.indices.size());
    Indices out(3 * std::max(count, 3u), untouched);
    unsigned int const written =
        triangulate_polygon(polygon.positions.data(), polygon.indices.data(), count, out.data());
    EXPECT_EQ(Indices(out.begin() + written, out.end()), Indices(out.size() - written, untouched));
    out.resize(written);
    return out;
}

TEST(TriangulatePolygon, KnownResults) {
    struct Row {
        char const* name;
        Polygon polygon;
        Indices expected;
    };
    std::vector<Position> const square = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {3, 0, 0}};
    Row const rows[] = {
        {"two corners", {square, {0, 1}}, {}},
        {"triangle without area", {square, {1, 1, 1}}, {0, 1, 2}},
        {"triangle of no numbers", {{{NAN, 0, 0}}, {0, 0, 0}}, {0, 1, 2}},
        {"convex quad", {square, {0, 1, 2, 3}}, {0, 1, 2, 3, 0, 2}},
        {"the same, clockwise", {square, {3, 2, 1, 0}}, {0, 1, 2, 3, 0, 2}},
        {"dart, reflex at its second corner",
         {{{4, 0, 0}, {1, 1, 0}, {0, 4, 0}, {0, 0, 0}}, {0, 1, 2, 3}},
         {1, 2, 3, 0, 1, 3}},
        {"collinear", {square, {0, 1, 4, 1}}, {}},
        {"first edge without length", {square, {0, 0, 1, 2, 3}}, {}},
        {"one point", {square, {2, 2, 2, 2, 2}}, {}},
        {"convex pentagon",
         {{{0, 0, 0}, {2, 0, 0}, {3, 2, 0}, {1, 3, 0}, {-1, 2, 0}}, {0, 1, 2, 3, 4}},
         {0, 1, 2, 3, 4, 0, 2, 3, 0}},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(triangulate(row.polygon), row.expected) << row.name;
    }
}

class Random {
  public:
    explicit Random(unsigned int const& seed) : m_engine(seed) {}
    unsigned int below(unsigned int const& end) {
        return static_cast<unsigned int>(m_engine()) % end;
    }
    float number() { return static_cast<float>(m_engine() >> 8) * 0x1p-24f; }

  private:
    std::mt19937 m_engine;
};

// Corner i of a polygon of n, in the plane.
using Family = std::function<Position(unsigned int i, unsigned int n, Random& random)>;

Position at_angle(double const& angle, double const& radius) {
    return {static_cast<float>(radius * std::cos(angle)),
            static_cast<float>(radius * std::sin(angle)), 0.0f};
}

double turn(unsigned int const& i, unsigned int const& n) { return 6.283185307179586 * i / n; }

// Spacing of the crescent's corners; the inner arc is nearer to the outer one than its ears are
// deep.
Position crescent_corner(unsigned int const& i, unsigned int const& n) {
    unsigned int const half = n / 2;
    double const step = 3.0 / half;
    return i < half ? at_angle(i * step, 1.0)
                    : at_angle((half - 1.4 - (i - half)) * step, 0.5 + 0.5 * std::cos(step));
}

std::map<std::string, Family> const families = {
    {"convex", [](auto i, auto n, auto&) { return at_angle(turn(i, n), 1.0); }},
    {"star", [](auto i, auto n, auto&) { return at_angle(turn(i, n), 1.0 + i % 2); }},
    {"comb",
     [](auto i, auto n, auto&) {
         return i < 2 ? Position(float(i * n), 0, 0) : Position(float(n - i), i % 2 ? 9.f : 1.f, 0);
     }},
    {"spiral",
     [](auto i, auto n, auto&) {
         double const t = 40.0 * (i < n / 2 ? i : n - 1 - i) / n;
         return at_angle(t, (i < n / 2 ? 1.0 : 0.6) + t / 6.2);
     }},
    {"crescent", [](auto i, auto n, auto&) { return crescent_corner(i, n); }},
    {"collinear runs",
     [](auto i, auto n, auto&) {
         float const t = 4.0f * float(i) / float(n);
         return t < 1   ? Position(t, 0, 0)
                : t < 2 ? Position(1, t - 1, 0)
                : t < 3 ? Position(3 - t, 1, 0)
                        : Position(0, 4 - t, 0);
     }},
    {"coarse grid",
     [](auto, auto n, auto& r) { return Position(float(r.below(n)), float(r.below(n)), 0); }},
    {"thin strip",
     [](auto i, auto n, auto& r) {
         return Position(float(std::min(i, n - i)), 1e-6f * r.number() + (2 * i < n ? 0 : 8e-7f),
                         0);
     }},
    {"not planar",
     [](auto i, auto n, auto& r) {
         Position const p = at_angle(turn(i, n), 1.0 + r.number());
         return Position(p.x, p.y, r.number());
     }},
    {"scribble", [](auto, auto, auto& r) { return Position(r.number(), r.number(), 0); }},
    {"extreme numbers",
     [](auto, auto, auto& r) {
         float const extremes[] = {0,     1,     -1,     2,        1e-20f, -1e-42f,
                                   1e18f, 3e38f, -3e38f, infinity, NAN};
         unsigned int const end = 5 + r.below(7);
         return Position(extremes[r.below(end)], extremes[r.below(end)], r.number());
     }},
    {"huge numbers",
     [](auto, auto, auto& r) {
         float const scales[] = {1, 1e18f, 1e30f, 1e38f, 3e38f};
         return Position(r.number() * scales[r.below(5)], r.number() * scales[r.below(5)], 0);
     }},
};

// Turned in space or round, scaled, with vertices used twice (as bridges to holes are) and equal
// points.
Polygon build_polygon(Family const& family, unsigned int const& n, Random& random) {
    Polygon polygon;
    for (unsigned int i = 0; i < n; ++i) {
        polygon.positions.push_back(family(i, n, random));
        polygon.indices.push_back(i);
    }
    bool const is_tilted = random.below(2) != 0;
    float const scale = random.below(8) ? 1.0f : std::ldexp(1.0f, int(random.below(200)) - 100);
    for (Position& p : polygon.positions) {
        p = is_tilted ? Position(0.6f * p.x - 0.8f * p.y, 0.7f * p.x, 0.7f * p.y + p.z) : p;
        p = p * scale;
    }
    if (random.below(4) == 0) {
        std::reverse(polygon.indices.begin(), polygon.indices.end());
    }
    if (random.below(4) == 3) {
        polygon.indices[random.below(n)] = polygon.indices[random.below(n)];
        polygon.positions[random.below(n)] = polygon.positions[random.below(n)];
    }
    return polygon;
}

// Each size has its own way of clipping; the borders between them are among those drawn.
unsigned int draw_size(Random& random) {
    unsigned int const borders[] = {16, 17, 32, 33, 64, 65, 128, 129, 256, 257};
    switch (random.below(6)) {
    case 0:
        return borders[random.below(10)];
    case 1:
        return 3 + random.below(298);
    default:
        return 3 + random.below(22);
    }
}

TEST(TriangulatePolygon, EqualsThePlainDefinition) {
    unsigned int whole = 0;
    unsigned int partial = 0;
    for (auto const& [name, family] : families) {
        for (unsigned int seed = 0; seed < 2000; ++seed) {
            Random random(seed);
            unsigned int const n = draw_size(random);
            Polygon const polygon = build_polygon(family, n, random);
            Indices const expected = plain::triangulate(polygon.positions, polygon.indices);
            ASSERT_EQ(triangulate(polygon), expected) << name << ", n " << n << ", seed " << seed;
            (expected.size() == 3 * (n - 2) ? whole : partial) += expected.empty() ? 0 : 1;
        }
    }
    EXPECT_GT(whole, 5000u);
    EXPECT_GT(partial, 2000u);
}

double compute_area(Polygon const& polygon, Indices const& corners) {
    double sum = 0;
    for (std::size_t k = 0; k < corners.size(); k += 3) {
        Position const a = polygon.positions[corners[k]];
        plain::Vec const ab(polygon.positions[corners[k + 1]] - a);
        plain::Vec const ac(polygon.positions[corners[k + 2]] - a);
        sum += plain::cross(ab, ac).z / 2;
    }
    return sum;
}

// Hours by the plain definition; a way of clipping that forgets what it learnt would show here.
TEST(TriangulatePolygon, CutsLargePolygons) {
    struct Row {
        char const* name;
        unsigned int n;
        double part;  // of the triangles that a polygon cut as a whole has, at least
    };
    Row const rows[] = {{"convex", 100000, 0.99},  {"star", 100000, 0.99},
                        {"comb", 100000, 0.99},    {"spiral", 100000, 0.99},
                        {"crescent", 2000, 1.0},   {"scribble", 100000, 0.0},
                        {"thin strip", 100000, 0}, {"huge numbers", 100000, 0}};
    for (Row const& row : rows) {
        Random random(1);
        Polygon polygon;
        Indices fan;
        for (unsigned int i = 0; i < row.n; ++i) {
            polygon.positions.push_back(families.at(row.name)(i, row.n, random));
            polygon.indices.push_back(i);
            fan.insert(fan.end(), {0, i, i + 1 == row.n ? 0 : i + 1});
        }
        Indices const triangles = triangulate(polygon);
        EXPECT_GE(triangles.size() / 3, row.part * (row.n - 2)) << row.name;
        if (row.part > 0) {
            EXPECT_NEAR(compute_area(polygon, triangles) / compute_area(polygon, fan), 1, 1e-3)
                << row.name;
        }
    }
    Polygon winding = {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {}};
    for (unsigned int i = 0; i < 100000; ++i) {
        winding.indices.push_back(i % 3);
    }
    EXPECT_EQ(triangulate(winding).size(), 99999u);
}

}  // namespace
