#include <bench/poly_meshes.h>

PolyMeshInput::PolyMeshInput(BenchMesh const& mesh, BenchMaps const& maps)
    : m_mesh(mesh), m_groups(mesh.counts.size(), 0) {
    m_names.append(CoreString("all"));
    if (maps.has_uvs) {
        m_uv_maps.resize(1);
        GeometryUvMap& map = m_uv_maps[0];
        map.name = "uv";
        map.values.copy_from(view(mesh.uvs.empty() ? mesh.positions : mesh.uvs));
        map.indices.copy_from(view(mesh.uvs.empty() ? mesh.corners : mesh.uv_corners));
    }
    if (maps.has_normals) {
        m_normal_maps.resize(1);
        GeometryNormalMap& map = m_normal_maps[0];
        map.name = "normal";
        map.values.copy_from(view(mesh.normals));
        map.indices.copy_from(view(mesh.corners));
    }
    if (maps.has_colors) {
        m_color_maps.resize(1);
        GeometryColorMap& map = m_color_maps[0];
        map.name = "color";
        map.values.resize(static_cast<unsigned int>(mesh.positions.size()));
        for (unsigned int i = 0; i < map.values.get_count(); ++i) {
            unsigned char const shade = static_cast<unsigned char>(i * 37);
            map.values[i] = {shade, static_cast<unsigned char>(255 - shade), 128, 255};
        }
    }
}

void PolyMeshInput::set(PolyMesh& mesh, AppProgressBar* progress) const {
    mesh.set(view(m_mesh.positions), {}, view(m_mesh.corners), view(m_mesh.counts), view(m_groups),
             m_names, m_uv_maps, m_normal_maps, m_color_maps, true, progress);
}

unsigned long long PolyMeshInput::get_byte_count() const {
    unsigned long long size =
        12ull * m_mesh.positions.size() + 4ull * (m_mesh.corners.size() + 2 * m_mesh.counts.size());
    for (GeometryUvMap const& map : m_uv_maps) {
        size += 12ull * map.values.get_count() + 4ull * map.indices.get_count();
    }
    for (GeometryNormalMap const& map : m_normal_maps) {
        size += 12ull * map.values.get_count() + 4ull * map.indices.get_count();
    }
    return size;
}

std::shared_ptr<PolyMesh> make_poly_mesh(BenchMesh const& mesh, BenchMaps const& maps) {
    auto const result = std::make_shared<PolyMesh>();
    PolyMeshInput(mesh, maps).set(*result, nullptr);
    return result;
}
