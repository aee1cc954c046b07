#pragma once

#include <platform/qz_core.h>
#include <platform/qz_gmath.h>

#include <map>
#include <string>
#include <vector>

template <typename T>
CoreBasicArray<T> view(std::vector<T> const& values) {
    return {values.data(), static_cast<unsigned int>(values.size())};
}

// A mesh as plain arrays. Normals are per vertex; uvs have an index per corner; both may be empty.
struct BenchMesh {
    std::vector<GMathVec3<float>> positions;
    std::vector<unsigned int> corners;
    std::vector<unsigned int> counts;
    std::vector<GMathVec3<float>> normals;
    std::vector<GMathVec3<float>> uvs;
    std::vector<unsigned int> uv_corners;
};

// `segments` around the axis times `rings` from pole to pole, with normals, and uvs with a seam.
BenchMesh make_sphere(unsigned int const& segments, unsigned int const& rings);
// size x size quads over a plane, none of them planar.
BenchMesh make_terrain(unsigned int const& size);
// width x height polygons of 5 to 12 corners over a plane, which share their edges.
BenchMesh make_polygons(unsigned int const& width, unsigned int const& height);
// Positions, and every polygon as a fan of triangles.
BenchMesh make_fans(BenchMesh const& mesh);

// The inputs by name, made when they are first asked for: "sphere", "terrain" and "polygons", and
// the models that are found: "bunny", "spot" and "rocker-arm"; behind any name "-triangles", to
// have polygons as fans. Every run makes the same.
class BenchInputs {
  public:
    // Files are kept in `folder`; small ones where `is_short`. Models lie in $QZ_POLY_MODELS.
    BenchInputs(std::string const& folder, bool const& is_short);

    bool const& is_short() const { return m_is_short; }
    // Those above that are there.
    std::vector<std::string> const& get_names() const { return m_names; }
    bool has(std::string const& name) const;
    BenchMesh const& get_mesh(std::string const& name);
    // The mesh as an OBJ file.
    std::string get_obj(std::string const& name);
    std::string get_terrain_obj(unsigned int const& size);
    // OBJ files of 5,000 polygons or so, each another.
    std::vector<std::string> get_small_objs(unsigned int const& count);
    // The terrain as a LightWave object: four-byte indices, a surface, a uv map by point, and its
    // values of their own for every tenth polygon.
    std::string get_lwo();
    // The folder of the models; empty without.
    std::string const& get_models() const { return m_models; }

  private:
    std::string get_model(std::string const& name) const;
    std::string get_file(std::string const& name) const;

    std::string m_folder;
    std::string m_models;
    bool m_is_short;
    std::vector<std::string> m_names;
    std::map<std::string, BenchMesh> m_meshes;
};
