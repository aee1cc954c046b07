#include <python/making.h>
#include <python/messages.h>
#include <python/queries.h>

#include <tools/qzpoly/models/dump_writer.h>
#include <tools/qzpoly/models/mesh_dump.h>

#include <pybind11/stl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace py = pybind11;
using namespace pybind11::literals;

namespace {

PolyMesh const& get_mesh(py::object const& self) { return self.cast<PythonMesh const&>().get(); }

// An array that looks into the mesh: read-only, and the mesh lives as long as it does. Records of T
// alone, `width` of them; a width of 1 gives a plain row.
template <typename T, typename Record>
py::array view(py::object const& self, CoreBasicArray<Record> const& records) {
    constexpr py::ssize_t width = sizeof(Record) / sizeof(T);  // NOLINT(bugprone-sizeof-*)
    static_assert(sizeof(Record) == width * sizeof(T));
    std::vector<py::ssize_t> shape = {records.get_count()};
    if (width > 1) {
        shape.push_back(width);
    }
    // NumPy takes no null, which an array without entries may have.
    static T const nothing{};
    T const* const data =
        records.is_empty() ? &nothing : reinterpret_cast<T const*>(records.get_data());
    py::array_t<T> array(shape, data, self);
    array.attr("setflags")("write"_a = false);
    return array;
}

template <typename T, typename Record>
py::array copy(CoreBasicArray<Record> const& records) {
    constexpr py::ssize_t width = sizeof(Record) / sizeof(T);  // NOLINT(bugprone-sizeof-*)
    static_assert(sizeof(Record) == width * sizeof(T));
    std::vector<py::ssize_t> shape = {records.get_count()};
    if (width > 1) {
        shape.push_back(width);
    }
    py::array_t<T> array(shape);
    if (!records.is_empty()) {
        std::memcpy(array.mutable_data(), records.get_data(), sizeof(Record) * records.get_count());
    }
    return array;
}

py::array unpack(CoreIndexArray const& packed) {
    CoreArray<unsigned int> indices;
    packed.get_array(indices);
    return copy<unsigned int, unsigned int>(indices);
}

GeometryPointCloudData const& get_points(py::object const& self) {
    return get_mesh(self).get_point_cloud()->get_data();
}

// Four vertices a primitive; a triangle's fourth is 0xFFFFFFFF.
py::array get_primitive_vertices(PolyMesh const& mesh) {
    CoreArray<unsigned int> indices;
    mesh.get_primitive_indices(indices);
    py::array_t<unsigned int> array({py::ssize_t(mesh.get_primitive_count()), py::ssize_t(4)});
    unsigned int* at = array.mutable_data();
    unsigned int from = 0;
    for (unsigned int i = 0; i < mesh.get_primitive_count(); ++i) {
        unsigned int const count = mesh.get_primitive_edge_count(i);
        for (unsigned int k = 0; k < 4; ++k) {
            *at++ = k < count ? indices[from + k] : 0xFFFFFFFFu;
        }
        from += count;
    }
    return array;
}

py::array get_primitive_bounds(PolyMesh const& mesh) {
    CoreArray<GMathBbox3<double>> boxes(mesh.get_primitive_count());
    for (unsigned int i = 0; i < boxes.get_count(); ++i) {
        mesh.compute_primitive_bbox(CtxEval(), i, boxes[i]);
    }
    return copy<double, GMathBbox3<double>>(boxes).reshape({-1, 2, 3});
}

py::array get_bounds(PolyMesh const& mesh) {
    GMathBbox3<double> const box = mesh.get_bbox();
    return copy<double, GMathBbox3<double>>({&box, 1}).reshape({2, 3});
}

py::object make_map(CoreString const& name, py::array const& values,
                    CoreArray<unsigned int> const& indices) {
    py::object const by_corner = indices.is_empty()
                                     ? py::object(py::none())
                                     : py::object(copy<unsigned int, unsigned int>(indices));
    return py::module_::import("qz_poly.records").attr("Map")(make_text(name), values, by_corner);
}

py::tuple get_uv_maps(PolyMesh const& mesh) {
    py::list maps;
    CoreArray<GeometryUvMap> uv_maps;
    mesh.get_polygon_uv_maps(uv_maps, false);
    for (GeometryUvMap const& map : uv_maps) {
        maps.append(make_map(map.name, copy<float, GMathVec3<float>>(map.values), map.indices));
    }
    return py::tuple(maps);
}

py::tuple get_normal_maps(PolyMesh const& mesh) {
    py::list maps;
    CoreArray<GeometryNormalMap> normal_maps;
    mesh.get_polygon_normal_maps(normal_maps);
    for (GeometryNormalMap const& map : normal_maps) {
        maps.append(make_map(map.name, copy<float, GMathVec3<float>>(map.values), map.indices));
    }
    return py::tuple(maps);
}

// Colors are kept as they came, so that their values need no copy.
py::tuple get_color_maps(py::object const& self) {
    PolyMesh const& mesh = get_mesh(self);
    py::list maps;
    for (unsigned int i = 0; i < mesh.get_color_map_count(); ++i) {
        GeometryColorMap map;
        mesh.get_polygon_color_map(i, map, false);
        maps.append(make_map(map.name,
                             view<unsigned char, GMathVec4<unsigned char>>(
                                 self, mesh.get_topology().color_maps[i].values),
                             map.indices));
    }
    return py::tuple(maps);
}

py::tuple get_group_names(PolyMesh const& mesh) {
    py::list names;
    for (CoreString const& name : mesh.get_shading_group_names()) {
        names.append(make_text(name));
    }
    return py::tuple(names);
}

std::string get_key(PolyMesh const& mesh) { return write_key(mesh.get_hash_key()); }

std::string dump(PythonMesh const& mesh, bool const& digests, std::vector<double> const& angles) {
    for (double const angle : angles) {
        if (!(angle >= 0 && angle <= 180)) {
            throw py::value_error("smoothing_angles: degrees from 0 to 180 are needed");
        }
    }
    char* text = nullptr;
    std::size_t size = 0;
    std::FILE* const stream = open_memstream(&text, &size);
    if (stream == nullptr) {
        throw std::bad_alloc();
    }
    DumpWriter writer(stream, digests);
    dump_mesh(mesh.get(), {mesh.are_quads_checked(), angles}, writer);
    writer.finish();
    std::fclose(stream);
    std::string const json(text, size);
    std::free(text);
    return json;
}

py::bytes serialize(PolyMesh const& mesh) {
    unsigned long long size = 0;
    unsigned char* const block = mesh.serialize(size);
    if (block == nullptr) {
        throw py::value_error("serialize: there is no memory for the block");
    }
    std::string const bytes(reinterpret_cast<char const*>(block), size);
    std::free(block);
    return bytes;
}

std::string describe(PolyMesh const& mesh) {
    CoreString text("<qz_poly.Mesh: ");
    text.append(mesh.get_vertex_count()).append(" vertices, ").append(mesh.get_polygon_count());
    text.append(" polygons, ").append(mesh.get_primitive_count()).append(" primitives>");
    return std::string(text.get_view());
}

// One text a line.
py::tuple get_warnings(PythonMesh const& mesh) {
    py::list warnings;
    std::string_view text = mesh.get_warnings();
    while (!text.empty()) {
        std::string_view const line = text.substr(0, text.find('\n'));
        warnings.append(make_text(CoreString(line)));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return py::tuple(warnings);
}

// A property of the mesh, by a function of it.
template <typename Get>
auto of_mesh(Get const& get) {
    return [get](PythonMesh const& self) { return get(self.get()); };
}

}  // namespace

PYBIND11_MODULE(_native, module) {
    PythonMessages::install();
    py::class_<PythonMesh> mesh(module, "Mesh");
    mesh.def(py::init(&make_from_arrays), "positions"_a, "corners"_a,
             "corner_counts"_a = py::none(), py::kw_only(), "groups"_a = py::none(),
             "group_names"_a = py::none(), "velocities"_a = py::none(), "uv_maps"_a = py::tuple(),
             "normal_maps"_a = py::tuple(), "color_maps"_a = py::tuple(), "check_quads"_a = true)
        .def_static("from_file", &make_from_file, "path"_a, py::kw_only(), "item"_a = "",
                    "check_quads"_a = true)
        .def_static("from_block", &make_from_block, "block"_a)
        .def_static("sphere", &make_sphere, "segments"_a, "rings"_a, "radius"_a = 1.0)
        .def("__repr__", of_mesh(&describe));

    auto const counts = [&](char const* name, unsigned int (PolyMesh::*get)() const) {
        mesh.def_property_readonly(name,
                                   [get](PythonMesh const& self) { return (self.get().*get)(); });
    };
    counts("vertex_count", &PolyMesh::get_vertex_count);
    counts("polygon_count", &PolyMesh::get_polygon_count);
    counts("corner_count", &PolyMesh::get_polygon_index_count);
    counts("primitive_count", &PolyMesh::get_primitive_count);

    auto const views = [&](char const* name, py::array (*get)(py::object const&)) {
        mesh.def_property_readonly(name, get);
    };
    views("positions", [](py::object const& self) {
        return view<float, GMathVec3<float>>(self, get_points(self).positions);
    });
    views("velocities", [](py::object const& self) {
        return view<float, GMathVec3<float>>(self, get_points(self).velocities);
    });
    views("packed_normals", [](py::object const& self) {
        return view<unsigned short, GMathShortNormal>(self, get_points(self).normals);
    });
    views("primitive_infos", [](py::object const& self) {
        return view<unsigned char, unsigned char>(self,
                                                  get_mesh(self).get_topology().primitive_infos);
    });
    views("creases", [](py::object const& self) {
        CoreArray<int> const& indices = get_mesh(self).get_polygon_creases_indice();
        return view<int, int>(self, indices).reshape({-1, 2});
    });
    views("crease_sharpnesses", [](py::object const& self) {
        return view<float, float>(self, get_mesh(self).get_polygon_creases_sharpnesses());
    });

    auto const copies = [&](char const* name, py::object (*get)(PolyMesh const&)) {
        mesh.def_property_readonly(name, of_mesh(get));
    };
    copies("normals", [](PolyMesh const& of) -> py::object {
        CoreArray<GMathVec3<float>> normals;
        of.get_point_cloud()->get_normals(normals);
        return copy<float, GMathVec3<float>>(normals);
    });
    copies("polygon_corner_counts", [](PolyMesh const& of) -> py::object {
        return unpack(of.get_topology().polygon_vertex_count);
    });
    copies("polygon_corners", [](PolyMesh const& of) -> py::object {
        return unpack(of.get_topology().polygon_vertex_indices);
    });
    copies("polygon_groups", [](PolyMesh const& of) -> py::object {
        return unpack(of.get_topology().polygon_shading_groups);
    });
    copies("primitive_polygons", [](PolyMesh const& of) -> py::object {
        return unpack(of.get_topology().primitive_polygon_indices);
    });
    copies("primitive_groups", [](PolyMesh const& of) -> py::object {
        return unpack(of.get_topology().primitive_shading_groups);
    });
    copies("primitive_vertices",
           [](PolyMesh const& of) -> py::object { return get_primitive_vertices(of); });
    copies("primitive_bounds",
           [](PolyMesh const& of) -> py::object { return get_primitive_bounds(of); });
    copies("bounds", [](PolyMesh const& of) -> py::object { return get_bounds(of); });
    copies("group_names", [](PolyMesh const& of) -> py::object { return get_group_names(of); });
    copies("uv_maps", [](PolyMesh const& of) -> py::object { return get_uv_maps(of); });
    copies("normal_maps", [](PolyMesh const& of) -> py::object { return get_normal_maps(of); });
    mesh.def_property_readonly("color_maps", &get_color_maps)
        .def_property_readonly("key", of_mesh(&get_key))
        .def_property_readonly("memory_size",
                               [](PythonMesh const& self) { return self.get().get_memory_size(); })
        .def_property_readonly("warnings", &get_warnings);

    mesh.def("intersect", &intersect, "origins"_a, "directions"_a, py::kw_only(), "exact"_a = true,
             "min_distance"_a = 0.0, "max_distance"_a = std::numeric_limits<double>::infinity(),
             "time"_a = py::none())
        .def("sample", &sample, "primitives"_a, "s"_a, "t"_a, py::kw_only(), "time"_a = py::none())
        .def("sample_uv", &sample_uv, "uv_map"_a, "primitives"_a, "s"_a, "t"_a)
        .def("sample_color", &sample_color, "color_map"_a, "primitives"_a, "s"_a, "t"_a)
        .def("dump", &dump, py::kw_only(), "digests"_a = false, "smoothing_angles"_a = py::tuple())
        .def("serialize", of_mesh(&serialize));
}
