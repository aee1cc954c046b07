#include <fuzz/change_copies.h>

#include <fuzz/checks.h>
#include <fuzz/mesh_digest.h>
#include <fuzz/query_geometry.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace {

// As many primitives as a copy is asked about.
constexpr unsigned int few = 4;

void change_topology(PolyMesh const& mesh) {
    PolyMesh copy(mesh);
    require(&copy.get_topology() == &mesh.get_topology(), "a copy shares the records");
    CoreArray<int> creases(4);
    creases.fill(-1);
    CoreArray<float> sharpnesses(2);
    sharpnesses.fill(1.5f);
    copy.set_creases(creases, sharpnesses);
    require(copy.get_polygon_creases_indice().get_count() == 4, "creases are kept as given");
    require_sound(copy);
    for (unsigned int primitive = 0; primitive < std::min(copy.get_primitive_count(), few);
         ++primitive) {
        for (unsigned int edge = 0; edge < copy.get_primitive_edge_count(primitive); ++edge) {
            bool const is_visible = !mesh.is_primitive_edge_visible(primitive, edge);
            copy.set_primitive_edge_visibility(primitive, edge, is_visible);
            require(copy.is_primitive_edge_visible(primitive, edge) == is_visible,
                    "an edge is visible when it was shown");
        }
    }
    require_sound(copy, false);
    query_geometry(copy, few);
}

// Fills a mesh from all that another tells.
void refill(PolyMesh& again, PolyMesh const& mesh, bool const& check_quads) {
    CoreArray<GMathVec3<float>> positions;
    CoreArray<GMathVec3<float>> velocities;
    CoreArray<unsigned int> indices;
    CoreArray<unsigned int> counts;
    CoreArray<unsigned int> groups;
    CoreArray<GeometryUvMap> uv_maps;
    CoreArray<GeometryNormalMap> normal_maps;
    CoreArray<GeometryColorMap> color_maps;
    mesh.get_point_cloud()->get_positions(positions);
    mesh.get_point_cloud()->get_velocities(velocities);
    mesh.get_polygon_vertex_indices(indices);
    mesh.get_polygon_vertex_count(counts);
    mesh.get_polygon_shading_groups(groups);
    mesh.get_polygon_uv_maps(uv_maps, check_quads);
    mesh.get_polygon_normal_maps(normal_maps);
    mesh.get_polygon_color_maps(color_maps, check_quads);
    again.set(positions, velocities, indices, counts, groups, mesh.get_shading_group_names(),
              uv_maps, normal_maps, color_maps, check_quads, nullptr);
    require_sound(again);
}

void change_everything(PolyMesh const& mesh) {
    for (bool const check_quads : {false, true}) {
        PolyMesh copy(mesh);
        copy.set_uv_map_compression_mode(check_quads ? PolyMeshTopology::COMPRESSION_NONE
                                                     : PolyMeshTopology::COMPRESSION_AUTOMATIC);
        refill(copy, mesh, check_quads);
        require(copy.get_vertex_count() == mesh.get_vertex_count() &&
                    copy.get_polygon_count() == mesh.get_polygon_count() &&
                    copy.get_uv_map_count() == mesh.get_uv_map_count(),
                "a mesh filled from another has what that has");
        query_geometry(copy, few);
    }
}

void change_normal_maps(PolyMesh const& mesh) {
    PolyMesh copy(mesh);
    CoreArray<GeometryNormalMap> normal_maps;
    mesh.get_polygon_normal_maps(normal_maps);
    GeometryNormalMap own;  // the vertices' own normals
    mesh.get_point_cloud()->get_normals(own.values);
    normal_maps.append(own);
    copy.set_normal_maps(normal_maps, nullptr);
    require(copy.get_primitive_count() == 0 ||
                copy.get_normal_map_count() == normal_maps.get_count(),
            "a mesh takes the maps that it has told");
    require_sound(copy);
    query_geometry(copy, few);
}

class Swinging : public GeometrySampleProvider {
  public:
    explicit Swinging(CoreBasicArray<GMathVec3<float>> const& positions) : m_positions(positions) {}
    void fill_sample(GMathTimeSampling const& sampling, unsigned int const& sample,
                     GMathVec3<float>* positions) override {
        auto const shift = static_cast<float>(sampling.get_sample_time(sample));
        for (unsigned int i = 0; i < m_positions.get_count(); ++i) {
            positions[i] = m_positions[i] + GMathVec3<float>(shift, 0, shift);
        }
    }

  private:
    CoreArray<GMathVec3<float>> m_positions;
};

// Other positions, then velocities, then samples in time.
void change_points(PolyMesh const& mesh) {
    PolyMesh copy(mesh);
    GeometryPointCloud points(*mesh.get_point_cloud());
    CoreArray<GMathVec3<float>> positions;
    points.get_positions(positions);
    for (GMathVec3<float>& position : positions) {
        position = {position.y, position.x * 3.0f, position.z - 1.0f};
    }
    for (unsigned int const step : {0u, 1u, 2u}) {
        if (step == 0) {
            points.set_positions(positions);
        } else if (step == 1) {
            points.set_velocities(positions);
        } else {
            double const sample_times[] = {0.0, 0.5, 0.5, 2.0};
            points.set_velocities({});
            points.set_deformation(GMathTimeSampling(CoreBasicArray<double>(sample_times, 4)),
                                   std::make_shared<Swinging>(positions));
        }
        require(copy.set_point_cloud(points, nullptr), "a mesh takes versions of its own points");
        require_sound(copy);
        query_geometry(copy, few);
    }
    require(!copy.set_point_cloud(GeometryPointCloud(mesh.get_vertex_count()), nullptr),
            "a mesh takes no other points");
}

void read_back(PolyMesh const& mesh) {
    struct Block {
        explicit Block(PolyMesh const& mesh) : bytes(mesh.serialize(size), &std::free) {}
        std::string_view get_view() const {
            return {reinterpret_cast<char const*>(bytes.get()), size};
        }
        unsigned long long size = 0;
        std::unique_ptr<unsigned char, void (*)(void*)> bytes;
    };
    Block const block(mesh);
    PolyMesh again;
    require(again.deserialize(block.bytes.get(), block.size), "what was serialised reads back");
    require_sound(again);
    require(Block(again).get_view() == block.get_view(), "what was read back serialises the same");
    query_geometry(again, few);
}

}  // namespace

void change_copies(PolyMesh const& mesh) {
    constexpr void (*changes[])(PolyMesh const& mesh) = {
        change_topology, change_everything, change_normal_maps, change_points, read_back};
    std::size_t const digest = get_digest(mesh);
    std::unique_ptr<PolyMesh> const copy(mesh.get_copy());
    changes[digest % std::size(changes)](*copy);
    require(get_digest(mesh) == digest, "a mesh stays as it is when its copies are changed");
}
