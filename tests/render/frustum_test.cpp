#include <poly/render/frustum_test.h>

#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

using Marks = std::vector<unsigned char>;

TEST(Frustum, AcceptsAndMarksByMode) {
    float const nan = std::numeric_limits<float>::quiet_NaN();
    GeometryFrustumCtx cube;  // [-1, 1]^3
    cube.side_planes[0] = {{1, 0, 0}, 1};
    cube.side_planes[1] = {{-1, 0, 0}, 1};
    cube.side_planes[2] = {{0, 1, 0}, 1};
    cube.side_planes[3] = {{0, -1, 0}, 1};
    cube.side_plane_count = 4;
    cube.front_plane = {{0, 0, 1}, 1};
    cube.back_plane = {{0, 0, -1}, 1};
    struct Case {
        char const* name;
        Points corners;
        unsigned int accepted_count[4];  // by mode: overlap, containment, and modes that only mark
    };
    for (Case const& c : {
             Case{"within, border included", {{-1, -1, 0}, {1, -1, 1}, {1, 1, 0}}, {1, 1}},
             {"past a side", {{0, 0, 0}, {2, 0, 0}, {0, 1, 0}}, {1, 0}},
             {"past the back", {{0, 0, 0}, {1, 0, 2}, {0, 1, 0}}, {1, 0}},
             {"beyond one side", {{2, -5, 0}, {2, 5, 0}, {3, 0, 0}}, {0, 0}},
             {"around", {{-9, -9, 0}, {9, -9, 0}, {9, 9, 0}, {-9, 9, 0}}, {1, 0}},
             {"before the front", {{0, 0, -2}, {1, 0, -2}, {0, 1, -3}}, {0, 0}},
             {"through both caps", {{0, 0, -2}, {1, 0, 2}, {0, 1, -2}}, {1, 0}},
             {"not a number", {{nan, 0, 0}, {nan, 0, 0}, {nan, 0, 0}}, {0, 0}},
         }) {
        Shape shape = c.corners.size() == 3 ? make_triangle() : make_square();
        shape.positions = c.corners;
        PolyMesh mesh;
        shape.set(mesh);
        for (int mode = 0; mode < 4; ++mode) {
            SCOPED_TRACE(testing::Message() << c.name << ", mode " << mode);
            Marks marks(c.corners.size(), 0);
            GeometryFrustumCtx frustum = cube;
            frustum.mode = static_cast<GeometryFrustumCtx::Mode>(mode);
            frustum.vertex_marks = marks.data();
            mesh.intersect_primitive(CtxEval(), 0, frustum);
            EXPECT_EQ(frustum.accepted_count, c.accepted_count[mode]);
            EXPECT_EQ(frustum.is_rejected, mode < 2 && c.accepted_count[mode] == 0);
            EXPECT_EQ(marks, Marks(marks.size(), mode >= 2));
        }
    }
    EXPECT_FALSE(test_polygon_overlaps_frustum(cube, nullptr, 0));
}

}  // namespace
