#include <tools/qzpoly/models/mesh_dump.h>

#include <tools/qzpoly/models/polygon_cuts.h>

#include <poly/smoothed/poly_mesh_smoothed.h>
#include <poly/topology/neighbourhood.h>
#include <poly/topology/reverse_poly_order.h>

#include <cstdlib>

namespace {

using Vec3 = GMathVec3<float>;
using Matrix = GMathMatrix4x4<double>;

// The polygons as plain arrays.
struct Polygons {
    CoreArray<Vec3> positions;
    CoreArray<unsigned int> vertex_indices;
    CoreArray<unsigned int> vertex_count;
    CoreArray<unsigned int> shading_groups;

    explicit Polygons(PolyMesh const& mesh) {
        mesh.get_point_cloud()->get_positions(positions);
        mesh.get_polygon_vertex_indices(vertex_indices);
        mesh.get_polygon_vertex_count(vertex_count);
        mesh.get_polygon_shading_groups(shading_groups);
    }
};

void write(DumpWriter& writer, char const* key, CoreBasicArray<unsigned int> const& array) {
    writer.write_array(key, array.get_data(), array.get_count());
}
void write(DumpWriter& writer, char const* key, CoreBasicArray<unsigned char> const& array) {
    writer.write_array(key, array.get_data(), array.get_count());
}
void write(DumpWriter& writer, char const* key, CoreBasicArray<double> const& array) {
    writer.write_array(key, array.get_data(), array.get_count());
}
void write(DumpWriter& writer, char const* key, CoreIndexArray const& packed) {
    CoreArray<unsigned int> array;
    packed.get_array(array);
    write(writer, key, array);
}

// Records of `width` members of type T each, and nothing between them.
template <typename T, typename Record>
void write_records(DumpWriter& writer, char const* key, CoreBasicArray<Record> const& records) {
    constexpr unsigned long long width = sizeof(Record) / sizeof(T);
    static_assert(sizeof(Record) == width * sizeof(T));
    writer.write_array(key, reinterpret_cast<T const*>(records.get_data()),
                       width * records.get_count());
}
template <typename T, typename Record>
void write_record(DumpWriter& writer, char const* key, Record const& record) {
    write_records<T>(writer, key, CoreBasicArray<Record>(&record, 1));
}

// What maps of all kinds have.
template <typename T, typename Map>
void write_map(DumpWriter& writer, Map const& map) {
    writer.write("name", map.name);
    write_records<T>(writer, "values", map.values);
    write(writer, "indices", map.indices);
}

void dump_polygons(PolyMesh const& mesh, Polygons const& polygons, DumpWriter& writer) {
    writer.write("positions_count", polygons.positions.get_count());
    write_records<float, Vec3>(writer, "positions", polygons.positions);
    write(writer, "polygon_vertex_count", polygons.vertex_count);
    write(writer, "polygon_vertex_indices", polygons.vertex_indices);
    write(writer, "polygon_shading_groups", polygons.shading_groups);
    writer.write("shading_group_names", mesh.get_shading_group_names());
}

void dump_primitives(PolyMesh const& mesh, DumpWriter& writer) {
    PolyMeshTopology const& topology = mesh.get_topology();
    CoreArray<unsigned char> infos(topology.primitive_infos);
    for (unsigned char& info : infos) {
        info &= PolyMeshPrimitiveInfo::meaning_mask;
    }
    CoreArray<unsigned int> indices;
    mesh.get_primitive_indices(indices);
    write(writer, "primitive_infos", infos);
    write(writer, "primitive_index_offsets", topology.primitive_index_offsets);
    write(writer, "triangle_indices", topology.triangle_indices);
    write(writer, "primitive_polygon_indices", topology.primitive_polygon_indices);
    write(writer, "primitive_shading_groups", topology.primitive_shading_groups);
    writer.write("primitive_index_count", topology.primitive_index_count);
    writer.write("triangle_count", topology.triangle_count);
    writer.write("quad_count", topology.quad_count);
    writer.write("degenerate_count", count_degenerate_triangles(mesh));
    write(writer, "get_primitive_indices", indices);
}

void dump_geometry(PolyMesh const& mesh, DumpWriter& writer) {
    PolyMeshGeometry const& geometry = mesh.get_geometry();
    write_records<unsigned short, GMathShortNormal>(writer, "normals",
                                                    mesh.get_point_cloud()->get_data().normals);
    write_records<float, PolyMeshNormalSum>(writer, "shading_group_normals",
                                            geometry.shading_group_normals);
    write_record<float>(writer, "mesh_normal", geometry.mesh_normal);
    write_record<float>(writer, "mesh_bbox", geometry.mesh_bbox);
    write_records<float, GMathBbox3<float>>(writer, "shading_group_bbox",
                                            geometry.shading_group_bbox);
}

// The key of the mesh that `set` makes of these arrays, without velocities.
Core128BitHashKey get_set_key(PolyMesh const& mesh, Polygons const& polygons,
                              bool const& check_quads) {
    PolyMesh copy;
    copy.set(polygons.positions, {}, polygons.vertex_indices, polygons.vertex_count,
             polygons.shading_groups, mesh.get_shading_group_names(), {}, {}, {}, check_quads,
             nullptr);
    return copy.get_hash_key();
}

void dump_keys(PolyMesh const& mesh, Polygons const& polygons, bool const& check_quads,
               DumpWriter& writer) {
    unsigned long long size = 0;
    std::unique_ptr<unsigned char, decltype(&std::free)> const block(mesh.serialize(size),
                                                                     &std::free);
    PolyMesh read_back;
    read_back.deserialize(block.get(), size);
    Core128BitHashKey block_key;
    CoreHash::generate_murmur3(block.get(), size, block_key, 0);
    writer.write("hash_key", get_set_key(mesh, polygons, check_quads));
    writer.write("hash_key_deserialize", read_back.get_hash_key());
    writer.write("hash_key_import", mesh.get_hash_key());
    writer.write("serialization_size", size);
    writer.write("serialization_murmur3", block_key);
}

void dump_support(PolyMesh const& mesh, DumpWriter& writer) {
    GeometryPointCloud const& cloud = *mesh.get_point_cloud();
    CoreArray<GMathVec2<float>> uvs(cloud.get_point_count());
    for (unsigned int point = 0; point < uvs.get_count(); ++point) {
        uvs[point] = cloud.get_primitive_uv(point);
    }
    write(writer, "primitive_indices", cloud.get_data().primitive_indices);
    write_records<float, GMathVec2<float>>(writer, "primitive_uvs", uvs);
}

void dump_bounds_and_areas(PolyMesh const& mesh, DumpWriter& writer) {
    CtxEval const ctx;
    Matrix const identity = Matrix::get_identity();
    CoreArray<GMathBbox3<double>> boxes(mesh.get_primitive_count());
    double total_area = 0.0;
    for (unsigned int primitive = 0; primitive < boxes.get_count(); ++primitive) {
        mesh.compute_primitive_bbox(ctx, primitive, boxes[primitive]);
        total_area += mesh.estimate_primitive_area(ctx, primitive, identity);
    }
    CoreArray<double> group_areas(mesh.get_shading_group_names().get_count());
    for (unsigned int group = 0; group < group_areas.get_count(); ++group) {
        group_areas[group] = mesh.estimate_shading_group_area(ctx, group, identity);
    }
    write_records<double, GMathBbox3<double>>(writer, "compute_primitive_bbox", boxes);
    writer.write("estimate_area_identity", mesh.estimate_area(ctx, identity));
    write(writer, "estimate_shading_group_area_identity", group_areas);
    writer.write("estimate_primitive_area_total_identity", total_area);
}

void dump_uv_maps(PolyMesh const& mesh, DumpWriter& writer) {
    writer.begin_list("uv_maps");
    for (unsigned int i = 0; i < mesh.get_uv_map_count(); ++i) {
        GeometryUvMap map;
        mesh.get_polygon_uv_map(i, map, true);
        writer.begin_object();
        write_map<float>(writer, map);
        writer.end_object();
    }
    writer.end_list();
}

void dump_normal_maps(PolyMesh const& mesh, DumpWriter& writer) {
    writer.begin_list("normal_maps");
    for (unsigned int i = 0; i < mesh.get_normal_map_count(); ++i) {
        GeometryNormalMap map;
        mesh.get_polygon_normal_map(i, map);
        PolyMeshNormalMap const& stored = mesh.get_geometry().normal_maps[i];
        writer.begin_object();
        write_map<float>(writer, map);
        write(writer, "polygon_indices", stored.polygon_indices);
        write_records<unsigned short, GMathShortNormal>(writer, "extra_normals", stored.normals);
        writer.end_object();
    }
    writer.end_list();
}

void dump_color_maps(PolyMesh const& mesh, DumpWriter& writer) {
    writer.begin_list("color_maps");
    for (unsigned int i = 0; i < mesh.get_color_map_count(); ++i) {
        GeometryColorMap map;
        mesh.get_polygon_color_map(i, map, true);
        writer.begin_object();
        write_map<unsigned char>(writer, map);
        writer.end_object();
    }
    writer.end_list();
}

// The vertices of the triangles that primitives are made of, a quad being two; and those of the
// quads.
void list_primitives(PolyMesh const& mesh, CoreArray<unsigned int>& triangles,
                     CoreArray<unsigned int>& quads) {
    CoreArray<unsigned int> indices;
    mesh.get_primitive_indices(indices);
    unsigned int const* v = indices.get_data();
    for (unsigned int primitive = 0; primitive < mesh.get_primitive_count(); ++primitive) {
        bool const is_quad = mesh.get_primitive_edge_count(primitive) == 4;
        for (unsigned int const k : {0u, 1u, 2u}) {
            triangles.append(v[k]);
        }
        for (unsigned int const k : {0u, 2u, 3u}) {
            if (is_quad) {
                triangles.append(v[k]);
            }
        }
        for (unsigned int k = 0; is_quad && k < 4; ++k) {
            quads.append(v[k]);
        }
        v += is_quad ? 4 : 3;
    }
}

void dump_neighbours(PolyMesh const& mesh, Polygons const& polygons, DumpWriter& writer) {
    unsigned int const vertex_count = mesh.get_vertex_count();
    CoreArray<unsigned int> triangles;
    CoreArray<unsigned int> quads;
    list_primitives(mesh, triangles, quads);
    CoreArray<unsigned int> neighbours;
    compute_triangles_neighbourhood(neighbours, triangles, vertex_count, nullptr);
    write(writer, "triangle_neighbours", neighbours);
    compute_quads_neighbourhood(neighbours, quads, vertex_count, nullptr);
    write(writer, "quad_neighbours", neighbours);

    CoreArray<unsigned int> offsets(polygons.vertex_count.get_count());
    unsigned int offset = 0;
    for (unsigned int polygon = 0; polygon < offsets.get_count(); ++polygon) {
        offsets[polygon] = offset;
        offset += polygons.vertex_count[polygon];
    }
    CoreArray<unsigned int> edges;
    CoreArray<unsigned char> manifold;
    compute_polygons_neighbourhood(neighbours, edges, manifold, polygons.vertex_indices,
                                   polygons.vertex_count, offsets, vertex_count, nullptr);
    write(writer, "neighbour_polygons", neighbours);
    write(writer, "neighbour_edges", edges);
    write(writer, "edge_manifold", manifold);
}

void dump_smoothed(PolyMesh const& mesh, std::vector<double> const& angles, DumpWriter& writer) {
    if (angles.empty()) {
        return;
    }
    writer.begin_list("smooth");
    for (double const angle : angles) {
        PolyMeshSmoothed smoothed;
        smoothed.set(mesh, angle, 0xFFFFFFFFu, nullptr);
        PolyMeshNormalMap const empty;
        PolyMeshNormalMap const* const current = smoothed.get_current_normal_map();
        PolyMeshNormalMap const& map = current ? *current : empty;
        writer.begin_object();
        writer.write("smoothing_angle", angle);
        write(writer, "polygon_indices", map.polygon_indices);
        writer.write("normals_count", map.normals.get_count());
        write_records<unsigned short, GMathShortNormal>(writer, "normals", map.normals);
        writer.write("normal_map_name", map.name);
        writer.end_object();
    }
    writer.end_list();
}

}  // namespace

void dump_mesh(PolyMesh const& mesh, ToolDumpRequest const& request, DumpWriter& writer) {
    Polygons polygons(mesh);
    writer.begin_object();
    writer.write("check_quads", request.check_quads);
    dump_polygons(mesh, polygons, writer);
    dump_primitives(mesh, writer);
    dump_geometry(mesh, writer);
    dump_keys(mesh, polygons, request.check_quads, writer);
    dump_support(mesh, writer);
    dump_neighbours(mesh, polygons, writer);
    reverse_poly_order(polygons.vertex_count, polygons.vertex_indices);
    write(writer, "reverse_poly_order", polygons.vertex_indices);
    dump_bounds_and_areas(mesh, writer);
    dump_uv_maps(mesh, writer);
    dump_normal_maps(mesh, writer);
    dump_color_maps(mesh, writer);
    dump_smoothed(mesh, request.smoothing_angles, writer);
    writer.write("get_memory_size", mesh.get_memory_size());
    writer.end_object();
}
