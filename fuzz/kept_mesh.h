#pragma once

#include <fuzz/checks.h>
#include <fuzz/mesh_digest.h>
#include <fuzz/query_everything.h>
#include <tests/shapes.h>

#include <memory>

// A mesh with something in every array: what refuses to fill it must leave it as it is.
class KeptMesh {
  public:
    KeptMesh() { renew(); }

    // `fill` fills a mesh and returns whether it could; if so, the mesh is asked everything.
    template <typename Fill>
    void run(Fill const& fill) {
        if (!fill(*m_mesh)) {
            require(get_digest(*m_mesh) == m_digest, "a refusal leaves the mesh as it is");
            return;
        }
        query_everything(*m_mesh);
        renew();
    }

  private:
    void renew() {
        m_mesh = std::make_unique<PolyMesh>();
        make_soup(0).set(*m_mesh);
        CoreArray<int> creases(2);
        creases.fill(1);
        CoreArray<float> sharpnesses(1);
        sharpnesses.fill(0.5f);
        m_mesh->set_creases(creases, sharpnesses);
        m_digest = get_digest(*m_mesh);
    }

    std::unique_ptr<PolyMesh> m_mesh;
    std::size_t m_digest = 0;
};
