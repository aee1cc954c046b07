#pragma once

#include <python/box_tree.h>

#include <poly/mesh/poly_mesh.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

// A mesh as Python holds it: it never changes, so that arrays may look into it as long as they keep
// it alive, and so that any number of threads may ask it.
class PythonMesh {
  public:
    // `warnings`: what was said while the mesh was made.
    PythonMesh(std::unique_ptr<PolyMesh const> mesh, bool const& check_quads,
               std::string const& warnings)
        : m_mesh(std::move(mesh)), m_check_quads(check_quads), m_warnings(warnings) {}

    // An object that Python made by `__new__` alone is all zeros, and raises TypeError here.
    PolyMesh const& get() const;
    static void* operator new(std::size_t size);
    static void operator delete(void* object);

    bool const& are_quads_checked() const { return m_check_quads; }
    std::string const& get_warnings() const { return m_warnings; }

    // The tree at rest, or at a time: the last one asked for is kept.
    std::shared_ptr<PythonBoxTree const> get_tree(std::optional<double> const& time) const;

  private:
    std::unique_ptr<PolyMesh const> m_mesh;
    bool m_check_quads;
    std::string m_warnings;
    mutable std::mutex m_mutex;
    mutable std::shared_ptr<PythonBoxTree const> m_tree;
    mutable std::optional<double> m_tree_time;
};
