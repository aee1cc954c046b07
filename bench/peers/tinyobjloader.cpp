#include <bench/peers.h>

#define TINYOBJLOADER_IMPLEMENTATION
#include <tiny_obj_loader.h>

#include <memory>

namespace {

struct Arrays {
    tinyobj::attrib_t attributes;
    std::vector<tinyobj::shape_t> shapes;
    std::vector<tinyobj::material_t> materials;
};

void read(std::string const& path, Arrays& result) {
    Arrays arrays;
    std::string warning, error;
    tinyobj::LoadObj(&arrays.attributes, &arrays.shapes, &arrays.materials, &warning, &error,
                     path.c_str(), nullptr, false);
    result = std::move(arrays);
}

BenchMesh get_mesh(Arrays const& arrays) {
    BenchMesh mesh;
    std::vector<float> const& v = arrays.attributes.vertices;
    for (std::size_t i = 0; i + 2 < v.size(); i += 3) {
        mesh.positions.emplace_back(v[i], v[i + 1], v[i + 2]);
    }
    for (tinyobj::shape_t const& shape : arrays.shapes) {
        for (unsigned char const count : shape.mesh.num_face_vertices) {
            mesh.counts.push_back(count);
        }
        for (tinyobj::index_t const& index : shape.mesh.indices) {
            mesh.corners.push_back(static_cast<unsigned int>(index.vertex_index));
        }
    }
    return mesh;
}

}  // namespace

MeshWork make_tinyobjloader_reader(std::string const& path) {
    auto const arrays = std::make_shared<Arrays>();
    return {[=] { read(path, *arrays); }, [=] { return get_mesh(*arrays); }};
}
