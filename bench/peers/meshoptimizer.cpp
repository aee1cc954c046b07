#include <bench/peers.h>

#include <meshoptimizer.h>

#include <memory>

namespace {

// Of each triangle, its corners and the ones beyond its edges; those of borders are its own.
unsigned long long count_borders(std::vector<unsigned int> const& adjacency) {
    unsigned long long count = 0;
    for (std::size_t i = 0; i < adjacency.size(); i += 2) {
        count += adjacency[i] == adjacency[i + 1];
    }
    return count;
}

}  // namespace

NeighboursWork make_meshoptimizer_neighbours(BenchMesh const& mesh) {
    auto const adjacency = std::make_shared<std::vector<unsigned int>>();
    auto const build = [=, &mesh] {
        *adjacency = std::vector<unsigned int>(2 * mesh.corners.size());
        meshopt_generateAdjacencyIndexBuffer(adjacency->data(), mesh.corners.data(),
                                             mesh.corners.size(), &mesh.positions.data()->x,
                                             mesh.positions.size(), sizeof(GMathVec3<float>));
    };
    return {build, [=] { return count_borders(*adjacency); }};
}
