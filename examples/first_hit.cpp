#include <poly/mesh/poly_mesh.h>

#include <cstdio>

int main() {
    GMathVec3<float> const points[] = {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 2, 0}, {0, 1, 0}};
    unsigned int const corners[] = {0, 1, 2, 3, 4};
    unsigned int const corner_counts[] = {5};
    unsigned int const groups[] = {0};
    CoreString const names[] = {"gable"};

    PolyMesh mesh;  // a pentagon becomes three triangles
    mesh.set({points, 5}, {}, {corners, 5}, {corner_counts, 1}, {groups, 1}, {names, 1}, {}, {}, {},
             true, nullptr);

    GeometryRay ray;
    ray.ray = GMathBasicRay({1, 1, 5}, {0, 0, -1});
    GeometryHit hit;
    GeometryRaytraceCtx rays(&ray, &hit, 1);
    for (unsigned int i = 0; i < mesh.get_primitive_count(); ++i) {
        mesh.intersect_primitive(CtxEval(), i, rays);
    }
    GeometryFragment fragment;
    fragment.primitive_index = hit.primitive_index;
    fragment.s = hit.s;
    fragment.t = hit.t;
    GeometrySample sample;
    mesh.compute_fragment_sample(CtxEval(), fragment, sample);
    std::printf("primitive %u at distance %g, where z is %g and the normal points up: %g\n",
                hit.primitive_index, hit.distance, double(sample.get_position().z),
                double(sample.get_shading_normal().z));
}
