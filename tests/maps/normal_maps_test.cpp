#include <poly/maps/extra_normals.h>
#include <poly/maps/normal_maps.h>
#include <poly/mesh/mesh_invariants.h>
#include <poly/mesh/primitive_corners.h>
#include <tests/log_capture.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <tuple>

namespace {

constexpr unsigned int absent = 0xFFFFFFFFu;

Numbers take(CoreIndexArray const& packed) {
    CoreArray<unsigned int> values;
    packed.get_array(values);
    return {values.begin(), values.end()};
}

Numbers take(CoreArray<unsigned int> const& values) { return {values.begin(), values.end()}; }

// Faces at a right angle, with the normals +z and +x, that share the edge between vertices 0 and 2.
Shape make_fold() {
    return {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {3, 3}, {0, 1, 2, 0, 2, 3}};
}

Points const fold_values{{0, 0, 2}, {3, 0, 0}, {1, 0, 1}, {0, 0, 0}, {0, -5, 0}};

// What a map by corner stores, each corner asked on its own.
struct PlainNormalMap {
    using Key = std::tuple<unsigned int, float, float, float>;

    Numbers indices;
    std::map<Key, unsigned int> extra;
    std::map<unsigned int, unsigned int> own;  // values that equal their vertex's normal

    PlainNormalMap(PolyMesh const& mesh, GeometryNormalMap const& map)
        : indices(mesh.get_polygon_index_count(), absent) {
        GeometryPointCloudData const& points = mesh.get_point_cloud()->get_data();
        for (unsigned int primitive = 0; primitive < mesh.get_primitive_count(); ++primitive) {
            unsigned int ids[4], v[4];
            unsigned int const count =
                get_primitive_corner_ids(mesh.get_topology(), primitive, ids);
            get_primitive_vertices(mesh.get_topology(), primitive, v);
            std::vector<Key> flat;
            for (unsigned int k = 2; k < count; ++k) {
                flat.push_back(get_key(0, GMathShortNormal::encode(compute_flat_normal(
                                              points.positions[v[0]], points.positions[v[k - 1]],
                                              points.positions[v[k]]))));
            }
            for (unsigned int k = 0; k < count; ++k) {
                unsigned int const value = map.indices[ids[k]];
                indices[ids[k]] = absent;
                float const length =
                    value < map.values.get_count() ? gmath_length(map.values[value]) : 0;
                if (own.count(value) != 0) {
                    indices[ids[k]] = own[value];
                } else if (length > 0 && std::isfinite(length)) {
                    GMathShortNormal const n = GMathShortNormal::encode(map.values[value] / length);
                    if (get_key(0, n) == get_key(0, points.normals[v[k]])) {
                        indices[ids[k]] = own[value] = v[k];
                    } else if (flat != std::vector<Key>(flat.size(), get_key(0, n))) {
                        unsigned int const next =
                            points.point_count + static_cast<unsigned int>(extra.size());
                        indices[ids[k]] = extra.try_emplace(get_key(v[k], n), next).first->second;
                    }
                }
            }
        }
    }
    static Key get_key(unsigned int const& vertex, GMathShortNormal const& normal) {
        GMathVec3<float> const n = normal.decode();
        return {vertex, n.x + 0.0f, n.y + 0.0f, n.z + 0.0f};  // -0 as +0
    }
};

}  // namespace

