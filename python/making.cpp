#include <python/making.h>

#include <python/array_arguments.h>
#include <python/messages.h>

#include <platform/qz_app_base.h>
#include <platform/qz_sys.h>
#include <poly/module/poly_helpers.h>

namespace py = pybind11;

namespace {

constexpr unsigned int largest_sphere_count = 8192;
constexpr unsigned int largest_index = 0xFFFFFFFEu;

[[noreturn]] void refuse(char const* error, std::string const& text) {
    throw py::value_error(std::string(error) + text);
}

// The maps of a kind: an iterable of (name, values, indices or None).
template <typename Map, typename GetValues>
CoreArray<Map> get_maps(py::object const& argument, char const* name, GetValues const& get_values,
                        unsigned int const& vertex_count, unsigned int const& corner_count) {
    CoreArray<Map> maps;
    for (py::handle const entry : argument) {
        if (!py::isinstance<py::sequence>(entry) || py::len(entry) != 3) {
            throw py::type_error(std::string(name) + ": each must be (name, values, indices)");
        }
        py::sequence const parts = py::reinterpret_borrow<py::sequence>(entry);
        Map map;
        map.name = get_text(parts[0]);
        map.values = get_values(py::object(parts[1]), name);
        unsigned int const value_count = map.values.get_count();
        if (!py::object(parts[2]).is_none()) {
            map.indices = get_indices(parts[2], name, value_count, true);
        }
        unsigned int const needed = map.indices.is_empty() ? vertex_count : corner_count;
        unsigned int const given = map.indices.is_empty() ? value_count : map.indices.get_count();
        if (given != needed) {
            refuse(name, ": a value for each of the " + std::to_string(vertex_count) +
                             " vertices is needed, or an index for each of the " +
                             std::to_string(corner_count) + " corners");
        }
        maps.append(map);
    }
    return maps;
}

CoreArray<GMathVec3<float>> get_vectors(py::object const& argument, char const* name) {
    return copy_rows(get_rows<float>(argument, name, false));
}

CoreArray<CoreString> get_names(py::object const& argument) {
    CoreArray<CoreString> names;
    if (argument.is_none()) {
        names.append("default");
        return names;
    }
    for (py::handle const name : argument) {
        names.append(get_text(name));
    }
    return names;
}

// Given counts, or as many corners a polygon as the array of corners has columns.
CoreArray<unsigned int> get_corner_counts(py::object const& argument, py::object const& corners,
                                          unsigned int const& corner_count) {
    CoreArray<unsigned int> counts;
    if (argument.is_none()) {
        py::array const array = py::array::ensure(corners);
        if (array.ndim() != 2 || array.shape(1) == 0) {
            throw py::value_error("corner_counts: needed, unless corners has the shape (n, k)");
        }
        counts.resize(static_cast<unsigned int>(array.shape(0)));
        counts.fill(static_cast<unsigned int>(array.shape(1)));
        return counts;
    }
    counts = get_indices(argument, "corner_counts", largest_index, false);
    unsigned long long sum = 0;
    for (unsigned int const count : counts) {
        sum += count;
    }
    if (sum != corner_count) {
        refuse("corner_counts", ": they add up to " + std::to_string(sum) + ", and there are " +
                                    std::to_string(corner_count) + " corners");
    }
    return counts;
}

// Stops where Python has been interrupted.
bool is_going_on(void*, AppProgressBar const&) {
    py::gil_scoped_acquire const gil;
    return PyErr_CheckSignals() == 0;
}

std::unique_ptr<PythonMesh> finish(std::unique_ptr<PolyMesh> mesh, bool const& check_quads,
                                   PythonMessages const& messages) {
    return std::make_unique<PythonMesh>(std::move(mesh), check_quads, messages.get_text(""));
}

}  // namespace

