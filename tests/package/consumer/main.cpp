#include <platform/qz_core.h>
#include <platform/qz_event.h>
#include <platform/qz_module.h>
#include <poly/mesh/poly_mesh.h>

#include <cstdio>

QZ_DEFINE_EVENT(consumer_started, "consumer started");

int main() {
    GMathVec3<float> const points[] = {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 2, 0}, {0, 1, 0}};
    unsigned int const corners[] = {0, 1, 2, 3, 4};
    unsigned int const corner_counts[] = {5};
    unsigned int const groups[] = {0};
    CoreString const names[] = {"gable"};
    PolyMesh mesh;
    mesh.set({points, 5}, {}, {corners, 5}, {corner_counts, 1}, {groups, 1}, {names, 1}, {}, {}, {},
             true, nullptr);

    GeometryRay ray;
    ray.ray = GMathBasicRay({1, 1, 5}, {0, 0, -1});
    GeometryHit hit;
    GeometryRaytraceCtx rays(&ray, &hit, 1);
    for (unsigned int i = 0; i < mesh.get_primitive_count(); ++i) {
        mesh.intersect_primitive(CtxEval(), i, rays);
    }
    std::printf("primitive %u at distance %g\n", hit.primitive_index, hit.distance);
    bool is_right =
        hit.distance == 5 && &mesh.get_class_info() == CoreClassInfo::get_class("PolyMesh");
#ifdef OWN_PLATFORM
    is_right = is_right && get_counted_events() > 0 && ModuleGeometry::is_own;
#endif
    return is_right ? 0 : 1;
}
