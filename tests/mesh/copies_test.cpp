#include <poly/mesh/map_entries.h>
#include <poly/mesh/mesh_invariants.h>
#include <tests/shapes.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

// A row with maps of both kinds, and creases.
void fill(PolyMesh& mesh) {
    Shape shape = make_row();
    Numbers const corners(12, 0);
    std::vector<GMathVec4<unsigned char>> const colors(8, {1, 2, 3, 4});
    shape.uv_maps = {make_map<GeometryUvMap>("by vertex", shape.positions),
                     make_map<GeometryUvMap>("by corner", shape.positions, corners)};
    shape.color_maps = {make_map<GeometryColorMap>("by vertex", colors),
                        make_map<GeometryColorMap>("by corner", colors, corners)};
    shape.normal_maps = {make_map<GeometryNormalMap>("normal", shape.positions)};
    shape.set(mesh);
    CoreArray<int> indices(2);
    indices.fill(3);
    CoreArray<float> sharpnesses(1);
    sharpnesses.fill(0.5f);
    mesh.set_creases(indices, sharpnesses);
}

struct Mutator {
    char const* name;
    std::function<void(PolyMesh&)> apply;
    bool takes_topology;
    bool takes_geometry;
    bool keeps_polygons;
};

Mutator const mutators[] = {
    {"set_creases", [](PolyMesh& mesh) { mesh.set_creases({}, {}); }, true, false, true},
    {"set_primitive_edge_visibility",
     [](PolyMesh& mesh) { mesh.set_primitive_edge_visibility(1, 3, false); }, true, false, true},
    {"set_uv_map_compression_mode",
     [](PolyMesh& mesh) { mesh.set_uv_map_compression_mode(PolyMeshTopology::COMPRESSION_NONE); },
     true, false, true},
    {"set_normal_maps", [](PolyMesh& mesh) { mesh.set_normal_maps({}, nullptr); }, false, true,
     true},
    {"set_point_cloud",
     [](PolyMesh& mesh) {
         GeometryPointCloud const cloud(*mesh.get_point_cloud());
         EXPECT_TRUE(mesh.set_point_cloud(cloud, nullptr));
     },
     false, true, true},
    {"set", [](PolyMesh& mesh) { make_square().set(mesh); }, true, true, false},
    {"deserialize",
     [](PolyMesh& mesh) {
         unsigned int const block[] = {20, 0, 0, 0, 0};
         EXPECT_TRUE(mesh.deserialize(reinterpret_cast<unsigned char const*>(block), 20));
     },
     true, true, false},
};

}  // namespace

TEST(PolyMeshCopies, ShareRecordsUntilOneWrites) {
    for (Mutator const& mutator : mutators) {
        SCOPED_TRACE(mutator.name);
        PolyMesh source;
        fill(source);
        std::unique_ptr<PolyMesh> const copy(source.get_copy());
        PolyMeshTopology const* const topology = &source.get_topology();
        PolyMeshGeometry const* const geometry = &source.get_geometry();
        EXPECT_EQ(&copy->get_topology(), topology);
        EXPECT_EQ(&copy->get_geometry(), geometry);
        EXPECT_EQ(&copy->get_point_cloud()->get_data(), &source.get_point_cloud()->get_data());
        EXPECT_EQ(copy->get_hash_key(), source.get_hash_key());
        unsigned long long const size = copy->get_memory_size();
        EXPECT_EQ(size, sizeof(GeometryPointCloud) + 128);

        mutator.apply(*copy);
        PolyMeshTopology const* const new_topology = &copy->get_topology();
        PolyMeshGeometry const* const new_geometry = &copy->get_geometry();
        EXPECT_EQ(new_topology != topology, mutator.takes_topology);
        EXPECT_EQ(new_geometry != geometry, mutator.takes_geometry);
        EXPECT_GT(copy->get_memory_size(), size);
        mutator.apply(*copy);
        EXPECT_EQ(&copy->get_topology(), new_topology);
        EXPECT_EQ(&copy->get_geometry(), new_geometry);
        EXPECT_EQ(find_broken_invariant(*copy, false), "");

        EXPECT_EQ(&source.get_topology(), topology);
        EXPECT_EQ(&source.get_geometry(), geometry);
        EXPECT_EQ(find_broken_invariant(source), "");
        EXPECT_EQ(source.get_polygon_creases_indice().get_count(), 2u);
        EXPECT_EQ(source.get_normal_map_count(), 1u);
        EXPECT_EQ(copy->get_polygon_count() == 3, mutator.keeps_polygons);
        EXPECT_EQ(copy->get_hash_key() == source.get_hash_key(), mutator.keeps_polygons);
        // A topology of its own has no creases.
        EXPECT_EQ(copy->get_polygon_creases_indice().is_empty(), mutator.takes_topology);
    }
}

