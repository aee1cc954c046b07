#include <fuzz/checks.h>

#include <poly/mesh/mesh_invariants.h>

#include <cstdio>
#include <cstdlib>

#include <unistd.h>

void require(bool const& holds, char const* law) {
    if (!holds) {
        ::dprintf(STDERR_FILENO, "broken: %s\n", law);
        std::abort();
    }
}

void require_sound(PolyMesh const& mesh, bool const& edges_are_built) {
    std::string const broken = find_broken_invariant(mesh, edges_are_built);
    require(broken.empty(), broken.c_str());
}
