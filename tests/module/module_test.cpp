#include <poly/mesh/mesh_invariants.h>
#include <poly/module/poly_helpers.h>
#include <poly/property/poly_mesh_property.h>
#include <poly/smoothed/poly_mesh_smoothed.h>
#include <tests/log_capture.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

TEST(ClassRegistration, NamesClassesAndTheirParents) {
    struct Row {
        CoreClassInfo const& info;
        char const* name;
        CoreClassInfo const& parent;
        bool (*destroy)(void*, bool const&);
    };
    Row const rows[] = {
        {PolyMeshBase::class_info(), "PolyMeshBase", GeometryObject::class_info(),
         PolyMeshBase::___class_destructor__},
        {PolyMesh::class_info(), "PolyMesh", PolyMeshBase::class_info(),
         PolyMesh::___class_destructor__},
        {PolyMeshSmoothed::class_info(), "PolyMeshSmoothed", PolyMeshBase::class_info(),
         PolyMeshSmoothed::___class_destructor__},
        {PolyMeshProperty::class_info(), "PolyMeshProperty", GeometryProperty::class_info(),
         PolyMeshProperty::___class_destructor__},
    };
    for (Row const& row : rows) {
        EXPECT_EQ(row.info.get_name(), row.name);
        EXPECT_EQ(CoreClassInfo::get_class(row.name), &row.info);
        EXPECT_EQ(row.info.get_parent(), &row.parent);
        EXPECT_TRUE(row.destroy(nullptr, false));
        EXPECT_TRUE(row.destroy(nullptr, true));
    }
    EXPECT_EQ(&PolyMesh().get_class_info(), &PolyMesh::class_info());
    EXPECT_TRUE(PolyMesh().is_kindof(CoreBaseObject::class_info()));
    EXPECT_TRUE(PolyMeshBase::class_info().destroy(new PolyMesh, false));
    EXPECT_TRUE(PolyMesh::class_info().destroy(new PolyMesh[3], true));
    EXPECT_TRUE(PolyMeshBase::class_info().destroy(new PolyMesh[3], true));
    EXPECT_TRUE(PolyMesh::class_info().destroy(new PolyMesh[0], true));
}

TEST(PolyHelpers, MakeSpheres) {
    struct Row {
        unsigned int segments;
        unsigned int rings;
        unsigned int used_segments;
        unsigned int used_rings;
    };
    for (Row const& row : {Row{0, 0, 2, 2}, Row{3, 2, 3, 2}, Row{2, 5, 2, 5}, Row{16, 9, 16, 9}}) {
        unsigned int const s = row.used_segments;
        unsigned int const r = row.used_rings;
        SCOPED_TRACE(testing::Message() << s << " x " << r);
        GMathVec3<double> const radii(1.5, 0.7, 2.0);
        std::unique_ptr<PolyMesh> const mesh(
            PolyHelpers::create_poly_sphere(row.segments, row.rings, radii));
        ASSERT_EQ(mesh->get_vertex_count(), s * (r - 1) + 2);
        EXPECT_EQ(mesh->get_polygon_count(), s * r);
        EXPECT_EQ(mesh->get_primitive_count(), s * r);
        EXPECT_EQ(mesh->get_topology().quad_count, s * (r - 2));
        EXPECT_EQ(mesh->get_shading_group_names()[0], "surface");
        EXPECT_EQ(find_broken_invariant(*mesh), "");

        // Positions in their order, each angle one step past the last.
        auto const& positions = mesh->get_point_cloud()->get_data().positions;
        EXPECT_EQ(positions[0], GMathVec3<float>(0, -0.7f, 0));
        EXPECT_EQ(positions[s * (r - 1) + 1], GMathVec3<float>(0, 0.7f, 0));
        unsigned int vertex = 1;
        double t = 0.0;
        for (unsigned int ring = 1; ring < r; ++ring) {
            double const phi = 3.141592653589 * (t += 1.0 / r);
            double angle = 0.0;
            for (unsigned int j = 0; j < s; ++j, angle += 1.0 / s) {
                double const theta = 6.283185307178 * angle;
                GMathVec3<float> const d(static_cast<float>(-std::sin(theta) * std::sin(phi)),
                                         static_cast<float>(-std::cos(phi)),
                                         static_cast<float>(-std::cos(theta) * std::sin(phi)));
                GMathVec3<double> const place(d.x * 1.5, d.y * 0.7, d.z * 2.0);
                EXPECT_EQ(positions[vertex++], GMathVec3<float>(place));
            }
        }
        GeometryUvMap uv_map;
        mesh->get_polygon_uv_map(0, uv_map, false);
        EXPECT_EQ(uv_map.values.get_count(), (r + 1) * s + r - 1);
        EXPECT_EQ(uv_map.name, "parametric");
        EXPECT_EQ(uv_map.values[s].x, 0.0f);  // both ends of the seam
        EXPECT_NEAR(uv_map.values[2 * s].x, 1.0f, 1e-6f);
        // Every corner's uv lies where its vertex does, but for the pole's middle and the seam's
        // end.
        CoreArray<unsigned int> corners;
        mesh->get_polygon_vertex_indices(corners);
        for (unsigned int corner = 0; corner < corners.get_count(); ++corner) {
            GMathVec3<float> const& p = positions[corners[corner]];
            GMathVec3<float> const& uv = uv_map.values[uv_map.indices[corner]];
            EXPECT_NEAR(-std::cos(3.14159265 * double(uv.y)) * 0.7, double(p.y), 1e-4);
            if (std::abs(p.y) < 0.7f) {
                double const radius = std::sin(3.14159265 * double(uv.y));
                EXPECT_NEAR(-std::sin(6.2831853 * double(uv.x)) * radius * 1.5, double(p.x), 2e-4);
                EXPECT_NEAR(-std::cos(6.2831853 * double(uv.x)) * radius * 2.0, double(p.z), 3e-4);
            }
        }
    }
}
