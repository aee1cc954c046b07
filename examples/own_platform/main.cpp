// An application with events and models of its own, which renders by this library.
#include <platform/qz_event.h>
#include <poly/mesh/poly_mesh.h>

#include <cstdio>

QZ_DEFINE_EVENT(application_started, "application started");

int main(int count, char** arguments) {
    PolyMesh mesh;
    if (count != 2 || !mesh.import_from_file(arguments[1], "", 0, nullptr, nullptr)) {
        return 1;
    }
    std::printf("%u triangles of %s, %u event\n", mesh.get_primitive_count(),
                mesh.get_shading_group_names()[0].get_data(), get_counted_events());
}
