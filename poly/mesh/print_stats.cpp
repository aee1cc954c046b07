#include <poly/mesh/array_sizes.h>
#include <poly/mesh/log_message.h>
#include <poly/mesh/poly_mesh.h>

namespace {

// Each line stands for itself: the level is asked for every one.
template <typename T>
void log_line(char const* label, T const& value) {
    log_message(LOG_INFORMATION, label, value, "\n");
}

void log_point_cloud(GeometryPointCloud const& cloud) {
    GeometryPointCloudData const& points = cloud.get_data();
    auto const get_bytes = [](auto const& array, unsigned long long const& element_size) {
        return element_size * array.get_count();
    };
    log_line("POINT CLOUD: ", cloud.get_memory_size());
    log_line("  support_geometries:         ", points.support_geometries.get_memory_size());
    log_line("  geometry_indices:           ", points.geometry_indices.get_memory_size());
    log_line("  primitive_indices:          ", points.primitive_indices.get_memory_size());
    log_line("  primitive_uvs:              ", get_bytes(points.primitive_uvs, 4));
    log_line("  positions:                  ", get_bytes(points.positions, 12));
    log_line("  normals:                    ", get_bytes(points.normals, 6));
    log_line("  velocities:                 ", get_bytes(points.velocities, 12));
}

struct UvMapSizes {
    unsigned long long total = 16;
    unsigned long long polygon_indices = 0;
    unsigned long long vertices = 0;
};

// Deliberate: what one map adds to a sum is taken modulo 2^32.
unsigned int get_share(unsigned long long const& size) { return static_cast<unsigned int>(size); }

UvMapSizes get_uv_map_sizes(PolyMeshTopology const& topology) {
    UvMapSizes sizes;
    for (PolyMeshUvMap const& map : topology.uv_maps) {
        unsigned long long const indices = get_own_index_size(map, topology);
        unsigned long long const values = map.values.get_memory_size();
        sizes.total += get_share(values + 24 + map.name.get_length() + indices);
        sizes.polygon_indices += get_share(indices);
        sizes.vertices += get_share(values);
    }
    return sizes;
}

void log_topology(PolyMeshTopology const& topology) {
    struct Line {
        char const* label;
        unsigned long long size;
    };
    UvMapSizes const uv_maps = get_uv_map_sizes(topology);
    unsigned long long names = get_array_size(topology.shading_group_names, 16);
    for (CoreString const& name : topology.shading_group_names) {
        names += name.get_length();
    }
    Line const lines[] = {
        {"  polygon_vertex_count:       ", topology.polygon_vertex_count.get_memory_size()},
        {"  polygon_vertex_indices:     ", topology.polygon_vertex_indices.get_memory_size()},
        {"  polygon_shading_groups:     ", topology.polygon_shading_groups.get_memory_size()},
        {"  triangle_indices:           ", topology.triangle_indices.get_memory_size()},
        {"  primitive_index_offsets:    ", topology.primitive_index_offsets.get_memory_size()},
        {"  primitive_polygon_indices:  ", topology.primitive_polygon_indices.get_memory_size()},
        {"  primitive_shading_groups:   ", topology.primitive_shading_groups.get_memory_size()},
        {"  primitive_infos:            ", get_array_size(topology.primitive_infos, 1)},
        {"  shading_group_names:        ", names},
        {"  uv_maps:                    ", uv_maps.total},
    };
    unsigned long long total = 0;
    for (Line const& line : lines) {
        total += line.size;
    }
    log_line("TOPOLOGY: ", total);
    for (Line const& line : lines) {
        log_line(line.label, line.size);
    }
    log_line("    count:                    ", topology.uv_maps.get_count());
    log_line("    polygon_indices:          ", uv_maps.polygon_indices);
    log_line("    vertices:                 ", uv_maps.vertices);
}

void log_geometry(PolyMeshGeometry const& geometry) {
    unsigned long long const boxes =
        get_array_size(geometry.shading_group_bbox, sizeof(GMathBbox3<float>));
    unsigned long long maps = 16;
    unsigned long long indices = 0;
    unsigned long long normals = 0;
    for (PolyMeshNormalMap const& map : geometry.normal_maps) {
        unsigned long long const map_indices = map.polygon_indices.get_memory_size();
        unsigned long long const map_normals = map.normals.get_memory_size();
        maps += get_share(16 + map.name.get_length() + map_indices + map_normals);
        indices += get_share(map_indices);
        normals += get_share(map_normals);
    }
    log_line("GEOMETRY: ", boxes + maps);
    log_line("  shading_group_bbox:         ", boxes);
    log_line("  normal_maps:                ", maps);
    log_line("    count:                    ", geometry.normal_maps.get_count());
    log_line("    polygon_indices:          ", indices);
    log_line("    normals:                  ", normals);
}

}  // namespace

void PolyMesh::print_stats() const {
    log_point_cloud(m_point_cloud);
    log_topology(*m_topology);
    log_geometry(*m_geometry);
}
