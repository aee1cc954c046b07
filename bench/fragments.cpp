#include <bench/fragments.h>

#include <random>

namespace {

constexpr unsigned int place_count = 100000;

template <unsigned int size>
void fill_attributes(PolyMesh const& mesh, BenchMesh const& input, plain::Surface<size>& surface) {
    surface.corners = input.corners;
    surface.positions = input.positions;
    surface.uvs = input.positions;  // without uvs of its own
    CoreArray<GMathVec3<float>> normals;
    mesh.get_point_cloud()->get_normals(normals);
    surface.normals.assign(normals.begin(), normals.end());
    for (GMathVec4<unsigned char> const& c : mesh.get_topology().color_maps[0].values) {
        constexpr float unit = 0.003921569f;
        surface.colors.emplace_back(c.x * unit, c.y * unit, c.z * unit, c.w * unit);
    }
}

std::shared_ptr<PolyMeshProperty> make_property(PolyMesh const& mesh, std::vector<float>& numbers) {
    unsigned int const count = mesh.get_vertex_count();
    auto* const block = new ResourceProperty(ResourceProperty::TYPE_FLOAT, 1, count);
    for (unsigned int i = 0; i < count; ++i) {
        numbers.push_back(static_cast<float>(i % 1000) * 0.001f);
        *static_cast<float*>(block->get_item_values(i)) = numbers[i];
    }
    auto const property = std::make_shared<PolyMeshProperty>(
        mesh, PolyMeshProperty::TYPE_VERTEX, ResourceProperty::TYPE_FLOAT, 1, count, 0, "number",
        GMathTimeSampling(0.0), true);
    property->init(0, block);
    return property;
}

}  // namespace

template <unsigned int size>
Fragments<size>::Fragments(BenchMesh const& input)
    : mesh(make_poly_mesh(input, {.has_uvs = true, .has_colors = true})) {
    fill_attributes(*mesh, input, surface);
    property = make_property(*mesh, surface.numbers);
    std::mt19937 random(4);
    auto const get_number = [&] { return static_cast<double>(random()) * 0x1p-32; };
    for (unsigned int i = 0; i < place_count; ++i) {
        GeometryFragment place;
        place.primitive_index = static_cast<unsigned int>(random() % mesh->get_primitive_count());
        place.s = get_number();
        place.t = size == 4 ? get_number() : get_number() * (1 - place.s);
        places.push_back(place);
    }
}

template struct Fragments<3>;
template struct Fragments<4>;