std::unique_ptr<PythonMesh>
make_from_arrays(py::object const& positions, py::object const& corners,
                 py::object const& corner_counts, py::object const& groups,
                 py::object const& group_names, py::object const& velocities,
                 py::object const& uv_maps, py::object const& normal_maps,
                 py::object const& color_maps, bool const& check_quads) {
    CoreArray<GMathVec3<float>> const points = get_vectors(positions, "positions");
    unsigned int const point_count = points.get_count();
    CoreArray<unsigned int> const indices = get_indices(corners, "corners", point_count, false);
    unsigned int const corner_count = indices.get_count();
    CoreArray<unsigned int> const counts = get_corner_counts(corner_counts, corners, corner_count);
    CoreArray<CoreString> const names = get_names(group_names);
    CoreArray<unsigned int> group_indices(counts.get_count());
    group_indices.fill(0);
    if (!groups.is_none()) {
        group_indices = get_indices(groups, "groups", names.get_count(), false);
    }
    if (group_indices.get_count() != counts.get_count() || names.is_empty()) {
        refuse("groups", ": a number for each of the " + std::to_string(counts.get_count()) +
                             " polygons is needed, and a name for each number");
    }
    CoreArray<GMathVec3<float>> motion;
    if (!velocities.is_none()) {
        motion = get_vectors(velocities, "velocities");
        if (motion.get_count() != point_count) {
            refuse("velocities",
                   ": one for each of the " + std::to_string(point_count) + " vertices is needed");
        }
    }
    auto const uvs =
        get_maps<GeometryUvMap>(uv_maps, "uv_maps", get_vectors, point_count, corner_count);
    auto const normals = get_maps<GeometryNormalMap>(normal_maps, "normal_maps", get_vectors,
                                                     point_count, corner_count);
    auto const colors =
        get_maps<GeometryColorMap>(color_maps, "color_maps", get_colors, point_count, corner_count);
    auto mesh = std::make_unique<PolyMesh>();
    PythonMessages const messages;
    {
        py::gil_scoped_release const no_gil;
        mesh->set(points, motion, indices, counts, group_indices, names, uvs, normals, colors,
                  check_quads, nullptr);
    }
    if (mesh->get_vertex_count() != point_count ||
        mesh->get_polygon_count() != counts.get_count()) {
        refuse("", messages.get_text("the mesh cannot be built"));
    }
    return finish(std::move(mesh), check_quads, messages);
}

std::unique_ptr<PythonMesh> make_from_file(py::object const& path, py::str const& item,
                                           bool const& check_quads) {
    py::object const name = py::module_::import("os").attr("fsencode")(path);
    std::string_view const bytes = py::reinterpret_borrow<py::bytes>(name);
    CoreString const file(bytes);
    CoreString const layer = get_text(item);
    if (!SysFilesystem::file_exists(file)) {
        PyErr_SetObject(PyExc_FileNotFoundError,
                        py::make_tuple(ENOENT, "No such file", path).ptr());
        throw py::error_already_set();
    }
    auto mesh = std::make_unique<PolyMesh>();
    PythonMessages const messages;
    bool is_imported = false;
    {
        py::gil_scoped_release const no_gil;
        AppProgressBar load_progress("load");
        AppProgressBar build_progress("build");
        load_progress.set_callback(&is_going_on, nullptr);
        is_imported = mesh->import_from_file(file, layer, 0.0, &load_progress,
                                             check_quads ? &build_progress : nullptr);
    }
    if (PyErr_Occurred() != nullptr) {
        throw py::error_already_set();
    }
    if (!is_imported) {
        refuse("", messages.get_text("the file cannot be read"));
    }
    return finish(std::move(mesh), check_quads, messages);
}

std::unique_ptr<PythonMesh> make_from_block(py::bytes const& block) {
    std::string_view const bytes = block;
    auto mesh = std::make_unique<PolyMesh>();
    PythonMessages const messages;
    if (!mesh->deserialize(reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size())) {
        refuse("", messages.get_text("no block of a mesh"));
    }
    return finish(std::move(mesh), true, messages);
}

std::unique_ptr<PythonMesh> make_sphere(unsigned int const& segments, unsigned int const& rings,
                                        double const& radius) {
    if (segments > largest_sphere_count || rings > largest_sphere_count) {
        refuse("sphere",
               ": at most " + std::to_string(largest_sphere_count) + " segments and rings");
    }
    PythonMessages const messages;
    std::unique_ptr<PolyMesh> mesh(
        PolyHelpers::create_poly_sphere(segments, rings, {radius, radius, radius}));
    return finish(std::move(mesh), true, messages);
}

py::str make_text(CoreString const& name) {
    return py::reinterpret_steal<py::str>(
        PyUnicode_DecodeUTF8(name.get_data(), name.get_length(), "surrogateescape"));
}

CoreString get_text(py::handle const& text) {
    if (!py::isinstance<py::str>(text)) {
        throw py::type_error("a name must be a str, not " +
                             py::str(text.get_type().attr("__name__")).cast<std::string>());
    }
    auto const bytes = py::reinterpret_steal<py::bytes>(
        PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape"));
    if (!bytes) {
        throw py::error_already_set();
    }
    return CoreString(std::string_view(bytes));
}
