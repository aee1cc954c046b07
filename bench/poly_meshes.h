#pragma once

#include <bench/make_inputs.h>

#include <poly/mesh/poly_mesh.h>

#include <memory>

// Which maps of an input enter the mesh. An input without uvs has its positions for them; the color
// map, of a color per vertex, is made up.
struct BenchMaps {
    bool has_uvs = false;
    bool has_normals = false;
    bool has_colors = false;
};

// What `set` takes, so that it can be called again and again.
class PolyMeshInput {
  public:
    PolyMeshInput(BenchMesh const& mesh, BenchMaps const& maps);
    void set(PolyMesh& mesh, AppProgressBar* progress) const;
    unsigned long long get_byte_count() const;

  private:
    BenchMesh const& m_mesh;
    std::vector<unsigned int> m_groups;
    CoreArray<CoreString> m_names;
    CoreArray<GeometryUvMap> m_uv_maps;
    CoreArray<GeometryNormalMap> m_normal_maps;
    CoreArray<GeometryColorMap> m_color_maps;
};

// In one group, 4-gons that are not convex cut.
std::shared_ptr<PolyMesh> make_poly_mesh(BenchMesh const& mesh, BenchMaps const& maps = {});