TEST(PolyMeshCopies, CloneTheMapsOfATopology) {
    PolyMesh source;
    fill(source);
    PolyMesh copy(source);
    copy.set_uv_map_compression_mode(PolyMeshTopology::COMPRESSION_AUTOMATIC);
    PolyMeshTopology const& topology = copy.get_topology();
    PolyMeshTopology const& old = source.get_topology();
    for (unsigned int i = 0; i < 2; ++i) {
        bool const is_own = i == 1;
        EXPECT_EQ(owns_indices(topology.uv_maps[i], topology), is_own);
        EXPECT_EQ(owns_indices(topology.color_maps[i], topology), is_own);
        EXPECT_NE(topology.uv_maps[i].polygon_indices, old.uv_maps[i].polygon_indices);
        EXPECT_NE(topology.color_maps[i].polygon_indices, old.color_maps[i].polygon_indices);
        EXPECT_EQ(topology.uv_maps[i].name, old.uv_maps[i].name);
        EXPECT_EQ(topology.uv_maps[i].values.get(5), old.uv_maps[i].values.get(5));
        EXPECT_EQ(topology.color_maps[i].values[7], old.color_maps[i].values[7]);
    }
    EXPECT_EQ(source.get_uv_map_compression_mode(), PolyMeshTopology::COMPRESSION_QUANTISED);
}

TEST(PolyMeshCopies, AssignmentTakesOverTheRecordsAndTheirOwnership) {
    PolyMesh source;
    fill(source);
    PolyMesh target;
    // What the target held is leaked; deleted here.
    std::unique_ptr<PolyMeshTopology const> const leaked_topology(&target.get_topology());
    std::unique_ptr<PolyMeshGeometry const> const leaked_geometry(&target.get_geometry());
    target = source;
    EXPECT_EQ(&target.get_topology(), &source.get_topology());
    EXPECT_EQ(&target.get_geometry(), &source.get_geometry());
    EXPECT_EQ(target.get_hash_key(), source.get_hash_key());
    // Both claim the topology now: the target writes without a copy.
    target.set_creases({}, {});
    EXPECT_EQ(&target.get_topology(), &source.get_topology());
    EXPECT_TRUE(source.get_polygon_creases_indice().is_empty());
    // From a copy the source takes no ownership, so only one of the two frees.
    source = PolyMesh(source);
    EXPECT_EQ(&target.get_topology(), &source.get_topology());
    EXPECT_EQ(source.get_memory_size(), source.get_point_cloud()->get_memory_size() + 128);
}

TEST(PolyMeshCopies, ShowAndHideEdgesBitByBit) {
    PolyMesh mesh;
    make_row().set(mesh);
    unsigned char const& info = mesh.get_topology().primitive_infos[1];
    Core128BitHashKey const key = mesh.get_hash_key();
    for (unsigned int const start : {0x3Fu, 0xFFu}) {
        const_cast<unsigned char&>(info) = static_cast<unsigned char>(start);
        for (unsigned int edge = 0; edge < 4; ++edge) {
            mesh.set_primitive_edge_visibility(1, edge, false);
            EXPECT_EQ(info, start & ~(4u << edge));
            EXPECT_FALSE(mesh.is_primitive_edge_visible(1, edge));
            EXPECT_TRUE(mesh.is_primitive_edge_visible(1, edge ^ 1));
            mesh.set_primitive_edge_visibility(1, edge, true);
            EXPECT_EQ(info, start);
        }
    }
    EXPECT_EQ(mesh.get_primitive_edge_count(1), 4u);
    EXPECT_EQ(mesh.get_hash_key(), key);
}
