#include <platform/qz_event.h>
#include <poly/mesh/poly_mesh.h>

QZ_DEFINE_EVENT(application_started, "application started");

int main() {
    PolyMesh::class_info();
    return get_counted_events() > 0 ? 0 : 1;
}