TEST(NormalMaps, StoreWhatAPlainSearchStores) {
    LogCapture const quiet(1);
    unsigned int kinds[3] = {};  // of what corners store: flat, own, extra
    for (unsigned int seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Shape shape = make_soup(seed);
        float const scale = std::ldexp(0.37f, static_cast<int>(seed % 7) * 10 - 30);
        for (GMathVec3<float>& p : shape.positions) {
            p = p * scale;
        }
        shape.normal_maps.clear();
        PolyMesh mesh;
        shape.set(mesh);
        // Values next to flat normals and those of vertices, of all lengths; some are one.
        GeometryNormalMap map;
        GeometryPointCloudData const& points = mesh.get_point_cloud()->get_data();
        for (unsigned int i = 0; i < 40; ++i) {
            unsigned int v[4];
            get_primitive_vertices(mesh.get_topology(),
                                   static_cast<unsigned int>(random()) % mesh.get_primitive_count(),
                                   v);
            GMathVec3<float> n = compute_flat_normal(points.positions[v[0]], points.positions[v[1]],
                                                     points.positions[v[2]]);
            n = i % 3 == 0 ? points.normals[v[0]].decode() : n;
            float const tilt = std::ldexp(static_cast<float>(random() % 100), -10 - int(i % 15));
            n = GMathVec3<float>(n.x + tilt, n.y, n.z) *
                (i % 5 == 0 ? std::ldexp(1.0f, static_cast<int>(random() % 130) - 65) : 1.0f);
            map.values.append(n);
        }
        for (unsigned int i = 0; i < mesh.get_polygon_index_count(); ++i) {
            map.indices.append(static_cast<unsigned int>(random() % (seed % 2 == 0 ? 42 : 7)));
        }
        PolyMeshNormalMap stored;
        store_normal_map(map, mesh.get_topology(), points, stored, nullptr);
        PlainNormalMap const expected(mesh, map);
        ASSERT_EQ(take(stored.polygon_indices), expected.indices);
        ASSERT_EQ(stored.normals.get_count(), expected.extra.size());
        for (unsigned int const index : expected.indices) {
            ++kinds[index == absent ? 0 : index < points.point_count ? 1 : 2];
        }
    }
    EXPECT_GT(std::min({kinds[0], kinds[1], kinds[2]}), 100u);
}

TEST(NormalMaps, StoreOnlyWhatOtherNormalsDoNotSay) {
    struct Row {
        char const* name;
        Shape shape;
        Points values;
        Numbers indices;
        Numbers expected;
        unsigned int extra_count;
    };
    Shape with_edge = make_fold();
    with_edge.vertex_count = {3, 2, 3};
    with_edge.vertex_indices = {0, 1, 2, 0, 1, 0, 2, 3};
    Row const rows[] = {
        {"by vertex, its own normals",
         make_fold(),
         {{1, 0, 1}, {-0.0f, -0.0f, 1}, {2, -0.0f, 2}, {1, 0, -0.0f}},
         {},
         {0, 1, 2, 0, 2, 3},
         0},
        {"not covered",
         with_edge,
         fold_values,
         {0, 0, 0, 4, 4, 1, 1, 1},
         {absent, 1, 1, absent, absent, absent, absent, 3},
         0},
        {"the first flat normal of two",
         make_folded_quad(),
         {{-1, 1, 1}},
         {0, 0, 0, 0},
         {4, 1, 1, 1},
         1},
        {"the second", make_folded_quad(), {{0, 0, 1}}, {0, 0, 0, 0}, {4, 5, 6, 3}, 3},
        {"both flat normals", make_square(), {{0, 0, 7}}, {0, 0, 0, 0}, {0, 0, 0, 0}, 0},
    };
    for (Row const& row : rows) {
        SCOPED_TRACE(row.name);
        Shape shape = row.shape;
        shape.normal_maps = {make_map<GeometryNormalMap>("n", row.values, row.indices)};
        PolyMesh mesh;
        shape.set(mesh);
        ASSERT_EQ(mesh.get_normal_map_count(), 1u);
        PolyMeshNormalMap const& map = mesh.get_geometry().normal_maps[0];
        EXPECT_EQ(take(map.polygon_indices), row.expected);
        EXPECT_EQ(map.normals.get_count(), row.extra_count);
        EXPECT_EQ(find_broken_invariant(mesh), "");
    }
}

TEST(NormalMaps, KeepAsManyNormalsAsThereMayBe) {
    ExtraNormals extra(2, 70);
    auto const add = [&](unsigned short const& x) { return extra.add(1, {x, 0, 0}); };
    for (unsigned short round = 0; round < 2; ++round) {
        for (unsigned short x = 0; x < 80; ++x) {
            ASSERT_EQ(add(x), x < 70 ? x : ExtraNormals::no_normal);
        }
    }
    EXPECT_EQ(extra.add(0, {1, 0, 0}), ExtraNormals::no_normal);
}

