#include <platform/qz_lwo/lwo_axes.h>

namespace {

constexpr unsigned int polygons_per_check = 0x1000;

// Twice the polygon's area as seen along z: the z component of its normal at full length.
double compute_normal_z(LwoMesh const& mesh, unsigned int const& first_corner,
                        unsigned int const& corner_count) {
    unsigned int const* const corners = mesh.polygon_vertex_indices.get_data() + first_corner;
    GMathVec3<double> const origin(mesh.positions[corners[0]]);
    GMathVec3<double> last = GMathVec3<double>(mesh.positions[corners[corner_count - 1]]) - origin;
    double sum = 0.0;
    for (unsigned int i = 0; i < corner_count; ++i) {
        GMathVec3<double> const next = GMathVec3<double>(mesh.positions[corners[i]]) - origin;
        sum += last.x * next.y - next.x * last.y;
        last = next;
    }
    return sum;
}

// Votes for keeping the normals of a polygon less votes for negating z. The distances to the
// polygon's normal differ only by the products of the z components.
long long count_votes(LwoMesh const& mesh, GeometryNormalMap const& map,
                      unsigned int const& first_corner, unsigned int const& corner_count) {
    double const normal_z = compute_normal_z(mesh, first_corner, corner_count);
    long long votes = 0;
    for (unsigned int i = first_corner; i < first_corner + corner_count; ++i) {
        unsigned int const value =
            map.indices.is_empty() ? mesh.polygon_vertex_indices[i] : map.indices[i];
        if (value != CoreIndexArray::absent) {
            double const product = static_cast<double>(map.values[value].z) * normal_z;
            votes += product > 0.0 ? 1 : product < 0.0 ? -1 : 0;
        }
    }
    return votes;
}

}  // namespace

bool lwo_convert_normals(LwoMesh const& mesh, GeometryNormalMap& map, LwoReport& report) {
    long long votes = 0;
    unsigned int first_corner = 0;
    for (unsigned int i = 0; i < mesh.polygon_vertex_count.get_count(); ++i) {
        if (i % polygons_per_check == 0 && !report.advance(0)) {
            return false;
        }
        votes += count_votes(mesh, map, first_corner, mesh.polygon_vertex_count[i]);
        first_corner += mesh.polygon_vertex_count[i];
    }
    if (votes < 0) {
        for (GMathVec3<float>& normal : map.values) {
            normal.z = -normal.z;
        }
    }
    return true;
}