TEST(NormalMaps, AreReadByCornerAndByPrimitive) {
    using Vec = GMathVec3<float>;
    Shape shape = make_fold();
    shape.normal_maps = {make_map<GeometryNormalMap>("n", fold_values, {0, 0, 0, 1, 1, 1}),
                         make_map<GeometryNormalMap>("extra", fold_values, {4, 3, 4, 4, 4, 3})};
    PolyMesh mesh;
    shape.set(mesh);
    CoreArray<GeometryNormalMap> maps;
    mesh.get_polygon_normal_maps(maps);
    struct Row {
        Points values;
        Numbers indices;
    };
    // In the order of first use; each polygon has its own flat normal.
    Row const rows[] = {{{{0, 0, 1}, {0, 0, 1}, {1, 0, 0}, {1, 0, 0}}, {0, 1, 1, 2, 2, 3}},
                        {{{0, -1, 0}, {0, 0, 1}, {0, -1, 0}, {1, 0, 0}}, {0, 1, 2, 0, 2, 3}}};
    for (unsigned int i = 0; i < 2; ++i) {
        CoreArray<Vec> values;
        CoreArray<unsigned int> indices;
        ASSERT_TRUE(mesh.get_normal_map_data(i, values, indices));
        EXPECT_EQ(take(maps[i].indices), rows[i].indices);
        EXPECT_EQ(take(indices), rows[i].indices);
        EXPECT_EQ(Points(values.begin(), values.end()), rows[i].values);
        EXPECT_EQ(Points(maps[i].values.begin(), maps[i].values.end()), rows[i].values);
    }
    EXPECT_EQ(maps[1].name, "extra");

    // Cut polygons: by the corners of their triangles.
    shape = make_row();
    Points const lying(12, {0, 1, 0});
    shape.normal_maps = {
        make_map<GeometryNormalMap>("n", lying, {0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5})};
    shape.set(mesh);
    CoreArray<Vec> values;
    CoreArray<unsigned int> corners;
    CoreArray<unsigned int> indices;
    mesh.get_polygon_normal_map_data(0, values, corners);
    mesh.get_normal_map_data(0, values, indices);
    Numbers const ids{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 7, 9, 10, 7};
    for (unsigned int i = 0; i < ids.size(); ++i) {
        EXPECT_EQ(indices[i], corners[ids[i]]) << i;
    }
}

TEST(PointCloud, IsReplacedByAVersionOfItself) {
    Shape shape = make_fold();
    shape.positions.push_back({9, 9, 9});  // of no polygon
    shape.normal_maps = {make_map<GeometryNormalMap>("n", fold_values, {0, 0, 0, 1, 1, 1})};
    PolyMesh mesh;
    shape.set(mesh);
    EXPECT_EQ(find_broken_invariant(mesh), "");
    GeometryPointCloudData const* const before = &mesh.get_point_cloud()->get_data();
    GeometryDescriptor const& support = before->support_geometries[0];
    EXPECT_TRUE(support.geometry == &mesh && support.base_geometry == &mesh && support.index == 0);
    EXPECT_EQ(support.transform, GMathMatrix4x4<double>::get_identity());

    PolyMesh other;
    shape.set(other);
    AppProgressBar bar("points");
    EXPECT_FALSE(mesh.set_point_cloud(*other.get_point_cloud(), &bar));
    EXPECT_EQ(&mesh.get_point_cloud()->get_data(), before);
    EXPECT_EQ(mesh.get_normal_map_count(), 1u);

    GeometryPointCloud moved(*mesh.get_point_cloud());
    Points const turned{{0, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {-9, 9, 9}};
    moved.set_positions(view(turned));
    for (AppProgressBar* const progress : {&bar, static_cast<AppProgressBar*>(nullptr)}) {
        shape.set(mesh);
        EXPECT_FALSE(mesh.set_point_cloud(moved, progress));  // made before the points were anew
        GeometryPointCloud again(*mesh.get_point_cloud());
        again.set_positions(view(turned));
        EXPECT_TRUE(mesh.set_point_cloud(again, progress));
        EXPECT_EQ(mesh.get_normal_map_count(), 0u);
        EXPECT_EQ(mesh.get_point_cloud()->get_data().normals[1].decode(), turned[3]);
        EXPECT_EQ(find_broken_invariant(mesh), "");
    }
    EXPECT_DOUBLE_EQ(bar.get_value(), 1.0);
}
